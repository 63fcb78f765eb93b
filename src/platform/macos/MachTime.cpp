#include "platform/macos/MachTime.h"

#include <mach/mach_time.h>

namespace ventolith::platform {

namespace {

/// A tick is numerator / denominator nanoseconds: 125/3 on Apple silicon.
struct Timebase {
  std::uint64_t numerator;
  std::uint64_t denominator;
};

const Timebase& timebase() {
  static const Timebase read = [] {
    mach_timebase_info_data_t info{};
    ::mach_timebase_info(&info);
    return Timebase{info.numer, info.denom};
  }();
  return read;
}

} // namespace

// Whole units first and then what is left, so that no product is too large.

runtime::Duration fromMachTicks(std::uint64_t ticks) {
  const auto& [numerator, denominator] = timebase();
  const std::uint64_t nanoseconds =
      ticks / denominator * numerator + ticks % denominator * numerator / denominator;
  return runtime::Duration(static_cast<runtime::Duration::rep>(nanoseconds));
}

std::uint64_t toMachTicks(runtime::Duration time) {
  const auto& [numerator, denominator] = timebase();
  const auto nanoseconds = static_cast<std::uint64_t>(time.count());
  const std::uint64_t rest = nanoseconds % numerator * denominator;
  return nanoseconds / numerator * denominator + (rest + numerator - 1) / numerator;
}

} // namespace ventolith::platform
