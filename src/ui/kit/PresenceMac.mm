#include "ui/kit/Presence.h"

#import <AppKit/AppKit.h>

namespace ventolith::ui {
namespace {

/// Whether the bundle says that it begins outside the Dock; only such a one comes and goes there.
bool livesInMenuBar() {
  const id value = [NSBundle.mainBundle objectForInfoDictionaryKey:@"LSUIElement"];
  return [value respondsToSelector:@selector(boolValue)] && [value boolValue];
}

void stand(NSApplicationActivationPolicy policy) {
  if (livesInMenuBar()) [NSApplication.sharedApplication setActivationPolicy:policy];
}

} // namespace

void presentApplication() {
  @autoreleasepool {
    stand(NSApplicationActivationPolicyRegular);
    [NSApplication.sharedApplication activateIgnoringOtherApps:YES];
  }
}

void withdrawApplication() {
  @autoreleasepool {
    stand(NSApplicationActivationPolicyAccessory);
  }
}

} // namespace ventolith::ui
