#include "IconFile.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <QtEndian>

#include <array>

namespace ventolith::packaging {

namespace {

struct Size {
  const char* type; // Four letters, by which the file names it.
  int pixels;
};

/// Each size, and then the same with doubled pixels.
constexpr std::array<Size, 8> sizes{{{"ic11", 32}, // 16 points, doubled.
                                     {"ic12", 64}, // 32 points, doubled.
                                     {"ic07", 128},
                                     {"ic13", 256},
                                     {"ic08", 256},
                                     {"ic14", 512},
                                     {"ic09", 512},
                                     {"ic10", 1024}}};
constexpr int headerBytes = 8;

/// A name of four letters, the length of all including these eight bytes, and `content`.
QByteArray chunk(const char* type, const QByteArray& content) {
  QByteArray length(4, '\0');
  qToBigEndian(static_cast<quint32>(content.size() + headerBytes), length.data());
  return QByteArray(type, 4) + length + content;
}

QByteArray picture(QSvgRenderer& drawing, int pixels) {
  QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  drawing.render(&painter);
  painter.end();
  QBuffer buffer;
  buffer.open(QIODevice::WriteOnly);
  return image.save(&buffer, "PNG") ? buffer.data() : QByteArray();
}

} // namespace

QByteArray iconFileOf(QSvgRenderer& drawing) {
  QByteArray content;
  for (const Size& size : sizes) {
    const QByteArray image = picture(drawing, size.pixels);
    if (image.isEmpty()) return {};
    content += chunk(size.type, image);
  }
  return chunk("icns", content);
}

} // namespace ventolith::packaging
