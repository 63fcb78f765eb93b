// A fan controller as the main executor holds it.
#pragma once

#include "core/ControlContract.h"
#include "runtime/Async.h"

#include <functional>
#include <memory>

namespace ventolith::app {

/// Called on the engine's thread, where the controller lives and goes away.
using FanControllerFactory = std::function<std::shared_ptr<core::FanControlling>()>;

/// Makes a controller on the engine's executor, reads its states there and hands them over, and sends
/// commands across. Lives on the main executor.
///
/// When it goes away its controller goes too, with all that this holds; a command that is under way finishes
/// first. No state is handed over from then on: those that a controller gives in that time are dropped, so
/// that they do not pile up behind a command that takes for ever.
class HostedController {
public:
  using OnState = std::function<void(core::ControlState)>;

  /// `onState` is called on the main executor with every state of the controller, in order.
  HostedController(runtime::Executor mainExecutor, runtime::Executor engineExecutor,
                   FanControllerFactory makeController, OnState onState);
  HostedController(const HostedController&) = delete;
  HostedController& operator=(const HostedController&) = delete;

  // Work that begins on the engine's executor when it is awaited, and needs this object no more once it is
  // returned.
  [[nodiscard]] runtime::Async<core::ControlResult> applyPlan(core::FanControlPlan plan) const;
  [[nodiscard]] runtime::Async<void> restoreAuto() const;
  [[nodiscard]] runtime::Async<void> heartbeat() const;

private:
  struct Home;
  class User;
  using SharedUser = std::shared_ptr<User>;

  template <class Result>
  [[nodiscard]] runtime::Async<Result> onEngine(runtime::Async<Result> work) const {
    return boost::asio::co_spawn(engineExecutor_, std::move(work), boost::asio::use_awaitable);
  }
  static runtime::Async<core::ControlResult> applyPlanAs(SharedUser user, core::FanControlPlan plan);
  static runtime::Async<void> restoreAutoAs(SharedUser user);
  static runtime::Async<void> heartbeatAs(SharedUser user);
  static runtime::Async<void> handOverStates(std::shared_ptr<Home> home, runtime::Executor mainExecutor,
                                             std::weak_ptr<OnState> onState);

  runtime::Executor engineExecutor_;
  SharedUser user_;                  // This one, and each command under way.
  std::shared_ptr<OnState> onState_; // The main executor's.
};

} // namespace ventolith::app
