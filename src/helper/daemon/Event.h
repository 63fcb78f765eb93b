// Something that happens once, and that one coroutine waits for.
#pragma once

#include "runtime/Async.h"

#include <functional>

namespace ventolith::helper {

/// Waits on no timer, not even on one that never ends, which an event loop looks after every few minutes: an
/// idle process is to sleep. Belongs to one thread.
class Event {
public:
  void happen();
  [[nodiscard]] bool hasHappened() const { return hasHappened_; }

  /// At once if it has happened already. The event outlives the wait.
  runtime::Async<void> wait();

private:
  bool hasHappened_ = false;
  std::function<void()> resume_; // Set while somebody waits.
};

} // namespace ventolith::helper
