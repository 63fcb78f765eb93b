#include "helper/daemon/WatchedClock.h"

namespace ventolith::helper {

runtime::Async<void> WatchedClock::sleepUntil(runtime::Instant deadline, runtime::StopToken stop) {
  co_await clock_.sleepUntil(deadline, std::move(stop));
  advanced_();
}

} // namespace ventolith::helper
