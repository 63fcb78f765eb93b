// The real clock: reads the system's elapsed time through a function that the platform provides, and
// waits on Asio timers.
#pragma once

#include "runtime/Clock.h"

namespace ventolith::runtime {

class AsioClock final : public Clock {
public:
  /// `elapsed` reads a clock that counts while the machine sleeps.
  explicit AsioClock(Instant (*elapsed)()) : elapsed_(elapsed) {}

  [[nodiscard]] Instant now() const override { return elapsed_(); }
  [[nodiscard]] WallTime wallTime() const override { return std::chrono::system_clock::now(); }
  Async<void> sleepUntil(Instant deadline, StopToken stop) override;

private:
  Instant (*elapsed_)();
};

} // namespace ventolith::runtime
