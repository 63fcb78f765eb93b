#include "platform/macos/desktop/SparkleErrors.h"

#include "platform/macos/service/FoundationText.h"

#include <memory>

namespace ventolith::platform {

namespace {

/// How a cancelled task of Swift's, of which the framework may make use, looks from Objective-C.
NSString* const taskCancellationDomain = @"Swift.CancellationError";

app::PlatformError flatError(NSError* error) {
  return {.domain = textOf(error.domain),
          .code = error.code,
          .description = textOf(error),
          .underlying = nullptr,
          .isTaskCancellation = [error.domain isEqualToString:taskCancellationDomain] == YES};
}

} // namespace

app::PlatformError platformError(NSError* error) {
  app::PlatformError result = flatError(error);
  const id beneath = error.userInfo[NSUnderlyingErrorKey];
  if ([beneath isKindOfClass:NSError.class])
    result.underlying = std::make_shared<const app::PlatformError>(flatError(beneath));
  return result;
}

} // namespace ventolith::platform
