#include "ui/kit/Slider.h"

#include "ui/kit/Accessibility.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/Theme.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <cmath>
#include <utility>

namespace ventolith::ui {
namespace {

constexpr int hundredths = 100;
constexpr double pageSteps = 10;
constexpr int preferredWidth = 120;
constexpr int narrowest = 48;

bool isHorizontal(const QWheelEvent& event) {
  return std::abs(event.angleDelta().x()) > std::abs(event.angleDelta().y());
}

} // namespace

Slider::Slider(const Theme& theme, QWidget* parent, std::unique_ptr<Pulse> pulse)
    : QWidget(parent), theme_(theme), pulse_(std::move(pulse)), feel_(theme, *this, [this] {
        return RingShape{geometryOf().knob(value_), SliderGeometry::knobRadius};
      }) {
  installAccessibility();
  setFocusPolicy(Qt::StrongFocus);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void Slider::setRange(const SliderRange& range) {
  if (range == range_) return;
  range_ = range;
  updateGeometry();
  update();
  take(range_.admitted(value_));
}

void Slider::setKeyStep(double step) {
  keyStep_ = step;
}

double Slider::keyStep() const {
  if (range_.step > 0) return range_.step;
  return keyStep_ > 0 ? keyStep_ : range_.span() / hundredths;
}

void Slider::setValue(double value) {
  if (isPressed()) return;
  take(range_.admitted(value));
}

void Slider::take(double value) {
  if (value == value_) return;
  value_ = value;
  feel_.refreshRing();
  update();
  announceValue(*this);
}

void Slider::setSpoken(Spoken spoken) {
  spoken_ = spoken;
}

void Slider::setSpokenText(const QString& text) {
  spokenText_ = text;
}

void Slider::slideTo(double value) {
  if (!isEnabled()) return;
  end();
  begin(Press::key);
  change(value);
  end();
}

SliderGeometry Slider::geometryOf() const {
  return {range_, static_cast<double>(width()), layoutDirection() == Qt::RightToLeft};
}

QSize Slider::sizeHint() const {
  const double high = range_.step > 0 ? SliderGeometry::heightWithTicks() : SliderGeometry::height;
  return {preferredWidth, static_cast<int>(high)};
}

QSize Slider::minimumSizeHint() const {
  return {narrowest, sizeHint().height()};
}

void Slider::begin(Press press) {
  if (press_ == press) return;
  end();
  press_ = press;
  Q_EMIT pressBegan();
}

void Slider::change(double value) {
  if (!isPressed()) return; // Whoever heard of the press took it back.
  take(range_.admitted(value));
  Q_EMIT valueChanged(value_);
}

bool Slider::letGo() {
  if (press_ == Press::none) return false;
  press_ = Press::none;
  heldKey_ = 0;
  pulse_->cancel();
  feel_.setPressed(false);
  return true;
}

void Slider::end() {
  if (letGo()) Q_EMIT pressEnded();
}

/// A slider that is disabled loses the keyboard before it is told.
void Slider::loseHold() {
  if (isEnabled()) return end();
  if (letGo()) Q_EMIT pressAbandoned();
}

bool Slider::event(QEvent* event) {
  switch (event->type()) {
  case QEvent::FocusOut: wheelDegrees_ = 0; [[fallthrough]];
  case QEvent::Hide: loseHold(); break;
  case QEvent::EnabledChange:
    loseHold();
    update();
    break;
  default: break;
  }
  return QWidget::event(event);
}

void Slider::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return event->ignore();
  const SliderGeometry geometry = geometryOf();
  const double x = event->position().x();
  const bool isOnKnob = geometry.knob(value_).contains(QPointF(x, geometry.knobCentre(value_).y()));
  grip_ = isOnKnob ? x - geometry.knobCentre(value_).x() : 0;
  begin(Press::pointer);
  feel_.setPressed(true);
  change(isOnKnob ? value_ : geometry.valueAt(x));
}

void Slider::mouseMoveEvent(QMouseEvent* event) {
  if (press_ != Press::pointer) return;
  const double value = geometryOf().valueAt(event->position().x() - grip_);
  if (value != value_) change(value);
}

void Slider::mouseReleaseEvent(QMouseEvent* event) {
  if (press_ != Press::pointer || event->button() != Qt::LeftButton) return;
  end();
}

void Slider::wheelEvent(QWheelEvent* event) {
  if (!hasFocus() || press_ == Press::pointer) return event->ignore();
  event->accept();
  const QPoint turned = event->angleDelta();
  wheelDegrees_ += isHorizontal(*event) ? -turned.x() : turned.y();
  const int notches = wheelDegrees_ / QWheelEvent::DefaultDeltasPerStep;
  wheelDegrees_ -= notches * QWheelEvent::DefaultDeltasPerStep;
  if (notches != 0) {
    begin(Press::wheel);
    change(value_ + notches * keyStep());
  }
  if (press_ == Press::wheel) pulse_->after(wheelRest, [this] { end(); });
}

std::optional<double> Slider::valueAfter(int key) const {
  const double ahead = layoutDirection() == Qt::RightToLeft ? -1 : 1;
  switch (key) {
  case Qt::Key_Right: return value_ + ahead * keyStep();
  case Qt::Key_Left: return value_ - ahead * keyStep();
  case Qt::Key_Up: return value_ + keyStep();
  case Qt::Key_Down: return value_ - keyStep();
  case Qt::Key_PageUp: return value_ + pageSteps * keyStep();
  case Qt::Key_PageDown: return value_ - pageSteps * keyStep();
  case Qt::Key_Home: return range_.minimum;
  case Qt::Key_End: return range_.maximum;
  default: return std::nullopt;
  }
}

void Slider::keyPressEvent(QKeyEvent* event) {
  const auto value = valueAfter(event->key());
  if (!value || press_ == Press::pointer) return QWidget::keyPressEvent(event);
  if (!event->isAutoRepeat() && press_ == Press::key) end();
  begin(Press::key);
  heldKey_ = event->key();
  change(*value);
}

void Slider::keyReleaseEvent(QKeyEvent* event) {
  if (event->isAutoRepeat()) return;
  if (press_ != Press::key || event->key() != heldKey_) return QWidget::keyReleaseEvent(event);
  end();
}

void Slider::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const double opacity = isEnabled() ? 1 : metrics::disabledSliderOpacity;
  paintFaded(painter, rect(), opacity, [this](QPainter& on) { paintAll(on); });
}

void Slider::paintAll(QPainter& painter) const {
  const Palette& palette = theme_.palette();
  const SliderGeometry geometry = geometryOf();
  const double tickTop = SliderGeometry::height + SliderGeometry::tickGap;
  for (const double x : geometry.ticks()) {
    paintBox(painter, QRectF(x - 0.5, tickTop, 1, SliderGeometry::tickHeight), {.fill = palette.chartAxis});
  }
  paintCapsule(painter, geometry.track(), palette.trackBackground);
  paintCapsule(painter, geometry.fill(value_), isEnabled() ? palette.accentGraphic : palette.tertiaryText);
  paintKnob(painter);
}

void Slider::paintKnob(QPainter& painter) const {
  const Palette& palette = theme_.palette();
  const QRectF knob = geometryOf().knob(value_);
  const double mix = feel_.mix(0, metrics::hoverMix);
  paintShadow(painter, knob, SliderGeometry::knobRadius, knobShadow(palette));
  paintBox(painter, knob,
           {.fill = mixed(palette.knob, Qt::black, mix),
            .stroke = palette.knobStroke,
            .radius = SliderGeometry::knobRadius});
}

} // namespace ventolith::ui
