// Virtual time that logs each wait, so that a test sees where in the work it took place.
#pragma once

#include "hardware/doubles/KeyTableSMC.h"
#include "runtime/ManualClock.h"

namespace ventolith::doubles {

/// Logs "wait <milliseconds>".
class LoggingClock final : public runtime::Clock {
public:
  LoggingClock(runtime::ManualClock& clock, Log& log) : clock_(clock), log_(log) {}

  [[nodiscard]] runtime::Instant now() const override { return clock_.now(); }
  [[nodiscard]] runtime::WallTime wallTime() const override { return clock_.wallTime(); }

  runtime::Async<void> sleepUntil(runtime::Instant deadline, runtime::StopToken stop) override {
    const auto span = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - now());
    log_.push_back("wait " + std::to_string(span.count()));
    return clock_.sleepUntil(deadline, std::move(stop));
  }

private:
  runtime::ManualClock& clock_;
  Log& log_;
};

} // namespace ventolith::doubles
