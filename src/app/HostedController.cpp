#include "app/HostedController.h"

#include "runtime/StopToken.h"

#include <boost/asio/post.hpp>

#include <utility>

namespace ventolith::app {

using core::ControlResult;
using runtime::Async;

/// Kept by the reading of the states, and so until that ends; all on the engine's executor.
struct HostedController::Home {
  FanControllerFactory make;
  std::shared_ptr<core::FanControlling> controller = nullptr; // Made at the first use.
  runtime::StopSource reading = {};

  core::FanControlling& made() {
    if (!controller) controller = make();
    return *controller;
  }
};

/// Shared by all that still need the controller. The last of them ends the reading, wherever it lets go.
class HostedController::User {
public:
  User(runtime::Executor engineExecutor, std::shared_ptr<Home> home)
      : engineExecutor_(std::move(engineExecutor)), home_(std::move(home)) {}
  User(const User&) = delete;
  User& operator=(const User&) = delete;
  ~User() {
    boost::asio::post(engineExecutor_, [home = std::move(home_)] { home->reading.requestStop(); });
  }

  /// On the engine's executor.
  [[nodiscard]] core::FanControlling& controller() const { return home_->made(); }

private:
  runtime::Executor engineExecutor_;
  std::shared_ptr<Home> home_;
};

HostedController::HostedController(runtime::Executor mainExecutor, runtime::Executor engineExecutor,
                                   FanControllerFactory makeController, OnState onState)
    : engineExecutor_(std::move(engineExecutor)), onState_(std::make_shared<OnState>(std::move(onState))) {
  const auto home = std::make_shared<Home>(Home{.make = std::move(makeController)});
  user_ = std::make_shared<User>(engineExecutor_, home);
  // Posted, as the end is, so that the two happen in this order.
  auto begin = [executor = engineExecutor_,
                work = handOverStates(home, std::move(mainExecutor), onState_)]() mutable {
    runtime::start(executor, "the reading of a fan controller's states", std::move(work));
  };
  boost::asio::post(engineExecutor_, std::move(begin));
}

Async<ControlResult> HostedController::applyPlan(core::FanControlPlan plan) const {
  return onEngine(applyPlanAs(user_, std::move(plan)));
}

Async<void> HostedController::restoreAuto() const {
  return onEngine(restoreAutoAs(user_));
}

Async<void> HostedController::heartbeat() const {
  return onEngine(heartbeatAs(user_));
}

Async<ControlResult> HostedController::applyPlanAs(SharedUser user, core::FanControlPlan plan) {
  co_return co_await user->controller().applyPlan(std::move(plan));
}

Async<void> HostedController::restoreAutoAs(SharedUser user) {
  co_await user->controller().restoreAuto();
}

Async<void> HostedController::heartbeatAs(SharedUser user) {
  co_await user->controller().heartbeat();
}

Async<void> HostedController::handOverStates(std::shared_ptr<Home> home, runtime::Executor mainExecutor,
                                             std::weak_ptr<OnState> onState) {
  const runtime::StopToken stop = home->reading.token();
  core::ControlStateStream& states = home->made().stateStream();
  while (!stop.stopRequested()) {
    auto state = co_await states.next(stop);
    if (!state) co_return;
    if (onState.expired()) continue; // A command keeps the controller.
    boost::asio::post(mainExecutor, [onState, state = std::move(*state)]() mutable {
      if (const auto handler = onState.lock()) (*handler)(std::move(state));
    });
  }
}

} // namespace ventolith::app
