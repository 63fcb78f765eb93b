// No process is slowed down for being out of sight.
#include "programs/ventolith/FullSpeed.h"

namespace ventolith::programs {

void keepFullSpeed() {}

} // namespace ventolith::programs
