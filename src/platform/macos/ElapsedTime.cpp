#include "platform/macos/ElapsedTime.h"

#include "platform/macos/MachTime.h"

#include <mach/mach_time.h>

namespace ventolith::platform {

runtime::Instant elapsedTime() {
  return runtime::Instant(fromMachTicks(::mach_continuous_time()));
}

runtime::Duration timeAsleep() {
  const runtime::Duration awake = fromMachTicks(::mach_absolute_time()); // First, or it could be the larger.
  return elapsedTime().time_since_epoch() - awake;
}

} // namespace ventolith::platform
