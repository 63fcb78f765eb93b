#include "fake-power/PowerRoot.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

struct IONotificationPort {};
struct DispatchQueue {};

namespace fake {

namespace {

constexpr io_connect_t rootConnection = 71;
constexpr io_object_t rootNotifier = 72;

PowerRoot* inForce = nullptr;
IONotificationPort thePort;
DispatchQueue theQueue;

PowerRoot& root() {
  if (inForce == nullptr) throw std::logic_error("there is no power management");
  return *inForce;
}

void require(bool isRight, const char* what) {
  if (!isRight) throw std::logic_error(what);
}

} // namespace

PowerRoot::PowerRoot() {
  inForce = this;
}

PowerRoot::~PowerRoot() {
  pass(std::numeric_limits<int>::max()); // What was put off has a context to let go of.
  inForce = nullptr;
}

bool PowerRoot::tell(natural_t message, std::intptr_t change) {
  const std::lock_guard runs(queueRuns_);
  const auto told = [this] {
    const std::lock_guard held(mutex_);
    return registration_;
  }();
  if (told.callback == nullptr || told.queue == nullptr) return false;
  told.callback(told.context, rootConnection, message, reinterpret_cast<void*>(change));
  return true;
}

void PowerRoot::pass(int seconds) {
  constexpr std::int64_t second = 1'000'000'000;
  std::vector<Timer> due;
  {
    const std::lock_guard held(mutex_);
    const auto ahead = std::stable_partition(timers_.begin(), timers_.end(), [&](const Timer& timer) {
      return timer.nanoseconds <= seconds * second;
    });
    due.assign(timers_.begin(), ahead);
    timers_.erase(timers_.begin(), ahead);
  }
  for (const Timer& timer : due)
    runOnQueue(timer.context, timer.work);
}

void PowerRoot::note(std::string entry) {
  const std::lock_guard held(mutex_);
  log_.push_back(std::move(entry));
}

Log PowerRoot::log() const {
  const std::lock_guard held(mutex_);
  return log_;
}

void PowerRoot::enlist(void* context, IOServiceInterestCallback callback) {
  const std::lock_guard held(mutex_);
  registration_ = {.context = context, .callback = callback, .queue = nullptr};
}

void PowerRoot::delist() {
  const std::lock_guard held(mutex_);
  registration_ = {};
}

void PowerRoot::setQueue(dispatch_queue_t queue) {
  const std::lock_guard held(mutex_);
  registration_.queue = queue;
}

void PowerRoot::runOnQueue(void* context, void (*work)(void* context)) {
  const std::lock_guard runs(queueRuns_);
  work(context);
}

void PowerRoot::putOff(std::int64_t nanoseconds, void* context, void (*work)(void* context)) {
  const std::lock_guard held(mutex_);
  timers_.push_back({nanoseconds, context, work});
}

} // namespace fake

using namespace fake;

extern "C" {

io_connect_t IORegisterForSystemPower(void* context, IONotificationPortRef* port,
                                      IOServiceInterestCallback callback, io_object_t* notifier) {
  if (!root().takesRegistrations) return MACH_PORT_NULL;
  root().enlist(context, callback);
  *port = &thePort;
  *notifier = rootNotifier;
  return rootConnection;
}

kern_return_t IODeregisterForSystemPower(io_object_t* notifier) {
  require(*notifier == rootNotifier, "another's registration");
  root().note("deregistered");
  root().delist();
  return 0;
}

kern_return_t IOAllowPowerChange(io_connect_t connection, std::intptr_t change) {
  require(connection == rootConnection, "another's connection");
  root().note("allowed " + std::to_string(change));
  return 0;
}

kern_return_t IOServiceClose(io_connect_t connection) {
  require(connection == rootConnection, "another's connection");
  root().note("connection closed");
  return 0;
}

void IONotificationPortSetDispatchQueue(IONotificationPortRef port, dispatch_queue_t queue) {
  require(port == &thePort, "another's port");
  root().setQueue(queue);
}

void IONotificationPortDestroy(IONotificationPortRef port) {
  require(port == &thePort, "another's port");
  root().note("port destroyed");
}

dispatch_queue_t dispatch_queue_create(const char*, const void*) {
  root().countQueue(1);
  return &theQueue;
}

void dispatch_release(dispatch_queue_t queue) {
  require(queue == &theQueue, "another's queue");
  root().countQueue(-1);
}

void dispatch_sync_f(dispatch_queue_t queue, void* context, void (*work)(void* context)) {
  require(queue == &theQueue, "another's queue");
  root().runOnQueue(context, work);
}

dispatch_time_t dispatch_time(dispatch_time_t when, std::int64_t nanoseconds) {
  require(when == DISPATCH_TIME_NOW, "another time than now");
  return static_cast<dispatch_time_t>(nanoseconds);
}

void dispatch_after_f(dispatch_time_t when, dispatch_queue_t queue, void* context,
                      void (*work)(void* context)) {
  require(queue == &theQueue, "another's queue");
  root().putOff(static_cast<std::int64_t>(when), context, work);
}

} // extern "C"
