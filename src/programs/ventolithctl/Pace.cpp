#include "programs/ventolithctl/Pace.h"

#include <algorithm>

namespace ventolith::ctl {

Pace::Pace(runtime::Clock& clock, runtime::StopToken stop, runtime::Duration period,
           std::optional<double> seconds)
    : clock_(clock), stop_(std::move(stop)), period_(period), start_(clock.now()), due_(start_) {
  if (seconds) end_ = start_ + runtime::fromSeconds(*seconds);
}

runtime::Async<void> Pace::wait() {
  due_ = std::max(due_ + period_, clock_.now());
  co_await clock_.sleepUntil(end_ ? std::min(due_, *end_) : due_, stop_);
}

} // namespace ventolith::ctl
