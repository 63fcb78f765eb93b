#include "ui/kit/FollowsDesktop.h"

#include "ui/kit/Theme.h"

#import <AppKit/AppKit.h>

#include <functional>
#include <utility>

/// Calls back on the main thread when appearance, accent colour or the wish for stillness changes.
@interface VentolithLookObserver : NSObject
- (instancetype)initWithChanged:(std::function<void()>)changed;
- (void)stop;
@end

@implementation VentolithLookObserver {
  std::function<void()> changed_;
}

- (instancetype)initWithChanged:(std::function<void()>)changed {
  self = [super init];
  if (self == nil) return nil;
  changed_ = std::move(changed);
  [NSApplication.sharedApplication addObserver:self forKeyPath:@"effectiveAppearance" options:0 context:nil];
  [NSNotificationCenter.defaultCenter addObserver:self
                                         selector:@selector(lookChanged:)
                                             name:NSSystemColorsDidChangeNotification
                                           object:nil];
  [NSWorkspace.sharedWorkspace.notificationCenter
      addObserver:self
         selector:@selector(lookChanged:)
             name:NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification
           object:nil];
  return self;
}

- (void)stop {
  [NSApplication.sharedApplication removeObserver:self forKeyPath:@"effectiveAppearance"];
  [NSNotificationCenter.defaultCenter removeObserver:self];
  [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:self];
  changed_ = nullptr;
}

- (void)lookChanged:(NSNotification*)notification {
  if (changed_) changed_();
}

- (void)observeValueForKeyPath:(NSString*)keyPath
                      ofObject:(id)object
                        change:(NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(void*)context {
  if (changed_) changed_();
}

@end

namespace ventolith::ui {
namespace {

std::optional<QColor> colorOf(NSColor* color) {
  NSColor* const rgb = [color colorUsingColorSpace:NSColorSpace.sRGBColorSpace];
  if (rgb == nil) return std::nullopt;
  return QColor::fromRgbF(static_cast<float>(rgb.redComponent), static_cast<float>(rgb.greenComponent),
                          static_cast<float>(rgb.blueComponent));
}

SystemLook presentLook() {
  NSAppearance* const present = NSApplication.sharedApplication.effectiveAppearance;
  NSAppearanceName const nearest =
      [present bestMatchFromAppearancesWithNames:@[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ]];
  SystemLook look;
  look.appearance = [nearest isEqualToString:NSAppearanceNameDarkAqua] ? Appearance::dark : Appearance::light;
  look.reduceMotion = static_cast<bool>(NSWorkspace.sharedWorkspace.accessibilityDisplayShouldReduceMotion);
  __block std::optional<QColor> accent; // Another one for each appearance.
  [present performAsCurrentDrawingAppearance:^{
    accent = colorOf(NSColor.controlAccentColor);
  }];
  look.accent = accent;
  return look;
}

class FollowsMac final : public QObject {
public:
  explicit FollowsMac(Theme& theme) : theme_(theme) {
    observer_ = [[VentolithLookObserver alloc] initWithChanged:[this] { read(); }];
    read();
  }
  ~FollowsMac() override { [observer_ stop]; }

private:
  void read() {
    @autoreleasepool {
      theme_.setDesktopLook(presentLook());
    }
  }

  Theme& theme_;
  VentolithLookObserver* observer_;
};

} // namespace

std::unique_ptr<QObject> followDesktop(Theme& theme) {
  return std::make_unique<FollowsMac>(theme);
}

} // namespace ventolith::ui
