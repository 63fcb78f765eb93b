// The machine that this process runs on.
#pragma once

#include "hardware/Machine.h"

namespace ventolith::platform {

/// This Mac: its SMC and its HID event system, whether or not either answers. Its fans are root's.
[[nodiscard]] hardware::Machine thisComputer();

} // namespace ventolith::platform
