// Texts of Core Foundation.
#pragma once

#include "platform/macos/CFOwned.h"

#include <CoreFoundation/CoreFoundation.h>

#include <string>
#include <string_view>

namespace ventolith::platform {

/// In UTF-8. Empty for null, for what is no string, and for a string that has no form in UTF-8.
[[nodiscard]] std::string textOf(CFTypeRef object);

/// The other way. Null for what is no UTF-8.
[[nodiscard]] CFOwned<CFStringRef> cfText(std::string_view text);

} // namespace ventolith::platform
