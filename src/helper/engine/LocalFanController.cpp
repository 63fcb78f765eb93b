#include "helper/engine/LocalFanController.h"

#include "hardware/FanKeys.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cmath>

namespace ventolith::helper {

using core::ControlResult;
using core::FanControlModePlan;
using core::FanControlPlan;
using core::FanID;
using runtime::Async;

LocalFanController::LocalFanController(const runtime::Executor& executor, runtime::Clock& clock,
                                       hardware::SMCWriting& smc, hardware::SensorReading& sensors,
                                       const hardware::Privileges& privileges)
    : serial_(executor), clock_(clock), smc_(smc), sensors_(sensors), privileges_(privileges) {}

LocalFanController::LocalFanController(const runtime::Executor& executor, runtime::Clock& clock,
                                       hardware::SMCConnection& smc, hardware::HIDBridge& bridge,
                                       const hardware::Privileges& privileges)
    : serial_(executor),
      clock_(clock),
      ownSensors_(std::make_unique<hardware::SensorReader>(executor, smc, bridge, clock,
                                                           hardware::printToStandardError)),
      smc_(smc),
      sensors_(*ownSensors_),
      privileges_(privileges) {}

Async<ControlResult> LocalFanController::setManual(FanID fan, std::int64_t rpm) {
  return run(applyToOneFan(fan, FanControlModePlan::fixedRPM(static_cast<double>(rpm))));
}

Async<ControlResult> LocalFanController::setPercent(FanID fan, double percent) {
  if (!std::isfinite(percent)) co_return ControlResult::failed("the percentage is not a finite number");
  co_return co_await run(applyToOneFan(fan, FanControlModePlan::fixedPercent(percent)));
}

Async<ControlResult> LocalFanController::fullBlast() {
  return run(applyFullBlast());
}

Async<ControlResult> LocalFanController::applyPlan(FanControlPlan plan) {
  return run(applyInTurn(std::move(plan)));
}

Async<ControlResult> LocalFanController::automatic() {
  return run(automaticNow());
}

Async<void> LocalFanController::restoreAuto() {
  return run(restoreAutoNow());
}

Async<void> LocalFanController::heartbeat() {
  return run(noteHeartbeat());
}

Async<FanControlPlan> LocalFanController::activePlan() {
  return run(tellActivePlan());
}

bool LocalFanController::isAtRest() const {
  const bool holdsNothing = claimedFans_.empty() && pendingAutoReleaseFans_.empty() && monitoredFans_.empty();
  return holdsNothing && !holdTask_ && !releaseRetryTask_;
}

bool LocalFanController::isComingToRest() const {
  return !isAtRest() && (releaseRetryTask_ || monitoredFans_.empty());
}

Async<std::optional<std::string>> LocalFanController::restoreAllFansToAutomatic() {
  return run(recoverAtStart());
}

/// Waits for the commands before this one that have no plan yet. False if the fans were to be given back
/// meanwhile: that command has the last word.
Async<bool> LocalFanController::turnOfAPlan() {
  const Generation before = givenBack_;
  const runtime::WaitingRow::Place place = planOrder_->enter();
  co_await runtime::WaitingRow::turn(planOrder_, place);
  co_return before == givenBack_;
}

Async<ControlResult> LocalFanController::applyInTurn(FanControlPlan plan) {
  if (!co_await turnOfAPlan()) co_return ControlResult::reclaimed;
  co_return co_await applyPlanNow(std::move(plan));
}

Async<ControlResult> LocalFanController::applyToOneFan(FanID fan, FanControlModePlan mode) {
  if (!co_await turnOfAPlan()) co_return ControlResult::reclaimed;
  FanControlPlan plan = activePlan_;
  std::erase_if(plan.fans, [fan](const core::FanPlan& entry) { return entry.fanID == fan; });
  plan.fans.push_back({fan, std::move(mode)});
  co_return co_await applyPlanNow(std::move(plan));
}

Async<ControlResult> LocalFanController::applyFullBlast() {
  const Generation before = givenBack_;
  const runtime::WaitingRow::Place place = planOrder_->enter();
  const auto count = co_await fanCount();
  co_await runtime::WaitingRow::turn(planOrder_, place);
  if (!count) co_return ControlResult::failed("could not read FNum");
  if (before != givenBack_) co_return ControlResult::reclaimed;
  FanControlPlan plan = activePlan_;
  plan.fans.clear();
  for (FanID fan = 0; fan < *count; ++fan)
    plan.fans.push_back({fan, FanControlModePlan::fixedPercent(100.0)});
  co_return co_await applyPlanNow(std::move(plan));
}

Async<LocalFanController::ErrorText> LocalFanController::recoverAtStart() {
  const auto count = co_await fanCount();
  if (!count) co_return "could not read FNum during startup recovery";
  // A release reaches the fans whose mode key is known, and this process knows none yet.
  std::vector<std::string> errors;
  for (FanID fan = 0; fan < *count; ++fan) {
    if (auto error = co_await learnModeKey(fan)) errors.push_back(std::move(*error));
  }
  if (auto error = co_await outOfReach()) errors.push_back(std::move(*error));
  const bool isHolding = isPlanInForce() && !(claimedFans_.empty() && monitoredFans_.empty());
  auto error = isHolding ? co_await releaseAllButThePlans() : co_await releaseAllToAuto(directCommand);
  if (error) errors.insert(errors.begin(), std::move(*error));
  if (errors.empty()) co_return std::nullopt;
  co_return fmt::format("{}", fmt::join(errors, "; "));
}

/// The fans that the plan in force does not control.
Async<LocalFanController::ErrorText> LocalFanController::releaseAllButThePlans() {
  for (const auto& [fan, modeKey] : modeKeyCache_) {
    if (!claimedFans_.contains(fan) && !monitoredFans_.contains(fan)) pendingAutoReleaseFans_.insert(fan);
  }
  co_return co_await releasePendingAutoFans(directCommand);
}

/// Fans that a run before this one has held, and that are not among those of the machine as it stands.
Async<LocalFanController::ErrorText> LocalFanController::outOfReach() {
  const auto value = co_await smc_.tryReadValue(hardware::fankeys::fansOutOfReach);
  const auto count = hardware::fankeys::truncated(value ? value->numeric() : std::nullopt).value_or(0);
  if (count <= 0) co_return std::nullopt;
  co_return fmt::format("{} fan(s) that were held before cannot be reached", count);
}

Async<void> LocalFanController::noteHeartbeat() {
  lastHeartbeat_ = clock_.now();
  co_return;
}

Async<FanControlPlan> LocalFanController::tellActivePlan() {
  co_await turnOfAPlan();
  co_return activePlan_;
}

Async<std::optional<FanID>> LocalFanController::fanCount() {
  const auto value = co_await smc_.tryReadValue(hardware::fankeys::fanCount);
  co_return hardware::fankeys::fanCountOf(value ? value->numeric() : std::nullopt);
}

void LocalFanController::publishState(bool holding, ErrorText error) {
  core::ControlState state;
  state.perFanMode = perFanMode_;
  for (const auto& [fan, rpm] : targets_)
    state.targets.emplace(fan, std::llround(rpm));
  state.isHolding = holding;
  state.lastError = std::move(error);
  if (!stoppedFans_.empty()) state.stoppedFans.emplace(stoppedFans_.begin(), stoppedFans_.end());
  state_ = std::move(state);
  stateStream_.yield(state_);
}

} // namespace ventolith::helper
