#include "fake-timer/Timer.h"

#include <stdexcept>

struct DispatchSource {};
struct DispatchQueue {};

namespace fake {

namespace {

Timer* inForce = nullptr;
DispatchSource theSource;
DispatchQueue theQueue;
const int timerType = 0; // Of which the address alone counts.

void require(bool isRight, const char* what) {
  if (!isRight) throw std::logic_error(what);
}

Timer& behind(dispatch_source_t source) {
  require(inForce != nullptr && source == &theSource && inForce->isThere(), "a timer that is gone");
  return *inForce;
}

} // namespace

Timer::Timer() {
  inForce = this;
}

Timer::~Timer() {
  inForce = nullptr;
}

void Timer::pass(std::chrono::nanoseconds time) {
  now += time;
  if (!isResumed || isCancelled || !due || *due > now) return;
  due.reset();
  handler(nullptr);
}

} // namespace fake

using namespace fake;

extern "C" {

const dispatch_source_type_t DISPATCH_SOURCE_TYPE_TIMER =
    reinterpret_cast<dispatch_source_type_t>(&timerType);

dispatch_queue_t dispatch_get_global_queue(std::intptr_t quality, std::uintptr_t) {
  require(quality == QOS_CLASS_USER_INITIATED, "a queue that may wait for others");
  return &theQueue;
}

/// Counted from the start of the fake's time, and at least 1: 0 is "now".
dispatch_time_t dispatch_time(dispatch_time_t when, std::int64_t nanoseconds) {
  require(when == DISPATCH_TIME_NOW, "another time than now");
  return static_cast<dispatch_time_t>(inForce->now.count() + nanoseconds);
}

dispatch_source_t dispatch_source_create(dispatch_source_type_t type, std::uintptr_t handle,
                                         std::uintptr_t mask, dispatch_queue_t queue) {
  require(type == DISPATCH_SOURCE_TYPE_TIMER && handle == 0 && mask == 0 && queue == &theQueue,
          "another source");
  require(!inForce->isMade, "a second timer");
  inForce->isMade = true;
  return &theSource;
}

void dispatch_source_set_event_handler_f(dispatch_source_t source, dispatch_function_t handler) {
  behind(source).handler = handler;
}

void dispatch_source_set_timer(dispatch_source_t source, dispatch_time_t start, std::uint64_t interval,
                               std::uint64_t) {
  require(interval == DISPATCH_TIME_FOREVER, "a timer that repeats itself");
  const std::chrono::nanoseconds due(static_cast<std::int64_t>(start));
  behind(source).due = start == DISPATCH_TIME_FOREVER ? std::nullopt : std::optional(due);
}

void dispatch_resume(dispatch_source_t source) {
  behind(source).isResumed = true;
}

void dispatch_source_cancel(dispatch_source_t source) {
  behind(source).isCancelled = true;
}

void dispatch_release(dispatch_source_t source) {
  require(behind(source).isCancelled, "a timer that was not cancelled");
  inForce->isReleased = true;
}

} // extern "C"
