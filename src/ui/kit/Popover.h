// A small panel that opens beside a control and stays until it is done with.
#pragma once

#include "ui/kit/Transition.h"

#include <QPointer>
#include <QWidget>

namespace ventolith::ui {

class Theme;

/// Holds one widget. It closes on Escape and on a click outside, the one on its anchor included; the focus
/// then goes back to where it was. It appears within 120 ms and is gone at once. While it is open and its
/// content grows or shrinks, it stays beside its anchor.
class Popover final : public QWidget {
  Q_OBJECT

public:
  static constexpr int padding = 16;

  /// `owner` is the widget whose window it belongs to; null for one that belongs to no window.
  Popover(const Theme& theme, QWidget* owner);

  /// Takes the widget over, and lets go of the one before. `padding` around it unless told otherwise.
  void setContent(QWidget* content, int contentPadding = padding);
  /// What gets the focus when it opens.
  void setInitialFocus(QWidget* field);

  void openFrom(QWidget& anchor);
  /// Beside a place on the screen, such as a tray icon's. Global.
  void openFrom(const QRect& anchor);
  /// The panel within the window, whose margins hold the shadow if there is one.
  [[nodiscard]] QRect panel() const;
  /// The fade.
  [[nodiscard]] Transition& appearing() { return appearing_; }

Q_SIGNALS:
  /// However it closed.
  void closed();

protected:
  void hideEvent(QHideEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

private:
  [[nodiscard]] QPoint place() const;
  void takeShadow();
  void settleMargins();
  void settleShape();

  const Theme& theme_;
  Transition appearing_;
  QPointer<QWidget> content_;
  QPointer<QWidget> initialFocus_;
  QRect anchor_;
  int contentPadding_ = padding;
  int reach_ = 0; // Of the shadow; none where the window is cut to the panel's shape.
};

} // namespace ventolith::ui
