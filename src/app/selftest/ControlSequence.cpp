#include "app/selftest/ControlSequence.h"

#include <boost/asio/post.hpp>
#include <boost/asio/this_coro.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <memory>

namespace ventolith::app {

using core::ControlResult;
using runtime::Async;

namespace {

struct Observation {
  int states = 0;
  bool isOver = false;
  runtime::StopSource stop;
};

Async<void> observe(core::ControlStateStream& states, std::shared_ptr<Observation> observation) {
  const runtime::StopToken stop = observation->stop.token();
  while (!stop.stopRequested()) {
    if (co_await states.next(stop)) ++observation->states;
  }
  observation->isOver = true;
}

/// Ends the observation, and waits for the observer to have let go of the stream.
Async<void> end(Observation& observation) {
  observation.stop.requestStop();
  while (!observation.isOver)
    co_await boost::asio::post(boost::asio::use_awaitable);
}

} // namespace

Async<bool> runControlSequence(core::FanControlling& controller, const std::vector<std::string>& log,
                               SelfTestOutput& output) {
  const auto observation = std::make_shared<Observation>();
  runtime::start(co_await boost::asio::this_coro::executor, "the self-test's observer",
                 observe(controller.stateStream(), observation));
  const ControlResult automatic = co_await controller.automatic();
  const ControlResult percent = co_await controller.setPercent(0, 50);
  co_await controller.heartbeat();
  const ControlResult fullBlast = co_await controller.fullBlast();
  co_await controller.restoreAuto();
  const int observedStates = observation->states;
  co_await end(*observation);

  output.print(fmt::format("ControlResult sequence: automatic={} setPercent={} fullBlast={}",
                           automatic.text(), percent.text(), fullBlast.text()));
  output.print(fmt::format("stateStream updates observed: {}", observedStates));
  output.print(fmt::format("PreviewController log ({} calls): {}", log.size(), fmt::join(log, " | ")));

  const auto isApplied = [](const ControlResult& result) { return result == ControlResult::applied; };
  bool allOK = true;
  output.check("PreviewController control sequence",
               isApplied(automatic) && isApplied(percent) && isApplied(fullBlast), allOK);
  co_return allOK;
}

} // namespace ventolith::app
