#include "runtime/AsioClock.h"

#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>

namespace ventolith::runtime {

Async<void> AsioClock::sleepUntil(Instant deadline, StopToken stop) {
  // The timer's own clock stands still while the machine sleeps, so a wake-up may be early or late
  // against ours: wait for what is left until nothing is.
  while (!stop.stopRequested()) {
    const Duration left = deadline - now();
    if (left <= Duration::zero()) co_return;
    boost::asio::steady_timer timer(co_await boost::asio::this_coro::executor, left);
    const auto observation = stop.onStop([&timer] { timer.cancel(); });
    boost::system::error_code ignored;
    co_await timer.async_wait(boost::asio::redirect_error(boost::asio::use_awaitable, ignored));
  }
}

} // namespace ventolith::runtime
