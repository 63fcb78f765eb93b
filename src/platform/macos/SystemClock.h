// The clock of a macOS program.
#pragma once

#include "platform/macos/ElapsedTime.h"
#include "platform/posix/TimerClock.h"

namespace ventolith::platform {

/// Sleeps on one timer of a kernel queue, which counts while the machine sleeps. Belongs to the thread of its
/// event loop, and outlives what that runs.
class SystemClock final : public TimerClock {
public:
  /// In Asio's event loop. Fails with std::system_error.
  explicit SystemClock(const runtime::Executor& executor);
  /// In another one. Fails with std::system_error.
  explicit SystemClock(const ReadableWaitFactory& makeWait);

  [[nodiscard]] runtime::Instant now() const override { return elapsedTime(); }
};

} // namespace ventolith::platform
