// The notices of the software that the application includes.
#pragma once

#include "ui/kit/ControlFeel.h"
#include "ui/kit/Surface.h"

#include <QTextEdit>

namespace ventolith::ui {

/// A long text in a fixed-pitch face as it stands: it can be selected and copied, and is as high as it needs
/// to be at its width. What it lies in does all scrolling, and follows the end of a selection that moves.
class NoticesText final : public QTextEdit {
  Q_OBJECT

public:
  NoticesText(const Theme& theme, const QString& text, QWidget* parent = nullptr);

protected:
  void keyPressEvent(QKeyEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

private:
  void setLines();
  void takeColors();
  void showEndOfSelection();

  const Theme& theme_;
  ControlFeel feel_;
};

class NoticesCard final : public Card {
  Q_OBJECT

public:
  /// Reads the notices among the resources in `folder`.
  NoticesCard(const Theme& theme, const QString& folder, QWidget* parent = nullptr);
};

} // namespace ventolith::ui
