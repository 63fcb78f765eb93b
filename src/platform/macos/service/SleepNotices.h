// The machine's going to sleep and waking up, in order.
#pragma once

#include "helper/link/HelperSurroundings.h"
#include "runtime/Async.h"
#include "runtime/StateStream.h"
#include "runtime/StopToken.h"

#include <memory>

namespace ventolith::platform {

/// Calls the handlers one at a time, in the order of the notices. Belongs to the executor's thread.
class SleepNotices : public std::enable_shared_from_this<SleepNotices> {
public:
  /// Sleep goes on when its last copy goes, however that comes about.
  using Delay = std::shared_ptr<const void>;

  explicit SleepNotices(helper::SleepEvents::Handlers handlers) : handlers_(std::move(handlers)) {}

  /// Until `stop`.
  void handleOn(const runtime::Executor& executor);
  /// Lets every sleep go on, but one whose `willSleep` has begun: that one when it has ended.
  void stop();

  void sleepBegins(Delay delay) { notices_.yield({.begins = true, .delay = std::move(delay)}); }
  void sleepEnded() { notices_.yield({.begins = false, .delay = nullptr}); }

private:
  struct Notice {
    bool begins;
    Delay delay;
  };

  static runtime::Async<void> handleAll(std::shared_ptr<SleepNotices> self);
  static runtime::Async<void> handle(std::shared_ptr<SleepNotices> self, Notice notice);

  helper::SleepEvents::Handlers handlers_;
  runtime::StateStream<Notice> notices_;
  runtime::StopSource stopped_;
  bool isAsleep_ = false; // From the beginning of `willSleep`.
};

} // namespace ventolith::platform
