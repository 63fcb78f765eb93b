// Whether there is anything to show a window on.
#pragma once

#include "programs/common/MachineSelection.h"

namespace ventolith::programs {

/// Whether this process can show windows; asked before Qt, which would end the process by a signal.
[[nodiscard]] bool hasDisplay(const Environment& environment);

} // namespace ventolith::programs
