// The clock of a Linux program.
#pragma once

#include "platform/linux/ElapsedTime.h"
#include "runtime/Clock.h"
#include "runtime/Event.h"

#include <boost/asio/posix/stream_descriptor.hpp>

#include <map>

namespace ventolith::platform {

/// Sleeps on one timer of the kernel that counts while the machine sleeps: a wait that ended meanwhile ends
/// as soon as the machine is awake. While nobody sleeps there is no timer, and nothing that keeps an event
/// loop running.
///
/// Belongs to the thread of `executor`, and outlives what its event loop runs.
class SystemClock final : public runtime::Clock {
public:
  /// Fails with std::system_error.
  explicit SystemClock(const runtime::Executor& executor);

  [[nodiscard]] runtime::Instant now() const override { return elapsedTime(); }
  [[nodiscard]] runtime::WallTime wallTime() const override { return std::chrono::system_clock::now(); }
  runtime::Async<void> sleepUntil(runtime::Instant deadline, runtime::StopToken stop) override;

private:
  void arm();
  void setTimer(runtime::Instant deadline);
  void listen();
  void wakeSleepers();

  boost::asio::posix::stream_descriptor timer_;
  std::multimap<runtime::Instant, runtime::Event*> sleepers_;
  runtime::Instant armedFor_ = runtime::distantPast;
  bool isListening_ = false;
};

} // namespace ventolith::platform
