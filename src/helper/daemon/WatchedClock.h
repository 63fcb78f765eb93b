// The engine's clock as its supervisor sees it.
#pragma once

#include "runtime/Clock.h"

#include <functional>

namespace ventolith::helper {

/// Passes everything on, and tells of each wait that ends: every loop of the engine waits through its clock,
/// so this is heard exactly as long as they advance, and costs no wake-up.
class WatchedClock final : public runtime::Clock {
public:
  WatchedClock(runtime::Clock& clock, std::function<void()> advanced)
      : clock_(clock), advanced_(std::move(advanced)) {}

  [[nodiscard]] runtime::Instant now() const override { return clock_.now(); }
  [[nodiscard]] runtime::WallTime wallTime() const override { return clock_.wallTime(); }
  runtime::Async<void> sleepUntil(runtime::Instant deadline, runtime::StopToken stop) override;

private:
  runtime::Clock& clock_;
  std::function<void()> advanced_;
};

} // namespace ventolith::helper
