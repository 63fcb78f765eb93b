#include "ui/kit/Painting.h"

#include "ui/kit/Metrics.h"

#include <QBitmap>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPixmapCache>

#include <algorithm>
#include <cmath>
#include <vector>

namespace ventolith::ui {
namespace {

// A box blur over the rows (`stride` 1) or columns of a square of opacities.
void blurOnce(std::vector<float>& values, int side, int reach, bool rows) {
  const auto at = [&](int line, int place) {
    return static_cast<std::size_t>(rows ? line * side + place : place * side + line);
  };
  std::vector<float> line(static_cast<std::size_t>(side));
  const float share = 1.0F / static_cast<float>(2 * reach + 1);
  for (int index = 0; index < side; ++index) {
    float sum = 0;
    for (int place = 0; place <= std::min(reach, side - 1); ++place)
      sum += values[at(index, place)];
    for (int place = 0; place < side; ++place) {
      line[static_cast<std::size_t>(place)] = std::max(sum, 0.0F) * share;
      if (place + reach + 1 < side) sum += values[at(index, place + reach + 1)];
      if (place - reach >= 0) sum -= values[at(index, place - reach)];
    }
    for (int place = 0; place < side; ++place)
      values[at(index, place)] = line[static_cast<std::size_t>(place)];
  }
}

// The soft picture of the smallest rounded square that has the corners and one pixel of each edge: stretched
// between its corners it is the shadow of any rectangle. All lengths in device pixels.
QPixmap shadowPicture(int corner, int reach, double radius, const QColor& color) {
  const int side = 2 * (corner + reach) + 1;
  QImage shape(side, side, QImage::Format_Alpha8);
  shape.fill(0);
  QPainter painter(&shape);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(Qt::black);
  painter.drawRoundedRect(QRectF(reach, reach, side - 2 * reach, side - 2 * reach), radius, radius);
  painter.end();

  const auto place = [side](int x, int y) {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(side) + static_cast<std::size_t>(x);
  };
  std::vector<float> opacity(place(0, side));
  for (int y = 0; y < side; ++y)
    for (int x = 0; x < side; ++x)
      opacity[place(x, y)] = static_cast<float>(shape.constScanLine(y)[x]) / 255.0F;
  // Three boxes come close to the bell curve whose deviation is half the blur.
  for (int pass = 0; pass < 3; ++pass)
    for (const bool rows : {true, false})
      blurOnce(opacity, side, std::max(1, reach / 3), rows);

  QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
  for (int y = 0; y < side; ++y)
    for (int x = 0; x < side; ++x)
      picture.setPixelColor(x, y, faded(color, static_cast<double>(opacity[place(x, y)])));
  return QPixmap::fromImage(picture);
}

} // namespace

double deviceScale(const QPainter& painter) {
  const QTransform transform = painter.deviceTransform();
  return std::max(0.01, std::hypot(transform.m11(), transform.m12()));
}

QRectF onPixels(const QPainter& painter, const QRectF& rect) {
  const QTransform toDevice = painter.deviceTransform();
  if (toDevice.type() > QTransform::TxScale) return rect;
  const QRectF device = toDevice.mapRect(rect);
  const QPointF topLeft(std::round(device.left()), std::round(device.top()));
  const QPointF bottomRight(std::round(device.right()), std::round(device.bottom()));
  return toDevice.inverted().mapRect(QRectF(topLeft, bottomRight));
}

double strokeOnPixels(const QPainter& painter, double width) {
  const double scale = deviceScale(painter);
  return std::max(1.0, std::round(width * scale)) / scale;
}

void paintBox(QPainter& painter, const QRectF& rect, const Box& box) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF outer = onPixels(painter, rect);
  const bool stroked = box.stroke.alpha() > 0 && box.strokeWidth > 0;
  const double width = stroked ? strokeOnPixels(painter, box.strokeWidth) : 0;
  // The fill reaches under the middle of the stroke: no ground shines through between the two.
  const QRectF middle = outer.adjusted(width / 2, width / 2, -width / 2, -width / 2);
  const double limit = std::min(middle.width(), middle.height()) / 2;
  const double radius = std::clamp(box.radius - width / 2, 0.0, std::max(limit, 0.0));
  QPen pen(Qt::NoPen);
  if (stroked) {
    pen = QPen(box.stroke, width);
    pen.setJoinStyle(Qt::MiterJoin);
    if (box.dashOn > 0 && box.dashOff > 0) {
      pen.setCapStyle(Qt::FlatCap);
      pen.setDashPattern({box.dashOn / width, box.dashOff / width});
    }
  }
  painter.setPen(pen);
  painter.setBrush(box.fill.alpha() > 0 ? QBrush(box.fill) : QBrush(Qt::NoBrush));
  painter.drawRoundedRect(middle, radius, radius);
  painter.restore();
}

