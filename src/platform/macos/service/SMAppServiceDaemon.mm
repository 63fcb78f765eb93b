#include "platform/macos/service/SMAppServiceDaemon.h"

#include "platform/macos/service/DaemonStatusOf.h"
#include "platform/macos/service/FoundationText.h"

#import <ServiceManagement/ServiceManagement.h>

#include <cstdint>
#include <optional>
#include <string>

namespace ventolith::platform {

using helper::DaemonStatus;
using ErrorText = helper::DaemonService::ErrorText;

namespace {

/// Longer than launchd lets the helper take to give the fans back.
constexpr std::int64_t longestAnswer = 40 * std::int64_t{NSEC_PER_SEC};

constexpr NSInteger alreadyRegistered = 12; // kSMErrorAlreadyRegistered, in headers since macOS 13.

NSString* const propertyListName = @"com.ventolith.helper.plist";

SMAppService* daemon() {
  return [SMAppService daemonServiceWithPlistName:propertyListName];
}

PropertyList lookForPropertyList() {
  NSURL* const folder =
      [NSBundle.mainBundle.bundleURL URLByAppendingPathComponent:@"Contents/Library/LaunchDaemons"
                                                     isDirectory:YES];
  NSURL* const file = [folder URLByAppendingPathComponent:propertyListName isDirectory:NO];
  return [file checkResourceIsReachableAndReturnError:nil] ? PropertyList::isBrought
                                                           : PropertyList::isMissing;
}

DaemonStatus statusNow() {
  return daemonStatusOf(daemon().status, lookForPropertyList);
}

ErrorText registerNow() {
  NSError* error = nil;
  if ([daemon() registerAndReturnError:&error]) return std::nullopt;
  if (error.code == alreadyRegistered && statusNow() == DaemonStatus::enabled) return std::nullopt;
  return textOf(error);
}

/// Waits, so that what follows on the queue finds it done.
ErrorText unregisterNow() {
  dispatch_semaphore_t const answered = dispatch_semaphore_create(0);
  __block NSError* failure = nil;
  [daemon() unregisterWithCompletionHandler:^(NSError* error) {
    failure = error;
    dispatch_semaphore_signal(answered);
  }];
  if (dispatch_semaphore_wait(answered, dispatch_time(DISPATCH_TIME_NOW, longestAnswer)) != 0)
    return "macOS does not say whether it has removed the helper";
  if (failure == nil || !isRegistered(statusNow())) return std::nullopt;
  return textOf(failure);
}

} // namespace

runtime::Async<DaemonStatus> SMAppServiceDaemon::status() {
  return queue_.run(statusNow);
}

runtime::Async<ErrorText> SMAppServiceDaemon::registerDaemon() {
  return queue_.run(registerNow);
}

runtime::Async<ErrorText> SMAppServiceDaemon::unregisterDaemon() {
  return queue_.run(unregisterNow);
}

void SMAppServiceDaemon::openSystemSettings() {
  queue_.post([] { [SMAppService openSystemSettingsLoginItems]; });
}

} // namespace ventolith::platform
