#include "ui/kit/Icons.h"

#include "ui/kit/Painting.h"
#include "ui/kit/Theme.h"

#include <QCache>
#include <QIconEngine>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>

static void loadIconResources() {
  Q_INIT_RESOURCE(icons);
} // Must stand outside any namespace.

namespace ventolith::ui {
namespace {

// Enough for every icon of a window at twice the size; a mask takes a quarter of a tinted picture.
constexpr qsizetype cachedBytes = 512 * 1024;

// Black is what shows, white what is cut out of it, and edges between the two are as soft as they were drawn.
QImage opacityOf(const QImage& drawing) {
  QImage mask(drawing.size(), QImage::Format_Alpha8);
  for (int y = 0; y < drawing.height(); ++y) {
    const auto* from =
        reinterpret_cast<const QRgb*>(drawing.constScanLine(y)); // NOLINT: the format's own pixels
    uchar* to = mask.scanLine(y);
    for (int x = 0; x < drawing.width(); ++x)
      to[x] = static_cast<uchar>(qAlpha(from[x]) - qRed(from[x]));
  }
  return mask;
}

class ThemedEngine final : public QIconEngine {
public:
  ThemedEngine(const Theme& theme, Symbol symbol, ColorRole role)
      : theme_(theme), symbol_(symbol), role_(role) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
    const ColorRole role = mode == QIcon::Disabled ? &Palette::tertiaryText : role_;
    theme_.icons().paint(*painter, rect, symbol_, theme_.color(role));
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect(QPoint(), size), mode, state);
    return pixmap;
  }

  [[nodiscard]] QIconEngine* clone() const override { return new ThemedEngine(*this); }

private:
  const Theme& theme_;
  Symbol symbol_;
  ColorRole role_;
};

} // namespace

QImage SVGSymbols::mask(Symbol symbol, int pixels) const {
  loadIconResources();
  QSvgRenderer renderer(QLatin1String(":/ventolith/icons/") + nameOf(symbol) + QLatin1String(".svg"));
  if (!renderer.isValid()) return {};
  QImage drawing(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
  drawing.fill(Qt::transparent);
  QPainter painter(&drawing);
  painter.setRenderHint(QPainter::Antialiasing);
  renderer.render(&painter, QRectF(0, 0, pixels, pixels));
  painter.end();
  return opacityOf(drawing);
}

struct Icons::Key {
  Symbol symbol;
  int pixels;
  QRgb color; // 0 for the mask itself.

  bool operator==(const Key&) const = default;
  friend size_t qHash(const Key& key, size_t seed = 0) {
    return qHashMulti(seed, static_cast<int>(key.symbol), key.pixels, key.color);
  }
};

struct Icons::Cache {
  QCache<Key, QImage> images{cachedBytes};
};

Icons::Icons(std::unique_ptr<SymbolSource> source)
    : source_(std::move(source)), cache_(std::make_unique<Cache>()) {}

Icons::~Icons() = default;

QImage Icons::mask(Symbol symbol, int pixels) const {
  const Key key{symbol, pixels, 0};
  if (const QImage* known = cache_->images.object(key)) return *known;
  QImage image = source_->mask(symbol, pixels);
  if (image.isNull()) image = drawings_.mask(symbol, pixels);
  cache_->images.insert(key, new QImage(image), image.sizeInBytes());
  return image;
}

QImage Icons::tinted(Symbol symbol, int pixels, const QColor& color) const {
  const Key key{symbol, pixels, color.rgba()};
  if (const QImage* known = cache_->images.object(key)) return *known;
  QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
  image.fill(color);
  QPainter painter(&image);
  painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
  painter.drawImage(QRect(0, 0, pixels, pixels), mask(symbol, pixels));
  painter.end();
  cache_->images.insert(key, new QImage(image), image.sizeInBytes());
  return image;
}

void Icons::paint(QPainter& painter, const QRectF& rect, Symbol symbol, const QColor& color) const {
  const double side = std::min(rect.width(), rect.height());
  if (side <= 0 || color.alpha() == 0) return;
  const int pixels = std::max(1, static_cast<int>(std::lround(side * deviceScale(painter))));
  QRectF square(0, 0, side, side);
  square.moveCenter(rect.center());
  // One pixel of the picture on one of the device.
  const QTransform toDevice = painter.deviceTransform();
  if (toDevice.type() > QTransform::TxScale) {
    const bool smooth = painter.testRenderHint(QPainter::SmoothPixmapTransform);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(square, tinted(symbol, pixels, color));
    painter.setRenderHint(QPainter::SmoothPixmapTransform, smooth);
    return;
  }
  const QPointF corner = toDevice.map(square.topLeft());
  const QRectF device(std::round(corner.x()), std::round(corner.y()), pixels, pixels);
  painter.drawImage(toDevice.inverted().mapRect(device), tinted(symbol, pixels, color));
}

QIcon Icons::icon(const Theme& theme, Symbol symbol, ColorRole role) {
  return QIcon(new ThemedEngine(theme, symbol, role)); // The icon owns its engine.
}

} // namespace ventolith::ui
