// Painting into a picture, and looking at it.
#pragma once

#include <QImage>
#include <QPainter>
#include <QRect>

#include <functional>

namespace ventolith::ui {

/// A picture of `width` by `height` with `scale` device pixels to one of the painter's.
inline QImage painted(int width, int height, double scale, const std::function<void(QPainter&)>& paint) {
  QImage image(QSize(width, height) * scale, QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(scale);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  paint(painter);
  return image;
}

/// The smallest rectangle of device pixels that holds all that is not wholly transparent.
inline QRect inked(const QImage& image) {
  QRect found;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (qAlpha(image.pixel(x, y)) > 0) found |= QRect(x, y, 1, 1);
  return found;
}

} // namespace ventolith::ui
