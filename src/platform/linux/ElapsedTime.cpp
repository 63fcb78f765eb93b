#include "platform/linux/ElapsedTime.h"

#include <ctime>

namespace ventolith::platform {

namespace {

runtime::Duration readClock(clockid_t clock) {
  timespec time{};
  ::clock_gettime(clock, &time);
  return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace

runtime::Instant elapsedTime() {
  return runtime::Instant(readClock(CLOCK_BOOTTIME));
}

runtime::Duration timeAsleep() {
  return readClock(CLOCK_BOOTTIME) - readClock(CLOCK_MONOTONIC);
}

} // namespace ventolith::platform
