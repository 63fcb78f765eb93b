#include "platform/macos/service/SMAppServiceDaemon.h"

#include "platform/macos/service/DaemonStatusOf.h"
#include "platform/macos/service/FoundationText.h"

#import <ServiceManagement/ServiceManagement.h>

#include <optional>
#include <string>

namespace ventolith::platform {

using helper::DaemonStatus;
using ErrorText = helper::DaemonService::ErrorText;

namespace {

constexpr std::int64_t longestAnswer = 30 * std::int64_t{NSEC_PER_SEC};

SMAppService* daemon() {
  return [SMAppService daemonServiceWithPlistName:@"com.ventolith.helper.plist"];
}

ErrorText registerNow() {
  NSError* error = nil;
  if ([daemon() registerAndReturnError:&error]) return std::nullopt;
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
  return failure == nil ? std::nullopt : ErrorText(textOf(failure));
}

} // namespace

runtime::Async<DaemonStatus> SMAppServiceDaemon::status() {
  return queue_.run([] { return daemonStatusOf(daemon().status); });
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
