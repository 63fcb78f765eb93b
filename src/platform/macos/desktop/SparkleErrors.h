// Foundation's errors, as the application knows errors. For Objective-C++ alone.
#pragma once

#include "app/UpdateEngine.h"

#import <Foundation/Foundation.h>

namespace ventolith::platform {

/// With the error beneath it, but none beneath that.
[[nodiscard]] app::PlatformError platformError(NSError* error);

} // namespace ventolith::platform
