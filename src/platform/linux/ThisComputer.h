// The machine that this process runs on.
#pragma once

#include "hardware/Machine.h"

namespace ventolith::platform {

/// This computer: its hwmon devices in VENTOLITH_HWMON_ROOT, else in /sys/class/hwmon; or the absent
/// machine if there is none.
[[nodiscard]] hardware::Machine thisComputer();

} // namespace ventolith::platform
