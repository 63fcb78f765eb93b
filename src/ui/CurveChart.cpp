#include "ui/CurveChart.h"

#include "ui/CurveChartAccessibility.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/Theme.h"
#include "ui/state/CurveEditingTexts.h"
#include "ui/state/ScreenLayout.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <utility>

namespace ventolith::ui {

namespace {

/// With one of these a key is a command of the window or of the system.
bool isCommand(const QKeyEvent& event) {
  return bool(event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
}

std::optional<Nudge> nudgeOf(const QKeyEvent& event) {
  switch (event.key()) {
  case Qt::Key_Left: return Nudge::cooler;
  case Qt::Key_Right: return Nudge::warmer;
  case Qt::Key_Down: return Nudge::slower;
  case Qt::Key_Up: return Nudge::faster;
  default: return std::nullopt;
  }
}

ChartValue valueOf(const core::CurvePoint& point) {
  return {.celsius = point.celsius, .percent = point.percent};
}

QRectF haloAround(QPointF centre) {
  return {centre.x() - haloDiameter / 2, centre.y() - haloDiameter / 2, haloDiameter, haloDiameter};
}

} // namespace

CurveChart::CurveChart(const Theme& theme, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      live_(theme, *this, metrics::readingMotion),
      feel_(theme, *this, [this] { return ring(); }) {
  installCurveChartAccessibility();
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  setMinimumHeight(chartMinimumHeight);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  connect(&theme, &Theme::changed, this, [this] { ground_ = QPixmap(); });
}

void CurveChart::setEditing(CurveEditing& editing) {
  isPressed_ = false;
  isNudging_ = false;
  editing_ = &editing;
  refresh();
}

void CurveChart::refresh() {
  if (editing_ == nullptr) return;
  takeMarks();
  update();
  feel_.refreshRing();
}

/// What the user did is shown and told.
void CurveChart::take() {
  refresh();
  Q_EMIT edited();
}

void CurveChart::takeMarks() {
  const CurveChartMarks before = std::exchange(marks_, {});
  marks_.line = editing_->curveSamples();
  for (const core::CurvePoint& point : editing_->editingCurve().points)
    marks_.points.push_back(valueOf(point));
  if (const auto selected = editing_->selectedPoint()) marks_.selected = valueOf(*selected);
  marks_.live = before.live;
  takeLivePoint();
  announceMarks(*this, before, marks_);
}

/// A new reading is gone to, unless there was none, or a hand on the curve moves the point itself.
void CurveChart::takeLivePoint() {
  const std::optional<ChartValue> before = std::exchange(marks_.live, editing_->liveDataPoint());
  marks_.liveLabel = marks_.live ? liveLabelText(*marks_.live) : QString();
  if (!marks_.live) return;
  if (before && !isPressed_)
    live_.moveTo(marks_.live->celsius);
  else
    live_.jumpTo(marks_.live->celsius);
}

std::optional<ChartValue> CurveChart::shownLivePoint() const {
  if (editing_ == nullptr || !marks_.live) return std::nullopt;
  return ChartValue{.celsius = live_.value(), .percent = editing_->editingCurve().percent(live_.value())};
}

QRectF CurveChart::haloAt(std::size_t place) const {
  return place < marks_.points.size() ? haloAround(chart().position(marks_.points[place])) : QRectF();
}

RingShape CurveChart::ring() const {
  if (marks_.selected) return {haloAround(chart().position(*marks_.selected)), haloDiameter / 2};
  return {QRectF(rect()), metrics::controlRadius};
}

// Painting

const QPixmap& CurveChart::groundAt(double scale) {
  const QSize pixels = (QSizeF(size()) * scale).toSize();
  if (!ground_.isNull() && ground_.size() == pixels && ground_.devicePixelRatio() == scale) return ground_;
  ground_ = QPixmap(pixels);
  ground_.setDevicePixelRatio(scale);
  QPainter painter(&ground_);
  // Beyond the surface, for the part of a pixel that a crooked scale may leave.
  paintChartGround(painter, chart(), QRectF(rect()).adjusted(0, 0, 1, 1), theme_.palette());
  return ground_;
}

void CurveChart::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  if (chart().plot.isEmpty()) return painter.fillRect(rect(), theme_.palette().cardBackground);
  painter.drawPixmap(0, 0, groundAt(deviceScale(painter)));
  CurveChartMarks shown = marks_;
  shown.live = shownLivePoint();
  paintChartMarks(painter, chart(), rect(), theme_.palette(), shown);
}

void CurveChart::changeEvent(QEvent* event) {
  if (event->type() == QEvent::FontChange || event->type() == QEvent::LanguageChange) {
    ground_ = QPixmap();
    update();
  }
  QWidget::changeEvent(event);
}

// The pointer

void CurveChart::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || editing_ == nullptr) return event->ignore();
  endNudging();
  isPressed_ = true;
  dragTo(event->position());
}

