// The unit in which macOS counts its time.
#pragma once

#include "runtime/Time.h"

#include <cstdint>

namespace ventolith::platform {

/// Rounded down to a nanosecond.
[[nodiscard]] runtime::Duration fromMachTicks(std::uint64_t ticks);

/// The first tick that is not before `time`, which is not negative.
[[nodiscard]] std::uint64_t toMachTicks(runtime::Duration time);

} // namespace ventolith::platform
