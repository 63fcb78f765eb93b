#include "platform/macos/desktop/SparkleUpdateEngine.h"

#include "platform/macos/desktop/SparkleErrors.h"
#include "platform/macos/service/FoundationText.h"

#import <Sparkle/Sparkle.h>

#include <optional>
#include <utility>

namespace app = ventolith::app;
namespace platform = ventolith::platform;

/// Answers Sparkle's question, and passes on what it tells.
@interface VentolithSparkleChannelDelegate : NSObject <SPUUpdaterDelegate>

- (instancetype)initWithDelegate:(std::shared_ptr<app::UpdateEngineDelegate>)delegate
    NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;

@end

@implementation VentolithSparkleChannelDelegate {
  std::shared_ptr<app::UpdateEngineDelegate> _delegate;
  NSSet<NSString*>* _allowed;
}

- (instancetype)initWithDelegate:(std::shared_ptr<app::UpdateEngineDelegate>)delegate {
  self = [super init];
  if (!self) return nil;
  _delegate = std::move(delegate);
  NSMutableSet<NSString*>* const allowed = [NSMutableSet set];
  for (const auto& channel : _delegate->allowedChannels())
    [allowed addObject:platform::nsString(channel)];
  _allowed = [allowed copy];
  return self;
}

- (NSSet<NSString*>*)allowedChannelsForUpdater:(SPUUpdater*)updater {
  return _allowed;
}

- (void)updater:(SPUUpdater*)updater didFindValidUpdate:(SUAppcastItem*)item {
  _delegate->didFindValidUpdate(platform::textOf(item.displayVersionString));
}

- (void)updaterDidNotFindUpdate:(SPUUpdater*)updater {
  _delegate->didNotFindUpdate();
}

- (void)updater:(SPUUpdater*)updater didAbortWithError:(NSError*)error {
  _delegate->didAbort(platform::platformError(error));
}

- (void)updater:(SPUUpdater*)updater
    didFinishUpdateCycleForUpdateCheck:(SPUUpdateCheck)updateCheck
                                 error:(NSError*)error {
  _delegate->didFinishUpdateCycle(error == nil ? std::nullopt
                                               : std::optional(platform::platformError(error)));
}

@end

namespace ventolith::platform {

struct SparkleUpdateEngine::Updater {
  VentolithSparkleChannelDelegate* delegate; // Sparkle holds it weakly.
  SPUStandardUpdaterController* controller;
};

SparkleUpdateEngine::SparkleUpdateEngine(std::shared_ptr<app::UpdateEngineDelegate> delegate) {
  @autoreleasepool {
    VentolithSparkleChannelDelegate* const channels =
        [[VentolithSparkleChannelDelegate alloc] initWithDelegate:std::move(delegate)];
    updater_ = std::make_unique<Updater>(
        Updater{.delegate = channels,
                .controller = [[SPUStandardUpdaterController alloc] initWithStartingUpdater:YES
                                                                            updaterDelegate:channels
                                                                         userDriverDelegate:nil]});
  }
}

SparkleUpdateEngine::~SparkleUpdateEngine() = default;

void SparkleUpdateEngine::checkForUpdates() {
  @autoreleasepool {
    [updater_->controller checkForUpdates:nil];
  }
}

} // namespace ventolith::platform