void CurveChart::mouseMoveEvent(QMouseEvent* event) {
  if (isHeld() && !(event->buttons() & Qt::LeftButton)) endDrag(); // It was let go of where nobody told.
  if (isHeld())
    dragTo(event->position());
  else
    settleCursor(event->position());
}

void CurveChart::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !isHeld()) return event->ignore();
  endDrag();
  settleCursor(event->position());
}

void CurveChart::leaveEvent(QEvent* event) {
  if (!isHeld()) unsetCursor();
  QWidget::leaveEvent(event);
}

void CurveChart::dragTo(QPointF location) {
  if (editing_->handleDrag(location, chart())) take();
  settleCursor(location);
}

void CurveChart::endDrag() {
  isPressed_ = false;
  editing_->endDrag();
}

void CurveChart::settleCursor(QPointF location) {
  if (editing_ == nullptr) return;
  Qt::CursorShape shape = Qt::ArrowCursor;
  if (editing_->draggingPointID())
    shape = Qt::ClosedHandCursor;
  else if (editing_->pointAt(location, chart()))
    shape = Qt::OpenHandCursor;
  if (cursor().shape() != shape) setCursor(shape);
}

// The keyboard

void CurveChart::keyPressEvent(QKeyEvent* event) {
  if (editing_ == nullptr || isPressed_ || isCommand(*event)) return QWidget::keyPressEvent(event);
  if (const auto direction = nudgeOf(*event)) return nudge(*direction);
  switch (event->key()) {
  case Qt::Key_Delete:
  case Qt::Key_Backspace: return deletePoint();
  case Qt::Key_Plus:
    if (!event->isAutoRepeat()) addPoint(); // A key held down is no wish for many.
    return;
  default: QWidget::keyPressEvent(event);
  }
}

void CurveChart::keyReleaseEvent(QKeyEvent* event) {
  if (!nudgeOf(*event)) return QWidget::keyReleaseEvent(event);
  if (!event->isAutoRepeat()) endNudging();
}

/// Without a chosen point the first arrow chooses one.
void CurveChart::nudge(Nudge nudge) {
  if (!editing_->selectedPointID()) {
    walk(CurveEditing::Direction::next);
    return;
  }
  if (!editing_->nudgeSelectedPoint(nudge)) return;
  isNudging_ = true;
  take();
}

void CurveChart::endNudging() {
  if (std::exchange(isNudging_, false)) editing_->endDrag();
}

bool CurveChart::walk(CurveEditing::Direction direction) {
  endNudging();
  if (!editing_->selectPoint(direction)) return false;
  take();
  return true;
}

void CurveChart::addPoint() {
  endNudging();
  editing_->addPoint();
  take();
}

void CurveChart::deletePoint() {
  endNudging();
  if (!editing_->canDeleteSelected()) return;
  editing_->deleteSelectedPoint();
  take();
}

bool CurveChart::focusNextPrevChild(bool isNext) {
  using enum CurveEditing::Direction;
  const bool isOurs = hasFocus() && editing_ != nullptr && !isPressed_;
  return (isOurs && walk(isNext ? next : previous)) || QWidget::focusNextPrevChild(isNext);
}

/// Whoever comes with Tab finds a point to work on; a point that was chosen stays chosen.
void CurveChart::focusInEvent(QFocusEvent* event) {
  QWidget::focusInEvent(event);
  const bool isTab = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
  if (editing_ == nullptr || !isTab) return;
  if (editing_->selectedPointID()) return announceChosen(*this);
  using enum CurveEditing::Direction;
  walk(event->reason() == Qt::TabFocusReason ? next : previous);
}

void CurveChart::focusOutEvent(QFocusEvent* event) {
  endNudging();
  QWidget::focusOutEvent(event);
}

/// A gesture ends with the screen, and what it made is kept.
void CurveChart::hideEvent(QHideEvent* event) {
  endNudging();
  if (isHeld()) endDrag();
  QWidget::hideEvent(event);
}

// Assistive technology

void CurveChart::choosePoint(std::size_t place) {
  if (editing_ == nullptr || isPressed_) return;
  endNudging();
  editing_->selectPoint(place);
  take();
}

void CurveChart::movePoint(std::size_t place, Nudge direction, int steps) {
  if (editing_ == nullptr || isPressed_) return;
  choosePoint(place);
  for (int step = 0; step < steps; ++step)
    nudge(direction);
  endNudging();
}

} // namespace ventolith::ui
