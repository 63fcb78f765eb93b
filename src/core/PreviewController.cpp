#include "core/PreviewController.h"

#include "core/NumberText.h"

#include <fmt/format.h>

#include <algorithm>

namespace ventolith::core {

using runtime::Async;

namespace {

// A held curve shows as manual here: nothing evaluates it.
ControlMode previewMode(const FanControlModePlan& mode) {
  const ControlMode reported = controlMode(mode);
  return reported == ControlMode::curve ? ControlMode::manual : reported;
}

} // namespace

PreviewController::PreviewController(const runtime::Executor& executor, runtime::Clock& clock,
                                     std::function<void(const std::string&)> print,
                                     runtime::Duration simulatedAcquireDelay, std::size_t logLimit)
    : serial_(executor),
      clock_(clock),
      print_(std::move(print)),
      simulatedAcquireDelay_(simulatedAcquireDelay),
      logLimit_(logLimit) {}

Async<ControlResult> PreviewController::setManual(FanID fan, std::int64_t rpm) {
  const auto hold = [fan, rpm](ControlState& held) {
    held.perFanMode[fan] = ControlMode::manual;
    held.targets[fan] = rpm;
  };
  return serial_.run(takeOver({.entry = fmt::format("setManual(fan: {}, rpm: {})", fan, rpm),
                               .mode = ControlMode::manual,
                               .isHolding = true,
                               .hold = hold}));
}

Async<ControlResult> PreviewController::setPercent(FanID fan, double percent) {
  // No RPM is known here, so the targets stay as they are.
  const auto hold = [fan](ControlState& held) { held.perFanMode[fan] = ControlMode::manual; };
  return serial_.run(
      takeOver({.entry = fmt::format("setPercent(fan: {}, percent: {})", fan, fractionText(percent)),
                .mode = ControlMode::manual,
                .isHolding = true,
                .hold = hold}));
}

Async<ControlResult> PreviewController::fullBlast() {
  const auto hold = [](ControlState&) {};
  return serial_.run(
      takeOver({.entry = "fullBlast()", .mode = ControlMode::fullBlast, .isHolding = true, .hold = hold}));
}

Async<ControlResult> PreviewController::applyPlan(FanControlPlan plan) {
  const auto isControlled = [](const FanPlan& fan) { return !fan.mode.isAutomatic(); };
  const auto controlled = std::count_if(plan.fans.begin(), plan.fans.end(), isControlled);
  auto entry = fmt::format("applyPlan(fans: {}, controlled: {}, rules: {})", plan.fans.size(), controlled,
                           plan.rules.size());
  const auto hold = [fans = std::move(plan.fans)](ControlState& held) {
    for (const FanPlan& fan : fans)
      held.perFanMode[fan.fanID] = previewMode(fan.mode);
  };
  return serial_.run(takeOver(
      {.entry = std::move(entry), .mode = std::nullopt, .isHolding = controlled != 0, .hold = hold}));
}

Async<ControlResult> PreviewController::automatic() {
  co_await serial_.run(giveBack("automatic()"));
  co_return ControlResult::applied;
}

Async<void> PreviewController::restoreAuto() {
  return serial_.run(giveBack("restoreAuto()"));
}

Async<void> PreviewController::heartbeat() {
  const auto work = [](PreviewController& self) -> Async<void> {
    self.record("heartbeat()");
    co_return;
  };
  return serial_.run(work(*this));
}

Async<ControlResult> PreviewController::takeOver(Command command) {
  record(std::move(command.entry));
  ControlState acquiring = state_;
  acquiring.isHolding = false;
  setState(std::move(acquiring));

  co_await clock_.sleep(simulatedAcquireDelay_, runtime::StopToken());

  if (command.mode) mode_ = *command.mode;
  ControlState held = state_;
  command.hold(held);
  held.isHolding = command.isHolding;
  held.lastError = std::nullopt;
  setState(std::move(held));
  co_return ControlResult::applied;
}

Async<void> PreviewController::giveBack(std::string entry) {
  record(std::move(entry));
  mode_ = ControlMode::automatic;
  setState(ControlState::idle);
  co_return;
}

void PreviewController::record(std::string text) {
  print_("[PreviewController] " + text);
  if (log_.size() >= logLimit_) log_.erase(log_.begin());
  log_.push_back(std::move(text));
}

void PreviewController::setState(ControlState state) {
  state_ = std::move(state);
  stateStream_.yield(state_);
}

} // namespace ventolith::core
