// Shapes as the whole interface draws them: edges on the device's pixels at any scale factor.
#pragma once

#include "ui/kit/Palette.h"

#include <QRectF>
#include <QRegion>

#include <optional>

QT_BEGIN_NAMESPACE
class QPainter;
QT_END_NAMESPACE

namespace ventolith::ui {

/// Device pixels to one of the painter's units.
[[nodiscard]] double deviceScale(const QPainter& painter);
/// `rect` with each edge on the nearest edge of a device pixel.
[[nodiscard]] QRectF onPixels(const QPainter& painter, const QRectF& rect);
/// `width` as a whole number of device pixels, one at the least.
[[nodiscard]] double strokeOnPixels(const QPainter& painter, double width);

/// A rounded rectangle. What has no alpha is not drawn. The stroke lies wholly inside the rectangle.
struct Box {
  QColor fill;
  QColor stroke = Qt::transparent;
  double radius = 0;
  double strokeWidth = 1;
  double dashOn = 0, dashOff = 0; ///< Pixels; both 0 is an unbroken stroke.
};
void paintBox(QPainter& painter, const QRectF& rect, const Box& box);

/// Round at both ends.
void paintCapsule(QPainter& painter, const QRectF& rect, const QColor& fill);
void paintCircle(QPainter& painter, const QPointF& center, double diameter, const QColor& fill);

/// Around `control`, which has corners of `radius`: 3 wide, 1 outside it.
void paintFocusRing(QPainter& painter, const QRectF& control, double radius, const QColor& ring);
/// How far the ring reaches beyond the control: what a widget with a ring leaves free around it.
[[nodiscard]] double focusRingReach();

/// Of what lies `drop` above its ground; `blur` is the width of the soft edge.
struct Shadow {
  double drop = 0;
  double blur = 0;
  QColor color;
};
[[nodiscard]] Shadow cardShadow(const Palette& palette);
[[nodiscard]] Shadow knobShadow(const Palette& palette);
[[nodiscard]] Shadow menuShadow(const Palette& palette);
/// How far it reaches beyond the shape on any side.
[[nodiscard]] int reachOf(const Shadow& shadow);
/// The shadow of a rounded rectangle; the shape itself is painted over it by the caller.
void paintShadow(QPainter& painter, const QRectF& rect, double radius, const Shadow& shadow);

/// A panel in a window of its own: its shadow and the panel, or, without a shadow, the panel alone in a
/// window that is cut to its `roundedRegion`.
void paintFloating(QPainter& painter, const QRectF& rect, const Box& box,
                   const std::optional<Shadow>& shadow);
[[nodiscard]] QRegion roundedRegion(const QRect& rect, double radius);

} // namespace ventolith::ui
