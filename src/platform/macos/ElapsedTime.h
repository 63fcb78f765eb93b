// The system's elapsed time, and how much of it the machine slept.
#pragma once

#include "runtime/Time.h"

namespace ventolith::platform {

/// Time since boot, sleep included. Never jumps.
[[nodiscard]] runtime::Instant elapsedTime();

/// How long the machine has slept since boot. Grows at a wake-up; what it is compared with should allow for a
/// few microseconds, since two clocks are read one after the other.
[[nodiscard]] runtime::Duration timeAsleep();

} // namespace ventolith::platform
