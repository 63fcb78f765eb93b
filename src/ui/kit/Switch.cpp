#include "ui/kit/Switch.h"

#include "ui/kit/Accessibility.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/Theme.h"

#include <QPainter>

namespace ventolith::ui {

Switch::Switch(const Theme& theme, QWidget* parent)
    : QCheckBox(parent),
      theme_(theme),
      slide_(theme, *this, metrics::selectionMotion),
      feel_(theme, *this, [this] { return RingShape{track(), trackHeight / 2.0}; }) {
  installAccessibility();
  setAttribute(Qt::WA_LayoutUsesWidgetRect);
  setFocusPolicy(Qt::StrongFocus);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  connect(this, &QAbstractButton::toggled, this, [this](bool isOn) { slide_.moveTo(isOn ? 1 : 0); });
  connect(this, &QAbstractButton::pressed, this, [this] { feel_.setPressed(true); });
  connect(this, &QAbstractButton::released, this, [this] { feel_.setPressed(false); });
}

QRectF Switch::track() const {
  return {(width() - trackWidth) / 2.0, (height() - trackHeight) / 2.0, trackWidth, trackHeight};
}

bool Switch::hitButton(const QPoint& position) const {
  return rect().contains(position);
}

void Switch::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const double opacity = isEnabled() ? 1 : metrics::disabledOpacity;
  paintFaded(painter, rect(), opacity, [this](QPainter& on) { paintAll(on); });
}

void Switch::paintAll(QPainter& painter) const {
  const Palette& palette = theme_.palette();
  const double mix = feel_.mix(metrics::hoverMix, metrics::pressMix);
  const QColor fill = mixed(palette.switchOff, palette.accentFill, slide_.value());
  paintCapsule(painter, track(), mixed(fill, Qt::black, mix));

  const double travel = trackWidth - 2 * inset - knobDiameter;
  const double gone = layoutDirection() == Qt::LeftToRight ? slide_.value() : 1 - slide_.value();
  const QRectF knob(track().left() + inset + gone * travel, track().top() + inset, knobDiameter,
                    knobDiameter);
  paintShadow(painter, knob, knobDiameter / 2.0, knobShadow(palette));
  paintCircle(painter, knob.center(), knobDiameter, Qt::white);
}

} // namespace ventolith::ui
