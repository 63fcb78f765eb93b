#include "programs/ventolith/window/OpenedAgain.h"

#import <AppKit/AppKit.h>

#include <utility>

/// Takes the event from AppKit, which takes it for itself until the application has been launched.
@interface VentolithReopening : NSObject
- (instancetype)initWithOpened:(std::function<void()>)opened;
- (void)stop;
@end

@implementation VentolithReopening {
  std::function<void()> opened_;
}

- (instancetype)initWithOpened:(std::function<void()>)opened {
  self = [super init];
  if (self == nil) return nil;
  opened_ = std::move(opened);
  if (NSRunningApplication.currentApplication.finishedLaunching) {
    [self takeEvent];
    return self;
  }
  [NSNotificationCenter.defaultCenter addObserver:self
                                         selector:@selector(launched:)
                                             name:NSApplicationDidFinishLaunchingNotification
                                           object:nil];
  return self;
}

- (void)launched:(NSNotification*)notification {
  [self takeEvent];
}

- (void)takeEvent {
  [NSAppleEventManager.sharedAppleEventManager setEventHandler:self
                                                   andSelector:@selector(reopen:reply:)
                                                 forEventClass:kCoreEventClass
                                                    andEventID:kAEReopenApplication];
}

- (void)reopen:(NSAppleEventDescriptor*)event reply:(NSAppleEventDescriptor*)reply {
  if (opened_) opened_();
}

- (void)stop {
  [NSNotificationCenter.defaultCenter removeObserver:self];
  [NSAppleEventManager.sharedAppleEventManager removeEventHandlerForEventClass:kCoreEventClass
                                                                    andEventID:kAEReopenApplication];
  opened_ = nullptr;
}

@end

namespace ventolith::programs {

namespace {

class Reopening final : public QObject {
public:
  explicit Reopening(std::function<void()> opened)
      : reopening_([[VentolithReopening alloc] initWithOpened:std::move(opened)]) {}
  ~Reopening() override { [reopening_ stop]; }

private:
  VentolithReopening* reopening_;
};

} // namespace

std::unique_ptr<QObject> whenOpenedAgain(std::function<void()> opened) {
  return std::make_unique<Reopening>(std::move(opened));
}

} // namespace ventolith::programs
