// The one timer that the sources under test have of the system.
#pragma once

#include <dispatch/dispatch.h>

#include <chrono>
#include <optional>

namespace fake {

/// The one in force, from its making to its end; that of the system's functions lives shorter.
class Timer {
public:
  Timer();
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;
  ~Timer();

  /// Calls the handler if its time has come by then.
  void pass(std::chrono::nanoseconds time);
  [[nodiscard]] bool isThere() const { return isMade && !isReleased; }

  // What the system's functions make of it.
  bool isMade = false;
  bool isResumed = false;
  bool isCancelled = false;
  bool isReleased = false;
  dispatch_function_t handler = nullptr;
  std::chrono::nanoseconds now{0};
  std::optional<std::chrono::nanoseconds> due;
};

} // namespace fake
