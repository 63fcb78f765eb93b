// Texts of Core Foundation.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string>

namespace ventolith::platform {

/// In UTF-8. Empty for null, for what is no string, and for a string that has no form in UTF-8.
[[nodiscard]] std::string textOf(CFTypeRef object);

} // namespace ventolith::platform