void paintCapsule(QPainter& painter, const QRectF& rect, const QColor& fill) {
  paintBox(painter, rect, {.fill = fill, .radius = rect.height() / 2});
}

void paintCircle(QPainter& painter, const QPointF& center, double diameter, const QColor& fill) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(fill);
  painter.drawEllipse(center, diameter / 2, diameter / 2);
  painter.restore();
}

void paintFocusRing(QPainter& painter, const QRectF& control, double radius, const QColor& ring) {
  const double reach = focusRingReach();
  const double middle = radius + metrics::focusRingRadius;
  paintBox(painter, control.adjusted(-reach, -reach, reach, reach),
           {.fill = Qt::transparent,
            .stroke = ring,
            .radius = middle + metrics::focusRingWidth / 2,
            .strokeWidth = metrics::focusRingWidth});
}

double focusRingReach() {
  return metrics::focusRingGap + metrics::focusRingWidth;
}

Shadow cardShadow(const Palette& palette) {
  return {2, 6, palette.cardShadow};
}
Shadow knobShadow(const Palette& palette) {
  return {1, 1.5, palette.knobShadow};
}
Shadow menuShadow(const Palette& palette) {
  return {8, 24, palette.menuShadow};
}

int reachOf(const Shadow& shadow) {
  return static_cast<int>(std::ceil(shadow.blur + std::abs(shadow.drop)));
}

void paintShadow(QPainter& painter, const QRectF& rect, double radius, const Shadow& shadow) {
  const QTransform toDevice = painter.deviceTransform();
  if (shadow.color.alpha() == 0 || toDevice.type() > QTransform::TxScale) return;
  const double scale = deviceScale(painter);
  const QRectF ground = toDevice.mapRect(onPixels(painter, rect.translated(0, shadow.drop)));
  const int reach = std::max(1, static_cast<int>(std::ceil(shadow.blur * scale)));
  const double round = std::min(radius * scale, std::min(ground.width(), ground.height()) / 2);
  // A corner holds all that the blur bends; a shape too small for it has no edges between its corners.
  const int corner = std::max(1, std::min(static_cast<int>(std::ceil(round)) + reach,
                                          static_cast<int>(std::min(ground.width(), ground.height())) / 2));

  const QString key = QStringLiteral("ventolith-shadow-%1-%2-%3-%4")
                          .arg(corner)
                          .arg(reach)
                          .arg(round)
                          .arg(shadow.color.rgba(), 0, 16);
  QPixmap picture;
  if (!QPixmapCache::find(key, &picture)) {
    picture = shadowPicture(corner, reach, round, shadow.color);
    QPixmapCache::insert(key, picture);
  }

  const double edge = corner + reach;
  const QRectF all = ground.adjusted(-reach, -reach, reach, reach);
  const double columns[] = {all.left(), all.left() + edge, all.right() - edge, all.right()};
  const double rows[] = {all.top(), all.top() + edge, all.bottom() - edge, all.bottom()};
  const double from[] = {0, edge, edge + 1, 2 * edge + 1};
  const QTransform toPainter = toDevice.inverted();
  for (int row = 0; row < 3; ++row)
    for (int column = 0; column < 3; ++column) {
      const QRectF target(QPointF(columns[column], rows[row]), QPointF(columns[column + 1], rows[row + 1]));
      const QRectF source(QPointF(from[column], from[row]), QPointF(from[column + 1], from[row + 1]));
      if (target.isEmpty()) continue;
      painter.drawPixmap(toPainter.mapRect(target), picture, source);
    }
}

void paintFloating(QPainter& painter, const QRectF& rect, const Box& box,
                   const std::optional<Shadow>& shadow) {
  if (shadow)
    paintShadow(painter, rect, box.radius, *shadow);
  else
    painter.fillRect(rect, box.fill); // The cut is sharp: nothing of the window's ground is to show in it.
  paintBox(painter, rect, box);
}

QRegion roundedRegion(const QRect& rect, double radius) {
  QBitmap shape(rect.size());
  shape.clear();
  QPainter painter(&shape);
  painter.setPen(Qt::NoPen);
  painter.setBrush(Qt::color1);
  painter.drawRoundedRect(QRect({}, rect.size()), radius, radius);
  painter.end();
  return QRegion(shape).translated(rect.topLeft());
}

} // namespace ventolith::ui
