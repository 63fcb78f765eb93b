// Points in time and spans of it, as every owner and every pure function of the system takes them.
#pragma once

#include <chrono>

namespace ventolith::runtime {

using Duration = std::chrono::nanoseconds;

/// The time line of `Instant`: it counts while the machine sleeps and never jumps. Only a `Clock` reads
/// it, which is why there is no now() here.
struct ElapsedTime {
  using rep = Duration::rep;
  using period = Duration::period;
  using duration = Duration;
  using time_point = std::chrono::time_point<ElapsedTime, Duration>;
  static constexpr bool is_steady = true;
};
using Instant = ElapsedTime::time_point;

/// A date for display. Never used to measure a span.
using WallTime = std::chrono::system_clock::time_point;

/// "Never": earlier than any instant that a clock gives. Nothing may be subtracted from it.
inline constexpr Instant distantPast = Instant::min();
inline constexpr WallTime distantPastDate = WallTime::min();

/// `span` in seconds.
[[nodiscard]] double toSeconds(Duration span);

/// `seconds` as a span, rounded to the nearest nanosecond. What does not fit (292 years either way, or
/// not a number) gives the nearest span that does (zero for not a number).
[[nodiscard]] Duration fromSeconds(double seconds);

} // namespace ventolith::runtime
