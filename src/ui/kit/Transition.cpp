#include "ui/kit/Transition.h"

#include "ui/kit/Theme.h"

#include <QEasingCurve>
#include <QWidget>

namespace ventolith::ui {

Transition::Transition(const Theme& theme, QWidget& shown, int milliseconds)
    : theme_(theme), shown_(shown), milliseconds_(milliseconds) {
  setEasingCurve(QEasingCurve::OutCubic);
}

void Transition::moveTo(double target) {
  const int duration = theme_.motion(milliseconds_);
  if (duration <= 0 || !shown_.isVisible()) return jumpTo(target);
  if (target == target_) return;
  target_ = target;
  stop();
  setStartValue(value_);
  setEndValue(target);
  setDuration(duration);
  start();
}

void Transition::jumpTo(double value) {
  stop();
  target_ = value;
  if (value == value_) return;
  value_ = value;
  shown_.update();
}

void Transition::updateCurrentValue(const QVariant& value) {
  if (state() == Stopped) return; // The old end values answer while new ones are set.
  value_ = value.toDouble();
  shown_.update();
}

} // namespace ventolith::ui
