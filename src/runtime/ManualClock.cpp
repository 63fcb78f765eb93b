#include "runtime/ManualClock.h"

#include <boost/asio/redirect_error.hpp>
#include <boost/asio/this_coro.hpp>

#include <stdexcept>

namespace ventolith::runtime {

WallTime ManualClock::wallTime() const {
  return WallTime(std::chrono::duration_cast<WallTime::duration>(now_ - start_));
}

Async<void> ManualClock::sleepUntil(Instant deadline, StopToken stop) {
  if (stop.stopRequested() || deadline <= now_) co_return;
  boost::asio::steady_timer timer(co_await boost::asio::this_coro::executor,
                                  boost::asio::steady_timer::time_point::max());
  const auto place = std::pair(deadline, arrivals_++);
  sleepers_.emplace(place, &timer);
  const auto observation = stop.onStop([&timer] { timer.cancel(); });
  boost::system::error_code ignored;
  co_await timer.async_wait(boost::asio::redirect_error(boost::asio::use_awaitable, ignored));
  sleepers_.erase(place);
}

void ManualClock::wakeNext() {
  const auto next = sleepers_.begin();
  now_ = std::max(now_, next->first.first);
  boost::asio::steady_timer* timer = next->second;
  sleepers_.erase(next);
  timer->cancel();
  settle();
}

void ManualClock::advance(Duration span) {
  const Instant target = now_ + span;
  settle();
  while (!sleepers_.empty() && sleepers_.begin()->first.first <= target)
    wakeNext();
  now_ = target;
}

void ManualClock::settle() {
  do {
    context_.restart();
  } while (context_.poll() > 0);
}

void ManualClock::passUntil(const bool& ended) {
  settle();
  while (!ended) {
    if (sleepers_.empty()) throw std::logic_error("the work waits for something other than time");
    wakeNext();
  }
}

void ManualClock::run(Async<void> work) {
  std::exception_ptr escaped;
  bool ended = false;
  boost::asio::co_spawn(context_, std::move(work), [&](const std::exception_ptr& exception) {
    escaped = exception;
    ended = true;
  });
  passUntil(ended);
  if (escaped) std::rethrow_exception(escaped);
}

} // namespace ventolith::runtime
