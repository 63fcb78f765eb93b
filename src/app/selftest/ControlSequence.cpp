#include "app/selftest/ControlSequence.h"

#include <fmt/format.h>

#include <memory>

namespace ventolith::app {

using core::ControlResult;
using runtime::Async;

namespace {

Async<void> countStates(core::ControlStateStream& states, std::shared_ptr<int> count,
                        runtime::StopToken stop) {
  while (!stop.stopRequested()) {
    if (co_await states.next(stop)) ++*count;
  }
}

} // namespace

Async<bool> runControlSequence(runtime::Executor executor, core::FanControlling& controller,
                               const std::vector<std::string>& log, SelfTestOutput& output) {
  runtime::StopSource observer;
  const auto observed = std::make_shared<int>(0);
  runtime::start(executor, "the self-test's observer",
                 countStates(controller.stateStream(), observed, observer.token()));

  const ControlResult automatic = co_await controller.automatic();
  const ControlResult percent = co_await controller.setPercent(0, 50);
  co_await controller.heartbeat();
  const ControlResult fullBlast = co_await controller.fullBlast();
  co_await controller.restoreAuto();
  observer.requestStop();

  output.print(fmt::format("ControlResult sequence: automatic={} setPercent={} fullBlast={}",
                           automatic.text(), percent.text(), fullBlast.text()));
  output.print(fmt::format("stateStream updates observed: {}", *observed));
  output.print(fmt::format("PreviewController log ({} calls): {}", log.size(), fmt::join(log, " | ")));

  const auto isApplied = [](const ControlResult& result) { return result == ControlResult::applied; };
  bool allOK = true;
  output.check("PreviewController control sequence",
               isApplied(automatic) && isApplied(percent) && isApplied(fullBlast), allOK);
  co_return allOK;
}

} // namespace ventolith::app
