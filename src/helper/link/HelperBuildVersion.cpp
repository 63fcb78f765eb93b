#include "helper/link/HelperBuildVersion.h"

namespace ventolith::helper {

const char* const HelperBuildVersion::identifier = VENTOLITH_BUILD_IDENTIFIER;

} // namespace ventolith::helper
