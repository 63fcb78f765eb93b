// The one source of time and the one way to wait.
#pragma once

#include "runtime/Async.h"
#include "runtime/StopToken.h"
#include "runtime/Time.h"

namespace ventolith::runtime {

class Clock {
public:
  Clock() = default;
  Clock(const Clock&) = delete;
  Clock& operator=(const Clock&) = delete;
  virtual ~Clock() = default;

  [[nodiscard]] virtual Instant now() const = 0;

  /// For time stamps that are shown.
  [[nodiscard]] virtual WallTime wallTime() const = 0;

  /// Returns at `deadline`, or as soon as `stop` is requested if that is earlier. Never throws: who
  /// needs to know why it returned asks the token.
  virtual Async<void> sleepUntil(Instant deadline, StopToken stop) = 0;

  /// A span that reaches beyond the time line lasts until `stop` is requested.
  Async<void> sleep(Duration span, StopToken stop) {
    const Instant start = now();
    const bool isBeyond = start > Instant() && span > Instant::max() - start;
    return sleepUntil(isBeyond ? Instant::max() : start + span, std::move(stop));
  }
};

} // namespace ventolith::runtime
