// What a window is shown on, as far as Qt does not tell.
#pragma once

#include "programs/common/MachineSelection.h"

namespace ventolith::programs {

/// Whether this process can show windows; asked before Qt, which would end the process by a signal.
[[nodiscard]] bool hasDisplay(const Environment& environment);

/// Whether windows are shown with an icon that the program gives them, rather than with the bundle's.
[[nodiscard]] bool givesOwnIcon();

} // namespace ventolith::programs
