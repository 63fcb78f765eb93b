#include "platform/macos/service/SleepNotices.h"

#include <optional>
#include <utility>

namespace ventolith::platform {

using runtime::Async;

void SleepNotices::handleOn(const runtime::Executor& executor) {
  runtime::start(executor, "sleep events", handleAll(shared_from_this()));
}

void SleepNotices::stop() {
  stopped_.requestStop();
  while (notices_.tryNext()) {
  }
}

Async<void> SleepNotices::handleAll(std::shared_ptr<SleepNotices> self) {
  const runtime::StopToken stop = self->stopped_.token();
  while (!stop.stopRequested()) {
    std::optional<Notice> notice = co_await self->notices_.next(stop);
    if (notice && !stop.stopRequested()) co_await handle(self, std::move(*notice));
  }
}

/// `notice` and its delay are this call's own, and end with it.
Async<void> SleepNotices::handle(std::shared_ptr<SleepNotices> self, Notice notice) {
  const Delay delay = std::exchange(notice.delay, nullptr);
  const bool wasAsleep = std::exchange(self->isAsleep_, notice.begins);
  if (wasAsleep == notice.begins) co_return;
  if (!notice.begins) co_return self->handlers_.didWake();
  co_await self->handlers_.willSleep();
}

} // namespace ventolith::platform
