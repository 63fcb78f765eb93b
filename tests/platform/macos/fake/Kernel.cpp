#include "Kernel.h"

#include <mach/mach_time.h>
#include <sys/sysctl.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace ventolith::fake {

namespace {

// Of Apple silicon: 24 million ticks a second.
constexpr std::uint32_t numerator = 125;
constexpr std::uint32_t denominator = 3;

constexpr std::uint32_t awakeOrAsleep = NOTE_ABSOLUTE | NOTE_MACHTIME | NOTE_MACH_CONTINUOUS_TIME;

std::uint64_t ticksOf(clockid_t clock) {
  timespec time{};
  ::clock_gettime(clock, &time);
  const auto nanoseconds =
      static_cast<std::uint64_t>(time.tv_sec) * 1'000'000'000U + static_cast<std::uint64_t>(time.tv_nsec);
  return nanoseconds / numerator * denominator + nanoseconds % numerator * denominator / numerator;
}

/// The moment at which the counter shows `ticks`.
timespec momentOf(std::uint64_t ticks) {
  const std::uint64_t nanoseconds =
      ticks / denominator * numerator + (ticks % denominator * numerator + denominator - 1) / denominator;
  timespec moment{};
  moment.tv_sec = static_cast<std::time_t>(nanoseconds / 1'000'000'000U);
  moment.tv_nsec = static_cast<long>(nanoseconds % 1'000'000'000U);
  return moment;
}

int refuse(int error) {
  errno = error;
  return -1;
}

int change(int queue, const struct kevent& change) {
  if (Kernel::isThere()) {
    Kernel::get().changes.push_back(change);
    if (!Kernel::get().takesTimers && (change.flags & EV_ADD) != 0) return refuse(ENOMEM);
  }
  if (change.filter != EVFILT_TIMER || (change.fflags & ~NOTE_CRITICAL) != awakeOrAsleep)
    return refuse(EINVAL);
  if (Kernel::isThere() && Kernel::get().continuousTicks) return 0; // While time stands still, none runs out.
  itimerspec when{};
  if (change.flags == (EV_ADD | EV_ONESHOT)) {
    when.it_value = momentOf(static_cast<std::uint64_t>(change.data));
    return ::timerfd_settime(queue, TFD_TIMER_ABSTIME, &when, nullptr);
  }
  if (change.flags != EV_DELETE) return refuse(EINVAL);
  itimerspec before{};
  ::timerfd_settime(queue, TFD_TIMER_ABSTIME, &when, &before);
  const bool wasSet = before.it_value.tv_sec != 0 || before.it_value.tv_nsec != 0;
  return wasSet ? 0 : refuse(ENOENT);
}

} // namespace

} // namespace ventolith::fake

using ventolith::fake::Kernel;

extern "C" {

int mach_timebase_info(mach_timebase_info_data_t* info) {
  *info = {.numer = ventolith::fake::numerator, .denom = ventolith::fake::denominator};
  return 0;
}

std::uint64_t mach_absolute_time() {
  if (Kernel::isThere() && Kernel::get().absoluteTicks) return *Kernel::get().absoluteTicks;
  return ventolith::fake::ticksOf(CLOCK_MONOTONIC);
}

std::uint64_t mach_continuous_time() {
  if (Kernel::isThere() && Kernel::get().continuousTicks) return *Kernel::get().continuousTicks;
  return ventolith::fake::ticksOf(CLOCK_BOOTTIME);
}

// A descriptor of Linux with the same property: it can be read once the timer has run out.
int kqueue() {
  if (Kernel::isThere() && !Kernel::get().makesQueues) return ventolith::fake::refuse(EMFILE);
  return ::timerfd_create(CLOCK_BOOTTIME, TFD_NONBLOCK);
}

int kevent(int queue, const struct kevent* changes, int changeCount, struct kevent* events, int eventCount,
           const timespec*) {
  for (int place = 0; place < changeCount; ++place)
    if (ventolith::fake::change(queue, changes[place]) != 0) return -1;
  if (events == nullptr || eventCount == 0) return 0;
  std::uint64_t expirations = 0;
  return ::read(queue, &expirations, sizeof expirations) > 0 ? 1 : 0;
}

int sysctlbyname(const char* name, void* old, std::size_t* oldSize, void*, std::size_t) {
  if (std::strcmp(name, "hw.model") != 0 || !Kernel::isThere() || !Kernel::get().model)
    return ventolith::fake::refuse(ENOENT);
  const std::string& model = *Kernel::get().model;
  if (*oldSize < model.size() + 1) return ventolith::fake::refuse(ENOMEM);
  std::memcpy(old, model.c_str(), model.size() + 1);
  *oldSize = model.size() + 1;
  return 0;
}

} // extern "C"
