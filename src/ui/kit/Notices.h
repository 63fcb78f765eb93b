// What a screen says above its cards, and where it has nothing to show.
#pragma once

#include "ui/kit/Surface.h"

namespace ventolith::ui {

/// A notice across the screen, with one button that does something about it.
class Banner : public Surface {
  Q_OBJECT

public:
  enum class Kind { neutral, warning };
  /// Beside: at the far end, in the middle of the height. Below: under the text, where that is long.
  enum class ButtonPlace { beside, below };

  Banner(const Theme& theme, Kind kind, Symbol symbol, QWidget* parent = nullptr);

  void setText(const QString& title, const QString& text);
  /// Takes the button over. Called once.
  void setButton(QWidget* button, ButtonPlace place);

private:
  QHBoxLayout* row_;
  QVBoxLayout* column_;
  TextLabel* title_;
  TextLabel* text_;
};

/// Says what went wrong. Hidden while there is nothing to say.
class ErrorStrip : public Surface {
  Q_OBJECT

public:
  explicit ErrorStrip(const Theme& theme, QWidget* parent = nullptr);

  /// An empty text hides the strip.
  void setText(const QString& text);

private:
  TextLabel* text_;
};

/// In the middle of a screen that is empty: what belongs here, and how to begin.
class EmptyState : public QWidget {
  Q_OBJECT

public:
  EmptyState(const Theme& theme, Symbol symbol, QWidget* parent = nullptr);

  void setText(const QString& heading, const QString& text);
  /// Takes the button over. Called once.
  void setButton(QWidget* button);

private:
  QVBoxLayout* column_;
  TextLabel* heading_;
  TextLabel* text_;
};

/// One line in the middle of a card that has nothing to show.
class EmptyLine : public QWidget {
  Q_OBJECT

public:
  EmptyLine(const Theme& theme, const QString& text, QWidget* parent = nullptr);
};

} // namespace ventolith::ui
