#include "ui/kit/ScrollArea.h"

#include "ui/kit/Painting.h"
#include "ui/kit/Theme.h"

#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

namespace ventolith::ui {
namespace {

using namespace std::chrono_literals;
constexpr auto lingers = 900ms;
constexpr int shortest = 28; // A thumb that can still be caught.
constexpr int edge = 3;      // Free above and below it, and beside.
constexpr double slim = 6;

} // namespace

ThumbGeometry ThumbGeometry::of(int track, int value, int maximum, int page) {
  if (maximum <= 0 || track <= 0) return {0, std::max(track, 0)};
  const int share =
      static_cast<int>(static_cast<double>(track) * page / (static_cast<double>(maximum) + page));
  const int length = std::min(track, std::max(share, shortest));
  const int top = qRound(static_cast<double>(track - length) * value / maximum);
  return {top, length};
}

ScrollArea::ScrollArea(const Theme& theme, QWidget* parent)
    : QScrollArea(parent), bar_(new OverlayBar(theme, *verticalScrollBar(), this)) {
  setFrameShape(NoFrame);
  setWidgetResizable(true);
  setFocusPolicy(Qt::NoFocus); // What it holds takes the keyboard; it scrolls along.
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  viewport()->setAutoFillBackground(false);
  connect(horizontalScrollBar(), &QScrollBar::rangeChanged, this,
          [this] { horizontalScrollBar()->setRange(0, 0); });
  connect(verticalScrollBar(), &QScrollBar::rangeChanged, bar_, qOverload<>(&QWidget::update));
}

void ScrollArea::setContent(QWidget* content) {
  setWidget(content);
  content->setAutoFillBackground(false);
}

void ScrollArea::resizeEvent(QResizeEvent* event) {
  QScrollArea::resizeEvent(event);
  bar_->setGeometry(width() - OverlayBar::width, 0, OverlayBar::width, height());
  bar_->raise();
}

void ScrollArea::scrollContentsBy(int, int dy) {
  QScrollArea::scrollContentsBy(0, dy);
  bar_->flash();
}

OverlayBar::OverlayBar(const Theme& theme, QScrollBar& scroll, QWidget* parent)
    : QWidget(parent), theme_(theme), scroll_(scroll) {
  away_.setSingleShot(true);
  connect(&away_, &QTimer::timeout, this, [this] {
    shown_ = false;
    update();
  });
  theme.repaints(this);
}

void OverlayBar::flash() {
  shown_ = true;
  update();
  if (!held_ && !underMouse()) away_.start(lingers);
}

ThumbGeometry OverlayBar::thumb() const {
  return ThumbGeometry::of(height() - 2 * edge, scroll_.value(), scroll_.maximum(), scroll_.pageStep());
}

void OverlayBar::paintEvent(QPaintEvent*) {
  if (!shown_ || scroll_.maximum() <= 0) return;
  QPainter painter(this);
  const auto [top, length] = thumb();
  const double thick = underMouse() || held_ ? slim + 2 : slim;
  constexpr double visibility = 0.45;
  paintBox(painter, QRectF(rect().width() - edge - thick, edge + top, thick, length),
           {.fill = faded(theme_.palette().secondaryText, visibility), .radius = thick / 2});
}

void OverlayBar::enterEvent(QEnterEvent*) {
  away_.stop();
  shown_ = true;
  update();
}

void OverlayBar::leaveEvent(QEvent*) {
  if (!held_) away_.start(lingers);
  update();
}

void OverlayBar::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || scroll_.maximum() <= 0) {
    event->ignore();
    return;
  }
  const auto [top, length] = thumb();
  const double pointer = event->position().y() - edge;
  const bool onThumb = pointer >= top && pointer < top + length;
  held_ = true;
  grip_ = onThumb ? pointer - top : length / 2.0;
  if (!onThumb) dragTo(pointer);
  update();
}

void OverlayBar::mouseMoveEvent(QMouseEvent* event) {
  if (held_) dragTo(event->position().y() - edge);
}

void OverlayBar::dragTo(double pointer) {
  const int room = height() - 2 * edge - thumb().length;
  if (room <= 0) return;
  scroll_.setValue(qRound(std::clamp((pointer - grip_) / room, 0.0, 1.0) * scroll_.maximum()));
}

void OverlayBar::mouseReleaseEvent(QMouseEvent*) {
  held_ = false;
  if (!underMouse()) away_.start(lingers);
  update();
}

void OverlayBar::wheelEvent(QWheelEvent* event) {
  event->ignore();
} // The area's.

} // namespace ventolith::ui
