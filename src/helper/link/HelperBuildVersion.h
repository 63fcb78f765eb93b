// Which build this is: the same in the application and in the helper of one build.
#pragma once

namespace ventolith::helper {

struct HelperBuildVersion {
  /// A version, a plus sign and a build number, such as "1.0.3+6". Compared for equality alone.
  static const char* const identifier;
};

} // namespace ventolith::helper
