#include "ui/kit/ControlFeel.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/Theme.h"

#include <QEvent>
#include <QFocusEvent>
#include <QPixmap>
#include <QWidget>

#include <memory>
#include <utility>

namespace ventolith::ui {

ControlFeel::ControlFeel(const Theme& theme, QWidget& control, std::function<RingShape()> ring)
    : theme_(theme),
      control_(control),
      shape_(std::move(ring)),
      hover_(theme, control, metrics::hoverMotion),
      press_(theme, control, metrics::hoverMotion) {
  theme.repaints(&control);
  control.installEventFilter(this);
}

ControlFeel::~ControlFeel() {
  delete ring_.data();
}

void ControlFeel::setPressed(bool isPressed) {
  press_.moveTo(isPressed ? 1 : 0);
}

void ControlFeel::refreshRing() {
  if (ring_ != nullptr) ring_->setShape(shape_());
}

double ControlFeel::mix(double hover, double press) const {
  const double hovered = hover * hover_.value();
  return hovered + (press - hovered) * press_.value();
}

bool ControlFeel::eventFilter(QObject*, QEvent* event) {
  switch (event->type()) {
  case QEvent::Enter: setHovered(true); break;
  case QEvent::Leave: setHovered(false); break;
  case QEvent::FocusIn: takeFocus(static_cast<QFocusEvent*>(event)->reason()); break;
  case QEvent::FocusOut: endRing(); break;
  case QEvent::KeyPress:
    isByKeyboard_ = true;
    settleRing();
    break;
  case QEvent::Resize: refreshRing(); break;
  case QEvent::EnabledChange:
    setHovered(control_.underMouse());
    settleRing();
    break;
  case QEvent::Show: settleRing(); break;
  case QEvent::Hide:
    setHovered(false);
    endRing();
    break;
  default: break;
  }
  return false;
}

void ControlFeel::setHovered(bool isHovered) {
  isHovered_ = isHovered && control_.isEnabled();
  hover_.moveTo(isHovered_ ? 1 : 0);
}

void ControlFeel::takeFocus(Qt::FocusReason reason) {
  switch (reason) {
  case Qt::TabFocusReason:
  case Qt::BacktabFocusReason:
  case Qt::ShortcutFocusReason: isByKeyboard_ = true; break;
  case Qt::MouseFocusReason: isByKeyboard_ = false; break;
  default: break; // The window or a menu gives it back: as it was.
  }
  settleRing();
}

void ControlFeel::settleRing() {
  const bool isWanted = control_.hasFocus() && control_.isEnabled() && control_.isVisible() &&
                        (isByKeyboard_ || isRingForPointer_);
  if (isWanted == (ring_ != nullptr)) return;
  if (!isWanted) return endRing();
  ring_ = std::make_unique<FocusRing>(theme_, control_, shape_()).release();
}

void ControlFeel::endRing() {
  if (ring_ != nullptr) ring_->retire();
  ring_ = nullptr;
}

void paintFaded(QPainter& painter, const QRect& rect, double opacity,
                const std::function<void(QPainter&)>& paint) {
  if (opacity >= 1) return paint(painter);
  const double scale = deviceScale(painter);
  QPixmap layer((QSizeF(rect.size()) * scale).toSize());
  layer.setDevicePixelRatio(scale);
  layer.fill(Qt::transparent);
  QPainter layered(&layer);
  layered.translate(-rect.topLeft());
  paint(layered);
  layered.end();
  const double before = painter.opacity();
  painter.setOpacity(before * opacity);
  painter.drawPixmap(rect.topLeft(), layer);
  painter.setOpacity(before);
}

} // namespace ventolith::ui
