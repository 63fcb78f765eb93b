// How an event loop waits until a descriptor can be read.
#pragma once

#include "runtime/Async.h"

#include <functional>
#include <memory>

namespace ventolith::platform {

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

/// In the event loop of `executor`.
[[nodiscard]] ReadableWaitFactory waitInAsio(const runtime::Executor& executor);

} // namespace ventolith::platform
