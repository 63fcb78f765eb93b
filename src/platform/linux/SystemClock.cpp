#include "platform/linux/SystemClock.h"

#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/this_coro.hpp>

#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

namespace ventolith::platform {

namespace {

constexpr runtime::Instant never; // The beginning of time, which to the kernel is no time.

int newTimer() {
  const int timer = ::timerfd_create(CLOCK_BOOTTIME, TFD_NONBLOCK | TFD_CLOEXEC);
  if (timer < 0) throw std::system_error(errno, std::generic_category(), "timerfd_create");
  return timer;
}

class AsioWait final : public ReadableWait {
public:
  AsioWait(const runtime::Executor& executor, int descriptor) : descriptor_(executor, descriptor) {}
  ~AsioWait() override { descriptor_.release(); }

  void begin(std::function<void()> onReadable) override {
    descriptor_.async_wait(boost::asio::posix::stream_descriptor::wait_read,
                           [onReadable = std::move(onReadable)](const boost::system::error_code& error) {
                             if (!error) onReadable();
                           });
  }
  void cancel() override { descriptor_.cancel(); }

private:
  boost::asio::posix::stream_descriptor descriptor_; // Another's.
};

} // namespace

SystemClock::SystemClock(const runtime::Executor& executor)
    : SystemClock([&executor](int descriptor) { return std::make_unique<AsioWait>(executor, descriptor); }) {}

SystemClock::SystemClock(const ReadableWaitFactory& makeWait)
    : timer_(newTimer()), wait_(makeWait(timer_.get())) {}

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
    if (isListening_) wait_->cancel();
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
  ::timerfd_settime(timer_.get(), TFD_TIMER_ABSTIME, &when, nullptr);
}

void SystemClock::listen() {
  if (isListening_) return;
  isListening_ = true;
  wait_->begin([this] {
    isListening_ = false;
    wakeSleepers();
    arm();
  });
}

void SystemClock::wakeSleepers() {
  std::uint64_t expirations = 0;
  static_cast<void>(::read(timer_.get(), &expirations, sizeof expirations) == 0);
  const auto firstAhead = sleepers_.upper_bound(now());
  std::for_each(sleepers_.begin(), firstAhead, [](const auto& sleeper) { sleeper.second->happen(); });
}

} // namespace ventolith::platform
