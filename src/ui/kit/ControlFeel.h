// How a control answers to the pointer and the keyboard: hovered, pressed, and the ring of keyboard focus.
#pragma once

#include "ui/kit/FocusRing.h"
#include "ui/kit/Transition.h"

#include <QObject>
#include <QPainter>
#include <QPointer>

#include <functional>

namespace ventolith::ui {

class Theme;

/// Part of one control, whose events it watches; it changes nothing of what they do.
class ControlFeel final : public QObject {
public:
  /// Theme and control outlive it. `ring` tells what a ring would go around now.
  ControlFeel(const Theme& theme, QWidget& control, std::function<RingShape()> ring);
  ~ControlFeel() override;

  /// Set by the control, which knows what presses it.
  void setPressed(bool isPressed);
  /// Text fields have a ring however they got the focus; everything else by keyboard alone.
  void ringAlways() { isRingForPointer_ = true; }
  /// What the ring goes around has moved within the control.
  void refreshRing();

  /// How much of another colour lies over the control's fill, between nothing, `hover` and `press`.
  [[nodiscard]] double mix(double hover, double press) const;
  [[nodiscard]] bool isHovered() const { return isHovered_; }
  [[nodiscard]] bool isRingShown() const { return ring_ != nullptr; }

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void setHovered(bool isHovered);
  void takeFocus(Qt::FocusReason reason);
  void settleRing();
  void endRing();

  const Theme& theme_;
  QWidget& control_;
  std::function<RingShape()> shape_;
  Transition hover_;
  Transition press_;
  QPointer<FocusRing> ring_; // This one's own, but its parent's end may come first.
  bool isHovered_ = false;
  bool isByKeyboard_ = false;
  bool isRingForPointer_ = false;
};

/// Paints with `paint` as one picture and lays it down at `opacity`: what lies over each other in it does not
/// shine through.
void paintFaded(QPainter& painter, const QRect& rect, double opacity,
                const std::function<void(QPainter&)>& paint);

} // namespace ventolith::ui
