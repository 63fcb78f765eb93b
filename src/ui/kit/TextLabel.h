// A text in one role and one colour. Known to assistive technology as a label.
#pragma once

#include "ui/kit/Type.h"

#include <QColor>
#include <QLabel>

namespace ventolith::ui {

class Theme;

/// What a label does with a text that is wider than itself. Figures and titles of buttons stay `whole`.
enum class Fit {
  whole,   ///< Asks for its full width.
  elided,  ///< Ends in "…"; the whole text is the tool tip then.
  wrapped, ///< Takes as many lines as it needs.
};

class TextLabel : public QLabel {
  Q_OBJECT

public:
  TextLabel(const Theme& theme, TextRole role, ColorRole color, QWidget* parent = nullptr);

  /// A whole text takes exactly its own size (a width that was set from outside stays): a reading that
  /// changes and is as wide as before asks for no new layout.
  void setText(const QString& text);
  void setRole(TextRole role);
  void setColor(ColorRole color);
  /// A colour that is no role, such as a temperature's.
  void setColor(const QColor& color);
  void setFit(Fit fit);
  void setDigits(Digits digits);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;
  [[nodiscard]] bool hasHeightForWidth() const override { return fit_ == Fit::wrapped; }
  [[nodiscard]] int heightForWidth(int width) const override;

protected:
  void paintEvent(QPaintEvent*) override;
  bool event(QEvent* event) override;

private:
  void sizeChanged();
  [[nodiscard]] TextLine line() const { return {text(), role_, digits_}; }
  [[nodiscard]] QSize withMargins(double width, int lines) const;
  [[nodiscard]] const QStringList& linesAt(double width) const;

  const Theme& theme_;
  TextRole role_;
  ColorRole color_;
  QColor ownColor_; // Invalid while a role holds.
  Fit fit_ = Fit::whole;
  Digits digits_;
  QSize ownSize_; // What this label fixed for itself; a side that it did not is negative.
  // The last wrapping: layouts ask for the same one several times over.
  mutable QString wrappedText_;
  mutable double wrappedWidth_ = -1;
  mutable QStringList lines_;
};

} // namespace ventolith::ui
