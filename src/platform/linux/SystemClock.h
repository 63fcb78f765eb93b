// The clock of a Linux program.
#pragma once

#include "platform/linux/Descriptor.h"
#include "platform/linux/ElapsedTime.h"
#include "runtime/Clock.h"
#include "runtime/Event.h"

#include <functional>
#include <map>
#include <memory>

namespace ventolith::platform {

/// How an event loop waits until a descriptor can be read.
class ReadableWait {
public:
  ReadableWait() = default;
  ReadableWait(const ReadableWait&) = delete;
  ReadableWait& operator=(const ReadableWait&) = delete;
  virtual ~ReadableWait() = default; // As `cancel`.

  /// Calls `onReadable` once, from the event loop. Not while a wait is under way.
  virtual void begin(std::function<void()> onReadable) = 0;
  /// Nothing is called any more, and nothing keeps the loop running.
  virtual void cancel() = 0;
};

/// Makes the wait of one descriptor, which outlives it.
using ReadableWaitFactory = std::function<std::unique_ptr<ReadableWait>(int descriptor)>;

/// Sleeps on one timer of the kernel that counts while the machine sleeps: a wait that ended meanwhile ends
/// as soon as the machine is awake. While nobody sleeps there is no timer, and nothing that keeps an event
/// loop running.
///
/// Belongs to the thread of its event loop, and outlives what that runs.
class SystemClock final : public runtime::Clock {
public:
  /// In Asio's event loop. Fails with std::system_error.
  explicit SystemClock(const runtime::Executor& executor);
  /// In another one. Fails with std::system_error.
  explicit SystemClock(const ReadableWaitFactory& makeWait);

  [[nodiscard]] runtime::Instant now() const override { return elapsedTime(); }
  [[nodiscard]] runtime::WallTime wallTime() const override { return std::chrono::system_clock::now(); }
  runtime::Async<void> sleepUntil(runtime::Instant deadline, runtime::StopToken stop) override;

private:
  void arm();
  void setTimer(runtime::Instant deadline);
  void listen();
  void wakeSleepers();

  Descriptor timer_;
  std::unique_ptr<ReadableWait> wait_;
  std::multimap<runtime::Instant, runtime::Event*> sleepers_;
  runtime::Instant armedFor_ = runtime::distantPast;
  bool isListening_ = false;
};

} // namespace ventolith::platform
