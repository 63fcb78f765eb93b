// The kernel's own account of the power supplies: a folder for each under /sys/class/power_supply.
#pragma once

#include "app/PowerSource.h"

#include <filesystem>

namespace ventolith::platform {

/// Reads them all. Mains or USB that is online is `ac`; without such a one a battery that discharges is
/// `battery`; without any mains a battery that charges, is full or rests is `ac`, since chargers are not
/// shown everywhere. Everything else, an uninterruptible supply among it, is `unknown`. What feeds a
/// device, as the batteries of mice do, does not count. No content makes this fail.
[[nodiscard]] app::PowerSource powerSourceIn(const std::filesystem::path& folder);

} // namespace ventolith::platform
