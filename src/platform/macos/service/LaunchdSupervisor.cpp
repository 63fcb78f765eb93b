#include "platform/macos/service/LaunchdSupervisor.h"

#include "platform/macos/service/ErrorLine.h"

#include <dispatch/dispatch.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>

namespace ventolith::platform {

namespace {

/// Six passes of the engine that were missed.
constexpr std::chrono::seconds longestSilence(10);
constexpr std::chrono::nanoseconds leeway = std::chrono::milliseconds(500);

/// As in a crash, so that launchd starts the next one, and the system keeps a report of where this one hung.
[[noreturn]] void endThisProcess(void*) {
  sayOnStandardError("[LaunchdSupervisor] the helper holds fans and does nothing any more: it is ended");
  std::abort();
}

} // namespace

/// A timer of the system's, on a thread of the system's.
class LaunchdSupervisor::Watch {
public:
  Watch()
      : timer_(::dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, 0,
                                        ::dispatch_get_global_queue(QOS_CLASS_USER_INITIATED, 0))) {
    ::dispatch_source_set_event_handler_f(timer_, endThisProcess);
    firesAt(DISPATCH_TIME_FOREVER);
    ::dispatch_resume(timer_);
  }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;
  ~Watch() {
    ::dispatch_source_cancel(timer_);
    ::dispatch_release(timer_);
  }

  void begin() {
    isOn_ = true;
    prolong();
  }
  void prolong() {
    if (isOn_) firesAt(::dispatch_time(DISPATCH_TIME_NOW, std::chrono::nanoseconds(longestSilence).count()));
  }
  void end() {
    isOn_ = false;
    firesAt(DISPATCH_TIME_FOREVER);
  }

private:
  void firesAt(dispatch_time_t time) {
    ::dispatch_source_set_timer(timer_, time, DISPATCH_TIME_FOREVER,
                                static_cast<std::uint64_t>(leeway.count()));
  }

  dispatch_source_t timer_;
  bool isOn_ = false;
};

LaunchdSupervisor::LaunchdSupervisor(MachService::Domain domain)
    : watch_(domain == MachService::Domain::system ? std::make_unique<Watch>() : nullptr) {}

LaunchdSupervisor::~LaunchdSupervisor() = default;

runtime::Duration LaunchdSupervisor::watchdogInterval() const {
  return watch_ ? runtime::Duration(longestSilence) : runtime::Duration::zero();
}

void LaunchdSupervisor::setWatched(bool watched) {
  if (!watch_) return;
  if (watched) {
    watch_->begin();
  } else {
    watch_->end();
  }
}

void LaunchdSupervisor::alive() {
  if (watch_) watch_->prolong();
}

} // namespace ventolith::platform
