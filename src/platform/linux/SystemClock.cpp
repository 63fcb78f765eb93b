#include "platform/linux/SystemClock.h"

#include "platform/posix/Descriptor.h"

#include <sys/timerfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <memory>
#include <system_error>

namespace ventolith::platform {

namespace {

int newTimer() {
  const int timer = ::timerfd_create(CLOCK_BOOTTIME, TFD_NONBLOCK | TFD_CLOEXEC);
  if (timer < 0) throw std::system_error(errno, std::generic_category(), "timerfd_create");
  return timer;
}

class TimerDescriptor final : public KernelTimer {
public:
  TimerDescriptor() : timer_(newTimer()) {}

  [[nodiscard]] int descriptor() const override { return timer_.get(); }

  void set(runtime::Instant deadline) override {
    const auto sinceBoot = deadline.time_since_epoch();
    const auto seconds = std::chrono::floor<std::chrono::seconds>(sinceBoot);
    itimerspec when{};
    when.it_value.tv_sec = seconds.count();
    when.it_value.tv_nsec = (sinceBoot - seconds).count();
    ::timerfd_settime(timer_.get(), TFD_TIMER_ABSTIME, &when, nullptr);
  }
  void clear() override { set(runtime::Instant()); } // The beginning of time, which to the kernel is no time.

  void acknowledge() override {
    std::uint64_t expirations = 0;
    static_cast<void>(::read(timer_.get(), &expirations, sizeof expirations) == 0);
  }

private:
  Descriptor timer_;
};

} // namespace

SystemClock::SystemClock(const runtime::Executor& executor) : SystemClock(waitInAsio(executor)) {}

SystemClock::SystemClock(const ReadableWaitFactory& makeWait)
    : TimerClock(std::make_unique<TimerDescriptor>(), makeWait) {}

} // namespace ventolith::platform
