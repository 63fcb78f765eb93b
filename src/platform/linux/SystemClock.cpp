#include "platform/linux/SystemClock.h"

#include <boost/asio/this_coro.hpp>

#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace ventolith::platform {

namespace {

constexpr runtime::Instant never; // The beginning of time, which to the kernel is no time.

int newTimer() {
  const int timer = ::timerfd_create(CLOCK_BOOTTIME, TFD_NONBLOCK | TFD_CLOEXEC);
  if (timer < 0) throw std::system_error(errno, std::generic_category(), "timerfd_create");
  return timer;
}

} // namespace

SystemClock::SystemClock(const runtime::Executor& executor) : timer_(executor, newTimer()) {}

runtime::Async<void> SystemClock::sleepUntil(runtime::Instant deadline, runtime::StopToken stop) {
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
void SystemClock::arm() {
  const auto first = std::find_if(sleepers_.begin(), sleepers_.end(),
                                  [](const auto& sleeper) { return !sleeper.second->hasHappened(); });
  if (first == sleepers_.end()) {
    if (isListening_) timer_.cancel();
    isListening_ = false;
    if (armedFor_ > now()) setTimer(never); // Or it would wake the process for nobody.
    return;
  }
  if (first->first != armedFor_) setTimer(first->first);
  listen();
}

void SystemClock::setTimer(runtime::Instant deadline) {
  armedFor_ = deadline;
  const auto sinceBoot = deadline.time_since_epoch();
  const auto seconds = std::chrono::floor<std::chrono::seconds>(sinceBoot);
  itimerspec when{};
  when.it_value.tv_sec = seconds.count();
  when.it_value.tv_nsec = (sinceBoot - seconds).count();
  ::timerfd_settime(timer_.native_handle(), TFD_TIMER_ABSTIME, &when, nullptr);
}

void SystemClock::listen() {
  if (isListening_) return;
  isListening_ = true;
  timer_.async_wait(boost::asio::posix::stream_descriptor::wait_read,
                    [this](const boost::system::error_code& error) {
                      if (error) return; // Nobody sleeps any more.
                      isListening_ = false;
                      wakeSleepers();
                      arm();
                    });
}

void SystemClock::wakeSleepers() {
  std::uint64_t expirations = 0;
  static_cast<void>(::read(timer_.native_handle(), &expirations, sizeof expirations) == 0);
  const auto firstAhead = sleepers_.upper_bound(now());
  std::for_each(sleepers_.begin(), firstAhead, [](const auto& sleeper) { sleeper.second->happen(); });
}

} // namespace ventolith::platform
