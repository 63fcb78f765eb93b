#include "platform/posix/TimerClock.h"

#include <boost/asio/this_coro.hpp>

#include <algorithm>
#include <utility>

namespace ventolith::platform {

TimerClock::TimerClock(std::unique_ptr<KernelTimer> timer, const ReadableWaitFactory& makeWait)
    : timer_(std::move(timer)), wait_(makeWait(timer_->descriptor())) {}

TimerClock::~TimerClock() = default;

runtime::Async<void> TimerClock::sleepUntil(runtime::Instant deadline, runtime::StopToken stop) {
  if (stop.stopRequested() || deadline <= now()) co_return;
  runtime::Event wakeUp(co_await boost::asio::this_coro::executor);
  const auto observation = stop.onStop([&wakeUp] { wakeUp.happen(); });
  const auto place = sleepers_.emplace(deadline, &wakeUp);
  arm();
  co_await wakeUp.wait();
  sleepers_.erase(place);
  arm();
}

/// For the first of those who are not woken yet.
void TimerClock::arm() {
  const auto first = std::find_if(sleepers_.begin(), sleepers_.end(),
                                  [](const auto& sleeper) { return !sleeper.second->hasHappened(); });
  if (first == sleepers_.end()) {
    if (isListening_) wait_->cancel();
    isListening_ = false;
    if (armedFor_ > now()) timer_->clear(); // Or it would wake the process for nobody.
    armedFor_ = runtime::distantPast;
    return;
  }
  if (first->first != armedFor_) set(first->first);
  listen();
}

void TimerClock::set(runtime::Instant deadline) {
  armedFor_ = deadline;
  timer_->set(deadline);
}

void TimerClock::listen() {
  if (isListening_) return;
  isListening_ = true;
  wait_->begin([this] {
    isListening_ = false;
    wakeSleepers();
    arm();
  });
}

void TimerClock::wakeSleepers() {
  timer_->acknowledge();
  armedFor_ = runtime::distantPast; // Should it have run out too early, it is set once more.
  const auto firstAhead = sleepers_.upper_bound(now());
  std::for_each(sleepers_.begin(), firstAhead, [](const auto& sleeper) { sleeper.second->happen(); });
}

} // namespace ventolith::platform
