// Applying a plan, and the pass that asks the policy what each fan should do now and drives the SMC
// accordingly.
#include "helper/engine/LocalFanController.h"

#include "hardware/FanKeys.h"

#include <algorithm>
#include <iterator>

namespace ventolith::helper {

using core::ControlResult;
using core::FanControlModePlan;
using core::FanControlPlan;
using core::FanHoldActions;
using core::FanID;
using core::FanPlan;
using runtime::Async;
namespace fankeys = hardware::fankeys;

namespace {

std::set<FanID> controlledFans(const FanControlPlan& plan) {
  std::set<FanID> fans;
  for (const FanPlan& entry : plan.fans) {
    if (!entry.mode.isAutomatic()) fans.insert(entry.fanID);
  }
  return fans;
}

/// The mode of the fan's first entry that is not automatic, or else of its first; none if the plan does not
/// list it.
const FanControlModePlan* modeIn(const FanControlPlan& plan, FanID fan) {
  const FanControlModePlan* first = nullptr;
  for (const FanPlan& entry : plan.fans) {
    if (entry.fanID != fan) continue;
    if (!entry.mode.isAutomatic()) return &entry.mode;
    if (first == nullptr) first = &entry.mode;
  }
  return first;
}

} // namespace

Async<ControlResult> LocalFanController::applyPlanNow(FanControlPlan plan) {
  if (!privileges_.mayControlFans()) co_return ControlResult::notPrivileged;
  // A release that runs from here on has the last word, and its own report.
  const Generation generation = releaseGeneration_;
  standDownRetry();
  const auto isSuperseded = [this, command = releaseRetryGeneration_] {
    return command != releaseRetryGeneration_;
  };
  activePlan_ = plan;
  lastHeartbeat_ = clock_.now(); // A new plan counts as one, from its arrival.
  monitoredFans_ = controlledFans(plan);
  std::erase_if(pendingAutoReleaseFans_, [this](FanID fan) { return monitoredFans_.contains(fan); });
  std::copy_if(claimedFans_.begin(), claimedFans_.end(),
               std::inserter(pendingAutoReleaseFans_, pendingAutoReleaseFans_.end()),
               [this](FanID fan) { return !monitoredFans_.contains(fan); });
  if (auto error = co_await releasePendingAutoFans(directCommand)) publishState(true, std::move(error));

  // Claiming takes up to ten seconds a fan: what is claimed by then is watched from here on.
  if (!monitoredFans_.empty() && generation == releaseGeneration_) ensureHoldLoopRunning();
  const ControlResult result = co_await claimPlannedFans(plan, generation);
  if (generation != releaseGeneration_) co_return ControlResult::reclaimed;
  if (claimedFans_.empty() && monitoredFans_.empty()) {
    auto error = co_await releaseAllToAuto(directCommand);
    co_return error ? ControlResult::failed(std::move(*error)) : result;
  }
  ensureHoldLoopRunning();
  if (isSuperseded()) co_return result;
  auto snapshot = co_await sensors_.snapshot();
  if (generation != releaseGeneration_) co_return ControlResult::reclaimed;
  if (isSuperseded()) co_return result;
  co_await assertPlanOnce(activePlan_, std::move(snapshot), clock_.now());
  if (generation != releaseGeneration_) co_return ControlResult::reclaimed;
  if (isSuperseded()) co_return result;
  publishState(!claimedFans_.empty(),
               result == ControlResult::applied ? std::nullopt : ErrorText("applyPlan: " + result.text()));
  co_return result;
}

/// Each fan once, however often the plan lists it, and none that the plan in force leaves alone by then. The
/// last failure wins; fans that were claimed stay claimed even when a later one fails.
Async<ControlResult> LocalFanController::claimPlannedFans(const FanControlPlan& plan, Generation generation) {
  ++claimsUnderWay_;
  ControlResult result = ControlResult::applied;
  std::set<FanID> tried;
  for (const FanPlan& entry : plan.fans) {
    if (entry.mode.isAutomatic() || claimedFans_.contains(entry.fanID)) continue;
    if (!tried.insert(entry.fanID).second) continue;
    const auto isWanted = [this, fan = entry.fanID] { return monitoredFans_.contains(fan); };
    if (!isWanted()) continue;
    const auto modeKey = co_await resolveModeKey(entry.fanID);
    if (!modeKey) {
      result = ControlResult::failed("neither F<n>Md nor F<n>md exists on this machine");
      continue;
    }
    const ControlResult claim = co_await claimManualMode(*modeKey, generation, isWanted);
    if (claim == ControlResult::applied) {
      enterClaimed(entry.fanID);
    } else if (isWanted()) {
      result = claim;
    }
  }
  --claimsUnderWay_;
  co_return result;
}

/// One pass. Returns the fans that the firmware was found to have taken back. A release that runs between
/// two of its steps ends it, and so does a newer plan or pass: no target is written after the fans were
/// handed back, and no fan is taken anew that a newer pass has just let go, which nobody would hold then.
Async<std::vector<FanID>>
LocalFanController::assertPlanOnce(FanControlPlan plan, core::SensorSnapshot snapshot, runtime::Instant now) {
  const Pass pass{++passes_, releaseRetryGeneration_, releaseGeneration_};
  const auto decisions = evaluator_.evaluate(plan, snapshot, now);
  const auto actions = core::FanHoldPlanner::actions(decisions, claimedFans_);
  stoppedFans_ = {actions.stoppedFans.begin(), actions.stoppedFans.end()};
  if (actions.forceTestEnabled) co_await smc_.writeUInt8(fankeys::forceTest, 1);

  if (!co_await releaseFansOf(actions, pass)) co_return std::vector<FanID>();
  if (!co_await claimWantedFans(actions, pass)) co_return std::vector<FanID>();
  const auto reclaimed = co_await holdTargetsOf(actions, pass);
  if (!reclaimed) co_return std::vector<FanID>();
  const bool isLatchIdle = claimedFans_.empty() && !actions.forceTestEnabled && claimsUnderWay_ == 0;
  if (isLatchIdle && !isOver(pass)) co_await smc_.writeUInt8(fankeys::forceTest, 0);
  co_return *reclaimed;
}

/// Gives back what is to go; a refusal is for the next pass. False once the pass is over.
Async<bool> LocalFanController::releaseFansOf(const FanHoldActions& actions, Pass pass) {
  for (const FanID fan : actions.toRelease) {
    if (isOver(pass)) co_return false;
    const auto modeKey = modeKeyCache_.find(fan);
    if (modeKey == modeKeyCache_.end()) continue;
    const auto written = co_await smc_.writeUInt8(modeKey->second, fankeys::modeAutomatic);
    if (written && *written == 0) forgetHeld(fan);
  }
  co_return true;
}

/// Takes over what is to be held; a failed claim is for the next pass, and all of them are while a command
/// claims: a pass that waited beside it would keep the watchdogs from what the command has claimed. False
/// once the pass is overtaken: a newer one does not end a claim, which both of them want.
Async<bool> LocalFanController::claimWantedFans(const FanHoldActions& actions, Pass pass) {
  if (claimsUnderWay_ > 0) co_return true;
  const auto isWanted = [this, pass] { return !isOvertaken(pass); };
  for (const FanID fan : actions.toClaim) {
    if (!isWanted()) co_return false;
    const auto modeKey = co_await resolveModeKey(fan);
    if (!modeKey) continue;
    if (co_await claimManualMode(*modeKey, pass.release, isWanted) == ControlResult::applied)
      enterClaimed(fan);
  }
  co_return true;
}

/// Asserts mode and target of every claimed fan, since the firmware can revert them at any time. None once
/// the pass is over.
Async<std::optional<std::vector<FanID>>> LocalFanController::holdTargetsOf(const FanHoldActions& actions,
                                                                           Pass pass) {
  std::vector<FanID> reclaimed;
  const std::set<FanID> claimed = claimedFans_; // A copy: a release may run wherever this waits.
  for (const FanID fan : claimed) {
    if (isOver(pass)) co_return std::nullopt;
    const auto cachedKey = modeKeyCache_.find(fan);
    const auto target = actions.targets.find(fan);
    const bool isHeld =
        claimedFans_.contains(fan) && cachedKey != modeKeyCache_.end() && target != actions.targets.end();
    if (!isHeld) continue;
    const std::string modeKey = cachedKey->second;
    co_await smc_.writeUInt8(modeKey, fankeys::modeManual);
    if (isOver(pass)) co_return std::nullopt;
    co_await smc_.writeFloat(fankeys::target(fan), target->second);
    if (isOver(pass)) co_return std::nullopt;
    targets_.insert_or_assign(fan, target->second);
    const auto mode = co_await smc_.tryReadValue(modeKey);
    if (fankeys::truncated(mode ? mode->numeric() : std::nullopt) == fankeys::modeReclaimed)
      reclaimed.push_back(fan);
  }
  co_return reclaimed;
}

/// Under the mode of the plan in force, which may be newer than the one that asked for the fan. If it leaves
/// the fan alone, the next round gives it back.
void LocalFanController::enterClaimed(FanID fan) {
  claimedFans_.insert(fan);
  if (const auto* const mode = modeIn(activePlan_, fan))
    perFanMode_.insert_or_assign(fan, core::controlMode(*mode));
  ensureHoldLoopRunning();
}

} // namespace ventolith::helper
