#include "runtime/Time.h"

#include <cmath>

namespace ventolith::runtime {

double toSeconds(Duration span) {
  return std::chrono::duration<double>(span).count();
}

Duration fromSeconds(double seconds) {
  if (std::isnan(seconds)) return Duration::zero();
  const double nanoseconds = std::round(seconds * 1e9);
  constexpr double limit = 9.2e18; // Below the largest 64-bit count.
  if (nanoseconds >= limit) return Duration::max();
  if (nanoseconds <= -limit) return -Duration::max();
  return Duration(static_cast<Duration::rep>(nanoseconds));
}

} // namespace ventolith::runtime
