// A controller whose answers a test sets.
#pragma once

#include "core/ControlContract.h"
#include "runtime/Clock.h"

#include <string>
#include <vector>

namespace ventolith::app {

/// Answers what it is told to, and yields a state before and after each wait of a command.
struct ScriptedController final : core::FanControlling {
  explicit ScriptedController(runtime::Clock& time) : clock(time) {}

  runtime::Clock& clock;
  core::ControlResult automaticResult = core::ControlResult::applied;
  core::ControlResult percentResult = core::ControlResult::applied;
  core::ControlResult fullBlastResult = core::ControlResult::applied;
  std::vector<std::string> log;
  core::ControlStateStream states;

  runtime::Async<void> act(std::string entry) {
    log.push_back(std::move(entry));
    states.yield(core::ControlState::idle);
    co_await clock.sleep(std::chrono::seconds(1), runtime::StopToken());
  }
  runtime::Async<core::ControlResult> command(std::string entry, core::ControlResult result) {
    co_await act(std::move(entry));
    co_return result;
  }

  runtime::Async<core::ControlResult> setManual(core::FanID, std::int64_t) override {
    return command("setManual", percentResult);
  }
  runtime::Async<core::ControlResult> setPercent(core::FanID fan, double percent) override {
    return command("setPercent " + std::to_string(fan) + " " + std::to_string(percent), percentResult);
  }
  runtime::Async<core::ControlResult> fullBlast() override { return command("fullBlast", fullBlastResult); }
  runtime::Async<core::ControlResult> applyPlan(core::FanControlPlan) override {
    return command("applyPlan", percentResult);
  }
  runtime::Async<core::ControlResult> automatic() override { return command("automatic", automaticResult); }
  runtime::Async<void> restoreAuto() override { return act("restoreAuto"); }
  runtime::Async<void> heartbeat() override { return act("heartbeat"); }
  core::ControlStateStream& stateStream() override { return states; }
};

} // namespace ventolith::app
