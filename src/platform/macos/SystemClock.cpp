#include "platform/macos/SystemClock.h"

#include "platform/macos/MachTime.h"
#include "platform/posix/Descriptor.h"

#include <fcntl.h>
#include <sys/event.h>

#include <cerrno>
#include <ctime>
#include <memory>
#include <system_error>

namespace ventolith::platform {

namespace {

int newQueue() {
  const int queue = ::kqueue();
  if (queue < 0) throw std::system_error(errno, std::generic_category(), "kqueue");
  ::fcntl(queue, F_SETFD, FD_CLOEXEC);
  return queue;
}

/// A queue with one timer in it, which can be read while the timer's event is in it.
class QueueTimer final : public KernelTimer {
public:
  QueueTimer() : queue_(newQueue()) {}

  [[nodiscard]] int descriptor() const override { return queue_.get(); }

  void set(runtime::Instant deadline) override {
    const auto ticks = static_cast<std::intptr_t>(toMachTicks(deadline.time_since_epoch()));
    // A clock that wakes nobody would leave fans unwatched: better that the process ends, and gives them
    // back.
    if (change(EV_ADD | EV_ONESHOT, ticks) < 0)
      throw std::system_error(errno, std::generic_category(), "kevent");
  }
  void clear() override { change(EV_DELETE, 0); } // One that has run out is gone already.

  void acknowledge() override {
    struct kevent event{};
    const timespec atOnce{};
    ::kevent(queue_.get(), nullptr, 0, &event, 1, &atOnce);
  }

private:
  int change(std::uint16_t action, std::intptr_t ticks) {
    // At a moment of the time line that goes on while the machine sleeps. Critical, since the system lets the
    // timers of an application without a window come many seconds late, heartbeats among them.
    const struct kevent timer = {.ident = 0,
                                 .filter = EVFILT_TIMER,
                                 .flags = action,
                                 .fflags = NOTE_ABSOLUTE | NOTE_MACHTIME | NOTE_MACH_CONTINUOUS_TIME |
                                           NOTE_CRITICAL,
                                 .data = ticks,
                                 .udata = nullptr};
    return ::kevent(queue_.get(), &timer, 1, nullptr, 0, nullptr);
  }

  Descriptor queue_;
};

} // namespace

SystemClock::SystemClock(const runtime::Executor& executor) : SystemClock(waitInAsio(executor)) {}

SystemClock::SystemClock(const ReadableWaitFactory& makeWait)
    : TimerClock(std::make_unique<QueueTimer>(), makeWait) {}

} // namespace ventolith::platform
