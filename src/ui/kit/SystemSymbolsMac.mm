#include "ui/kit/SystemSymbols.h"

#import <AppKit/AppKit.h>

#include <algorithm>
#include <memory>
#include <type_traits>

namespace ventolith::ui {
namespace {

struct Release {
  void operator()(CFTypeRef object) const { ::CFRelease(object); }
};
template <class Ref>
using Owned = std::unique_ptr<std::remove_pointer_t<Ref>, Release>;

/// A context that draws into `image`, upright for AppKit.
Owned<CGContextRef> contextOf(QImage& image) {
  const Owned<CGColorSpaceRef> space(CGColorSpaceCreateWithName(kCGColorSpaceSRGB));
  constexpr std::size_t bitsOfChannel = 8;
  const std::uint32_t layout = static_cast<std::uint32_t>(kCGImageAlphaPremultipliedFirst) |
                               static_cast<std::uint32_t>(kCGBitmapByteOrder32Host);
  return Owned<CGContextRef>(CGBitmapContextCreate(
      image.bits(), static_cast<std::size_t>(image.width()), static_cast<std::size_t>(image.height()),
      bitsOfChannel, static_cast<std::size_t>(image.bytesPerLine()), space.get(), layout));
}

/// As large as the square allows, in its middle.
NSRect fitted(NSSize size, double side) {
  const double scale = side / std::max(size.width, size.height);
  const NSSize drawn = NSMakeSize(size.width * scale, size.height * scale);
  return NSMakeRect((side - drawn.width) / 2, (side - drawn.height) / 2, drawn.width, drawn.height);
}

NSImage* symbolOf(Symbol symbol, int pixels) {
  NSImage* const image = [NSImage imageWithSystemSymbolName:nameOf(symbol).toNSString()
                                   accessibilityDescription:nil];
  NSImageSymbolConfiguration* const size =
      [NSImageSymbolConfiguration configurationWithPointSize:pixels weight:NSFontWeightRegular];
  return [image imageWithSymbolConfiguration:size];
}

class MacSymbols final : public SymbolSource {
public:
  [[nodiscard]] QImage mask(Symbol symbol, int pixels) const override {
    @autoreleasepool {
      NSImage* const shape = symbolOf(symbol, pixels);
      if (shape == nil || shape.size.width <= 0 || shape.size.height <= 0) return {};
      QImage drawing(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
      drawing.fill(Qt::transparent);
      const Owned<CGContextRef> context = contextOf(drawing);
      if (context == nullptr) return {};
      [NSGraphicsContext saveGraphicsState];
      NSGraphicsContext.currentContext = [NSGraphicsContext graphicsContextWithCGContext:context.get()
                                                                                 flipped:NO];
      [shape drawInRect:fitted(shape.size, pixels)
               fromRect:NSZeroRect
              operation:NSCompositingOperationSourceOver
               fraction:1];
      [NSGraphicsContext restoreGraphicsState];
      return drawing.convertToFormat(QImage::Format_Alpha8);
    }
  }
};

} // namespace

std::unique_ptr<SymbolSource> systemSymbols() {
  return std::make_unique<MacSymbols>();
}

} // namespace ventolith::ui
