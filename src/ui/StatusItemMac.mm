#include "ui/StatusItem.h"

#include "ui/kit/SystemSymbols.h"

#import <AppKit/AppKit.h>

#include <cmath>
#include <functional>
#include <utility>

/// What a button of AppKit sends its presses to.
@interface VentolithPressTarget : NSObject
- (instancetype)initWithPressed:(std::function<void()>)pressed;
- (void)press:(id)sender;
@end

@implementation VentolithPressTarget {
  std::function<void()> pressed_;
}

- (instancetype)initWithPressed:(std::function<void()>)pressed {
  self = [super init];
  if (self != nil) pressed_ = std::move(pressed);
  return self;
}

- (void)press:(id)sender {
  pressed_();
}

@end

namespace ventolith::ui {
namespace {

constexpr CGFloat iconSide = 16; // Points.

/// The house's drawing, for a system that lacks the symbol: a mask at twice the scale.
NSImage* drawnFan() {
  constexpr int pixels = static_cast<int>(iconSide) * 2;
  const QImage mask = SVGSymbols().mask(Symbol::fan, pixels);
  NSBitmapImageRep* const drawing =
      [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                              pixelsWide:pixels
                                              pixelsHigh:pixels
                                           bitsPerSample:8
                                         samplesPerPixel:2 // Grey, which is black, and the opacity.
                                                hasAlpha:YES
                                                isPlanar:NO
                                          colorSpaceName:NSDeviceWhiteColorSpace
                                             bytesPerRow:2 * pixels
                                            bitsPerPixel:16];
  unsigned char* to = drawing.bitmapData;
  for (int y = 0; y < pixels; ++y) {
    for (int x = 0; x < pixels; ++x) {
      *to++ = 0;
      *to++ = mask.constScanLine(y)[x];
    }
  }
  NSImage* const image = [[NSImage alloc] initWithSize:NSMakeSize(iconSide, iconSide)];
  [image addRepresentation:drawing];
  return image;
}

NSImage* fanImage() {
  NSImage* const symbol = [NSImage imageWithSystemSymbolName:nameOf(Symbol::fan).toNSString()
                                    accessibilityDescription:nil];
  NSImage* const image = symbol != nil ? symbol : drawnFan();
  [image setTemplate:YES]; // The bar tints it.
  return image;
}

/// A rectangle of AppKit, which counts upwards from the first screen's lower edge.
QRect inQt(NSRect rect) {
  const CGFloat height = NSMaxY(NSScreen.screens.firstObject.frame);
  return QRectF(NSMinX(rect), height - NSMaxY(rect), NSWidth(rect), NSHeight(rect)).toAlignedRect();
}

/// The fan, and room for the label as text beside it.
void furnish(NSStatusBarButton* button, VentolithPressTarget* target) {
  button.image = fanImage();
  // As the bar's own texts, but that the item keeps its width while figures change.
  button.font = [NSFont monospacedDigitSystemFontOfSize:[NSFont menuBarFontOfSize:0].pointSize
                                                 weight:NSFontWeightRegular];
  button.target = target;
  button.action = @selector(press:);
  [button sendActionOn:NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown];
}

void present(NSStatusBarButton* button, const StatusItemLabel& label) {
  button.title = label.text.toNSString();
  button.imagePosition = label.text.isEmpty() ? NSImageOnly : NSImageLeading;
  button.toolTip = label.meaning.toNSString();
  button.accessibilityLabel = label.meaning.toNSString();
}

/// An item of the menu bar, made when it is to be seen. Neither is it hidden before nor taken out of the bar
/// at the end: either way the system would forget where the user has moved it.
class MenuBarItem final : public StatusItem {
public:
  MenuBarItem() : target_([[VentolithPressTarget alloc] initWithPressed:[this] { takePress(); }]) {}
  ~MenuBarItem() override { item_.button.target = nil; }

  void setLabel(const StatusItemLabel& label) override {
    @autoreleasepool {
      label_ = label;
      present(item_.button, label_);
    }
  }
  void show() override {
    if (item_ != nil) return;
    @autoreleasepool {
      item_ = [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength];
      item_.visible = YES; // Whatever the system has kept of an earlier time.
      furnish(item_.button, target_);
      present(item_.button, label_);
    }
  }
  [[nodiscard]] bool isShown() const override { return item_.visible; }
  [[nodiscard]] QRect place() const override {
    @autoreleasepool {
      NSStatusBarButton* const button = item_.button;
      if (button.window == nil) return {};
      return inQt([button.window convertRectToScreen:[button convertRect:button.bounds toView:nil]]);
    }
  }

private:
  /// The keyboard is for the program in front, and the panel is to have it.
  void takePress() {
    [NSApplication.sharedApplication activateIgnoringOtherApps:YES];
    Q_EMIT pressed();
  }

  VentolithPressTarget* target_;
  NSStatusItem* item_ = nil; // Until it is shown.
  StatusItemLabel label_;
};

} // namespace

std::unique_ptr<StatusItem> makeStatusItem() {
  return std::make_unique<MenuBarItem>();
}

} // namespace ventolith::ui
