// Draws icons: one colour, any size, sharp on the device's own pixels.
//
// An icon's shape comes from a `SymbolSource` as a mask; it is tinted with the colour that is asked for.
// Masks and tinted pictures are kept, the latest used, up to a fixed number of bytes.
#pragma once

#include "ui/kit/Palette.h"
#include "ui/kit/Symbol.h"

#include <QIcon>
#include <QImage>
#include <QRectF>

#include <memory>

QT_BEGIN_NAMESPACE
class QPainter;
QT_END_NAMESPACE

namespace ventolith::ui {

class Theme;

/// Where the shapes come from. A system with symbols of its own brings another source.
class SymbolSource {
public:
  SymbolSource() = default;
  SymbolSource(const SymbolSource&) = delete;
  SymbolSource& operator=(const SymbolSource&) = delete;
  virtual ~SymbolSource() = default;

  /// The shape in a square of `pixels` a side, as opacity (QImage::Format_Alpha8). A source that lacks the
  /// symbol returns a null image: the house's drawing is taken.
  [[nodiscard]] virtual QImage mask(Symbol symbol, int pixels) const = 0;
};

/// The house's drawings (icons/*.svg, compiled in). Black is the icon; white cuts out of it.
class SVGSymbols final : public SymbolSource {
public:
  [[nodiscard]] QImage mask(Symbol symbol, int pixels) const override;
};

class Icons {
public:
  explicit Icons(std::unique_ptr<SymbolSource> source);
  ~Icons();

  /// Fills the largest square in the middle of `rect`, moved by less than a pixel onto the device's pixels.
  void paint(QPainter& painter, const QRectF& rect, Symbol symbol, const QColor& color) const;

  /// For what takes a QIcon: tinted with the theme's colour of that role at the moment it is painted, and
  /// with `tertiaryText` when disabled. The theme outlives it.
  [[nodiscard]] static QIcon icon(const Theme& theme, Symbol symbol, ColorRole role);

private:
  [[nodiscard]] QImage tinted(Symbol symbol, int pixels, const QColor& color) const;
  [[nodiscard]] QImage mask(Symbol symbol, int pixels) const;

  struct Key;
  struct Cache;
  std::unique_ptr<SymbolSource> source_;
  SVGSymbols drawings_;
  std::unique_ptr<Cache> cache_;
};

} // namespace ventolith::ui
