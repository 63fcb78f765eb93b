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
                                     runtime::Duration simulatedAcquireDelay)
    : serial_(executor),
      clock_(clock),
      print_(std::move(print)),
      simulatedAcquireDelay_(simulatedAcquireDelay) {}

Async<ControlResult> PreviewController::setManual(FanID fan, std::int64_t rpm) {
  const auto hold = [fan, rpm](ControlState& held) {
    held.perFanMode[fan] = ControlMode::manual;
    held.targets[fan] = rpm;
  };
  return serial_.run(
      takeOver(fmt::format("setManual(fan: {}, rpm: {})", fan, rpm), ControlMode::manual, true, hold));
}

Async<ControlResult> PreviewController::setPercent(FanID fan, double percent) {
  // No RPM is known here, so the targets stay as they are.
  const auto hold = [fan](ControlState& held) { held.perFanMode[fan] = ControlMode::manual; };
  return serial_.run(takeOver(fmt::format("setPercent(fan: {}, percent: {})", fan, fractionText(percent)),
                              ControlMode::manual, true, hold));
}

Async<ControlResult> PreviewController::fullBlast() {
  return serial_.run(takeOver("fullBlast()", ControlMode::fullBlast, true, [](ControlState&) {}));
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
  return serial_.run(takeOver(std::move(entry), std::nullopt, controlled != 0, hold));
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

Async<ControlResult> PreviewController::takeOver(std::string entry, std::optional<ControlMode> mode,
                                                 bool isHolding, std::function<void(ControlState&)> hold) {
  record(std::move(entry));
  ControlState acquiring = state_;
  acquiring.isHolding = false;
  setState(std::move(acquiring));

  co_await clock_.sleep(simulatedAcquireDelay_, runtime::StopToken());

  if (mode) mode_ = *mode;
  ControlState held = state_;
  hold(held);
  held.isHolding = isHolding;
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
  log_.push_back(std::move(text));
}

void PreviewController::setState(ControlState state) {
  state_ = std::move(state);
  stateStream_.yield(state_);
}

} // namespace ventolith::core
