// The rhythm of a command that reads again and again.
#pragma once

#include "runtime/Clock.h"

#include <optional>

namespace ventolith::ctl {

/// A tick at once, then one every period; for so many seconds, or until a stop. A tick that takes longer
/// than the period delays those after it, and is not made up for.
class Pace {
public:
  /// `clock` outlives the pace. `seconds`: none is without end.
  Pace(runtime::Clock& clock, runtime::StopToken stop, runtime::Duration period,
       std::optional<double> seconds);

  [[nodiscard]] bool isOver() const { return stop_.stopRequested() || (end_ && due_ > *end_); }
  /// Since the first tick.
  [[nodiscard]] double elapsedSeconds() const { return runtime::toSeconds(clock_.now() - start_); }
  /// Waits for the next tick; for the end, if no tick comes before it.
  runtime::Async<void> wait();

private:
  runtime::Clock& clock_;
  runtime::StopToken stop_;
  runtime::Duration period_;
  runtime::Instant start_;
  runtime::Instant due_;
  std::optional<runtime::Instant> end_;
};

} // namespace ventolith::ctl
