#include "ui/kit/Gauge.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/Theme.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ventolith::ui {
namespace {

double inside(double fraction) {
  return std::isfinite(fraction) ? std::clamp(fraction, 0.0, 1.0) : 0;
}

// The way that the end of the ring goes, in the device's pixels.
double wayOnDevice(const QWidget& gauge, double from, double to) {
  const double ring = 2 * std::numbers::pi * GaugeGeometry::in(Gauge::side).radius;
  return std::abs(to - from) * ring * gauge.devicePixelRatioF();
}

} // namespace

GaugeGeometry GaugeGeometry::in(double side) {
  const double scale = side / Gauge::side;
  return {QPointF(side / 2, side / 2), 19.5 * scale, metrics::gaugeStroke * scale, 18 * scale};
}

double GaugeGeometry::sweep(double fraction) {
  return 360 * fraction;
}

QPointF GaugeGeometry::end(double fraction) const {
  const double angle = sweep(fraction) * std::numbers::pi / 180;
  return center + QPointF(std::sin(angle) * radius, -std::cos(angle) * radius);
}

Gauge::Gauge(const Theme& theme, Symbol symbol, QWidget* parent)
    : QWidget(parent), theme_(theme), symbol_(symbol) {
  setFixedSize(side, side);
  setAttribute(Qt::WA_TransparentForMouseEvents);
  motion_.setEasingCurve(QEasingCurve::OutCubic);
  connect(&motion_, &QVariantAnimation::valueChanged, this,
          [this](const QVariant& value) { move(value.toDouble()); });
  theme.repaints(this);
}

void Gauge::jumpTo(double fraction) {
  hasValue_ = true;
  fraction_ = inside(fraction);
  showNow(fraction_);
}

void Gauge::setFraction(double fraction) {
  fraction = inside(fraction);
  const bool first = !hasValue_;
  hasValue_ = true;
  if (!first && fraction == fraction_) return;
  fraction_ = fraction;
  const int duration = theme_.motion(metrics::readingMotion);
  if (first || duration == 0 || !isVisible() || wayOnDevice(*this, shown_, fraction) < 1) {
    showNow(fraction);
    return;
  }
  motion_.stop();
  motion_.setDuration(duration);
  motion_.setStartValue(shown_);
  motion_.setEndValue(fraction);
  motion_.start();
}

void Gauge::showNow(double fraction) {
  motion_.stop();
  shown_ = painted_ = fraction;
  update();
}

void Gauge::move(double fraction) {
  shown_ = fraction;
  constexpr double seen = 0.5; // Device pixels.
  if (fraction != fraction_ && wayOnDevice(*this, painted_, fraction) < seen) return;
  painted_ = fraction;
  update();
}

void Gauge::hideEvent(QHideEvent*) {
  if (isMoving()) showNow(fraction_);
}

void Gauge::paintEvent(QPaintEvent*) {
  const GaugeGeometry it = GaugeGeometry::in(width());
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF ring(it.center.x() - it.radius, it.center.y() - it.radius, 2 * it.radius, 2 * it.radius);
  QPen pen(theme_.palette().accentActive, it.stroke);
  pen.setCapStyle(Qt::RoundCap);
  painter.setPen(pen);
  painter.drawEllipse(ring);
  if (shown_ > 0) {
    pen.setColor(theme_.palette().accentGraphic);
    painter.setPen(pen);
    constexpr int fromTop = 90 * 16; // Qt counts sixteenths of a degree, against the clock, from 3 o'clock.
    painter.drawArc(ring, fromTop, -static_cast<int>(std::lround(GaugeGeometry::sweep(shown_) * 16)));
  }
  QRectF icon(0, 0, it.icon, it.icon);
  icon.moveCenter(it.center);
  theme_.icons().paint(painter, icon, symbol_, theme_.palette().accent);
}

} // namespace ventolith::ui
