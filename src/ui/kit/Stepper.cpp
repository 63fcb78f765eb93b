#include "ui/kit/Stepper.h"

#include "ui/kit/Accessibility.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/Theme.h"
#include "ui/kit/Type.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace ventolith::ui {
namespace {

constexpr int pageSteps = 10;
constexpr double chevronWidth = 3.5, chevronHeight = 1.75, chevronStroke = 1.25;

TextRole roleOf(StepperSize size) {
  return size == StepperSize::normal ? TextRole::stepperLabel : TextRole::stepperLabelSmall;
}

} // namespace

std::optional<double> StepperRange::stepped(double value, int direction) const {
  if (direction > 0) {
    if (!(value < maximum)) return std::nullopt;
    return std::clamp(value + step, minimum, maximum);
  }
  if (!(value > minimum)) return std::nullopt;
  return std::clamp(value - step, minimum, maximum);
}

Stepper::Stepper(const Theme& theme, StepperSize size, QWidget* parent, std::unique_ptr<Pulse> pulse)
    : QWidget(parent), theme_(theme), size_(size), pulse_(std::move(pulse)), feel_(theme, *this, [this] {
        return RingShape{QRectF(arrows()), metrics::stepperRadius};
      }) {
  installAccessibility();
  setFocusPolicy(Qt::StrongFocus);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Stepper::setRange(const StepperRange& range) {
  range_ = range;
}

void Stepper::setValue(double value, const QString& label) {
  if (value == value_ && label == label_) return;
  value_ = value;
  label_ = label;
  updateGeometry();
  update();
  announceValue(*this);
}

void Stepper::setRoomFor(const QString& label) {
  labelWithRoom_ = label;
  updateGeometry();
}

void Stepper::setLabelColor(ColorRole role) {
  labelColor_ = role;
  update();
}

void Stepper::want(double value) {
  if (isEnabled()) Q_EMIT valueWanted(std::clamp(value, range_.minimum, range_.maximum));
}

QSize Stepper::sizeHint() const {
  const double label =
      std::max(TextLine(label_, roleOf(size_)).width(), TextLine(labelWithRoom_, roleOf(size_)).width());
  return {static_cast<int>(std::ceil(label)) + gap + arrowsWidth, arrowsHeight};
}

QRect Stepper::arrows() const {
  const int left = layoutDirection() == Qt::LeftToRight ? width() - arrowsWidth : 0;
  return {left, (height() - arrowsHeight) / 2, arrowsWidth, arrowsHeight};
}

QRect Stepper::arrow(int direction) const {
  const QRect both = arrows();
  const int half = both.height() / 2;
  return {both.left(), direction > 0 ? both.top() : both.top() + half, both.width(), half};
}

int Stepper::directionAt(const QPoint& position) const {
  if (arrow(1).contains(position)) return 1;
  return arrow(-1).contains(position) ? -1 : 0;
}

void Stepper::step(int direction, int times) {
  std::optional<double> wanted;
  for (int taken = 0; taken < times; ++taken) {
    const auto next = range_.stepped(wanted.value_or(value_), direction);
    if (!next) break;
    wanted = next;
  }
  if (wanted) Q_EMIT valueWanted(*wanted);
}

void Stepper::hold(int direction) {
  heldDirection_ = direction;
  isPointerOnHeld_ = true;
  feel_.setPressed(true);
  pulse_->after(firstRepeat, [this] { repeat(); });
  step(direction);
}

void Stepper::repeat() {
  if (heldDirection_ == 0) return;
  pulse_->after(nextRepeat, [this] { repeat(); });
  if (isPointerOnHeld_) step(heldDirection_);
}

void Stepper::letGo() {
  heldDirection_ = 0;
  pulse_->cancel();
  feel_.setPressed(false);
  update();
}

bool Stepper::event(QEvent* event) {
  switch (event->type()) {
  case QEvent::Hide: letGo(); break;
  case QEvent::EnabledChange:
    if (!isEnabled()) letGo();
    update();
    break;
  case QEvent::FocusOut: wheelDegrees_ = 0; break;
  default: break;
  }
  return QWidget::event(event);
}

void Stepper::mousePressEvent(QMouseEvent* event) {
  const int direction = directionAt(event->position().toPoint());
  if (event->button() != Qt::LeftButton || direction == 0) return event->ignore();
  hold(direction);
}

void Stepper::mouseMoveEvent(QMouseEvent* event) {
  if (heldDirection_ == 0) return;
  isPointerOnHeld_ = directionAt(event->position().toPoint()) == heldDirection_;
}

void Stepper::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) letGo();
}

void Stepper::wheelEvent(QWheelEvent* event) {
  if (!hasFocus()) return event->ignore();
  event->accept();
  wheelDegrees_ += event->angleDelta().y();
  const int notches = wheelDegrees_ / QWheelEvent::DefaultDeltasPerStep;
  wheelDegrees_ -= notches * QWheelEvent::DefaultDeltasPerStep;
  if (notches != 0) step(notches > 0 ? 1 : -1, std::abs(notches));
}

void Stepper::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
  case Qt::Key_Up: return step(1);
  case Qt::Key_Down: return step(-1);
  case Qt::Key_PageUp: return step(1, pageSteps);
  case Qt::Key_PageDown: return step(-1, pageSteps);
  default: return QWidget::keyPressEvent(event);
  }
}

void Stepper::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const double opacity = isEnabled() ? 1 : metrics::disabledOpacity;
  paintFaded(painter, rect(), opacity, [this](QPainter& on) { paintAll(on); });
}

void Stepper::paintAll(QPainter& painter) const {
  const Palette& palette = theme_.palette();
  const QRectF both(arrows());
  const bool isLeading = layoutDirection() == Qt::LeftToRight;
  const QRectF words(isLeading ? 0 : arrowsWidth + gap, 0, width() - arrowsWidth - gap, height());
  TextLine(label_, roleOf(size_)).paint(painter, words, theme_.color(labelColor_));

  paintBox(
      painter, both,
      {.fill = palette.buttonBackground, .stroke = palette.buttonStroke, .radius = metrics::stepperRadius});
  const double mix = feel_.mix(metrics::hoverMix, metrics::pressMix);
  for (const int direction : {1, -1}) {
    if (mix > 0 && (heldDirection_ == 0 || heldDirection_ == direction)) {
      painter.save();
      painter.setClipRect(
          QRectF(arrow(direction)).adjusted(1, direction > 0 ? 1 : 0, -1, direction > 0 ? 0 : -1));
      paintBox(painter, both.adjusted(1, 1, -1, -1),
               {.fill = faded(palette.primaryText, mix), .radius = metrics::stepperRadius - 1});
      painter.restore();
    }
    paintArrow(painter, direction);
  }
  const QRectF divider(both.left() + 1, both.center().y() - 0.5, both.width() - 2, 1);
  paintBox(painter, divider, {.fill = palette.separator});
}

void Stepper::paintArrow(QPainter& painter, int direction) const {
  const QPointF centre = QRectF(arrow(direction)).center();
  const double tip = -direction * chevronHeight / 2;
  QPainterPath path(centre + QPointF(-chevronWidth / 2, -tip));
  path.lineTo(centre + QPointF(0, tip));
  path.lineTo(centre + QPointF(chevronWidth / 2, -tip));
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(
      QPen(theme_.palette().secondaryText, chevronStroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(path);
  painter.restore();
}

} // namespace ventolith::ui
