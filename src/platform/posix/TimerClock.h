// A clock on one timer of the kernel: what the systems' clocks have in common.
#pragma once

#include "platform/posix/ReadableWait.h"
#include "runtime/Clock.h"
#include "runtime/Event.h"

#include <map>
#include <memory>

namespace ventolith::platform {

/// A timer of the kernel on the time line of `runtime::Instant`, as a descriptor that can be read from the
/// moment at which the timer runs out.
class KernelTimer {
public:
  KernelTimer() = default;
  KernelTimer(const KernelTimer&) = delete;
  KernelTimer& operator=(const KernelTimer&) = delete;
  virtual ~KernelTimer() = default;

  [[nodiscard]] virtual int descriptor() const = 0;
  /// Runs out at `deadline`, not before it, and at no time that was set earlier.
  virtual void set(runtime::Instant deadline) = 0;
  /// Does not run out any more.
  virtual void clear() = 0;
  /// The descriptor cannot be read any more until the timer runs out again.
  virtual void acknowledge() = 0;
};

/// Sleeps on one timer of the kernel that counts while the machine sleeps: a wait that ended meanwhile ends
/// as soon as the machine is awake. While nobody sleeps the timer is off, and nothing keeps an event loop
/// running.
///
/// Belongs to the thread of its event loop, and outlives what that runs. Whoever derives from it says what
/// time it is, on the timer's own time line.
class TimerClock : public runtime::Clock {
public:
  ~TimerClock() override;

  [[nodiscard]] runtime::WallTime wallTime() const override { return std::chrono::system_clock::now(); }
  runtime::Async<void> sleepUntil(runtime::Instant deadline, runtime::StopToken stop) override;

protected:
  TimerClock(std::unique_ptr<KernelTimer> timer, const ReadableWaitFactory& makeWait);

private:
  void arm();
  void set(runtime::Instant deadline);
  void listen();
  void wakeSleepers();

  std::unique_ptr<KernelTimer> timer_;
  std::unique_ptr<ReadableWait> wait_;
  std::multimap<runtime::Instant, runtime::Event*> sleepers_;
  runtime::Instant armedFor_ = runtime::distantPast; // Which is for no time at all.
  bool isListening_ = false;
};

} // namespace ventolith::platform
