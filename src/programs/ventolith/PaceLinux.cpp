// No process is slowed down for being out of sight.
#include "programs/ventolith/Pace.h"

namespace ventolith::programs {

void keepPace() {}

} // namespace ventolith::programs
