#include "app/HostedController.h"

#include "runtime/StopToken.h"

#include <boost/asio/post.hpp>

#include <utility>

namespace ventolith::app {

using core::ControlResult;
using runtime::Async;

/// Kept by the reading of the states and by each command under way, all on the engine's executor. Whoever of
/// them is the last ends the controller there.
struct HostedController::Home {
  FanControllerFactory make;
  std::shared_ptr<core::FanControlling> controller = nullptr; // Made at the first use.
  runtime::StopSource reading = {};

  core::FanControlling& made() {
    if (!controller) controller = make();
    return *controller;
  }
};

HostedController::HostedController(runtime::Executor mainExecutor, runtime::Executor engineExecutor,
                                   FanControllerFactory makeController, OnState onState)
    : engineExecutor_(std::move(engineExecutor)),
      home_(std::make_shared<Home>(Home{.make = std::move(makeController)})),
      onState_(std::make_shared<OnState>(std::move(onState))) {
  // Posted, as the end is, so that the two happen in this order.
  auto begin = [executor = engineExecutor_,
                work = handOverStates(home_, std::move(mainExecutor), onState_)]() mutable {
    runtime::start(executor, "the reading of a fan controller's states", std::move(work));
  };
  boost::asio::post(engineExecutor_, std::move(begin));
}

HostedController::~HostedController() {
  boost::asio::post(engineExecutor_, [home = std::move(home_)] { home->reading.requestStop(); });
}

Async<ControlResult> HostedController::applyPlan(core::FanControlPlan plan) const {
  return onEngine(applyPlanAt(home_, std::move(plan)));
}

Async<void> HostedController::restoreAuto() const {
  return onEngine(restoreAutoAt(home_));
}

Async<void> HostedController::heartbeat() const {
  return onEngine(heartbeatAt(home_));
}

Async<ControlResult> HostedController::applyPlanAt(SharedHome home, core::FanControlPlan plan) {
  co_return co_await home->made().applyPlan(std::move(plan));
}

Async<void> HostedController::restoreAutoAt(SharedHome home) {
  co_await home->made().restoreAuto();
}

Async<void> HostedController::heartbeatAt(SharedHome home) {
  co_await home->made().heartbeat();
}

Async<void> HostedController::handOverStates(SharedHome home, runtime::Executor mainExecutor,
                                             std::weak_ptr<OnState> onState) {
  const runtime::StopToken stop = home->reading.token();
  core::ControlStateStream& states = home->made().stateStream();
  while (!stop.stopRequested()) {
    auto state = co_await states.next(stop);
    if (!state) co_return;
    boost::asio::post(mainExecutor, [onState, state = std::move(*state)]() mutable {
      if (const auto handler = onState.lock()) (*handler)(std::move(state));
    });
  }
}

} // namespace ventolith::app
