// Handing fans back to the firmware: the one operation that must not silently fail, since a fan left in
// manual mode at a low target is a risk with nobody watching. It remembers which fans failed, and retries
// them until they are back or a newer command takes over.
#include "helper/engine/LocalFanController.h"

#include "hardware/FanKeys.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <iterator>

namespace ventolith::helper {

using core::ControlResult;
using core::FanID;
using runtime::Async;
namespace fankeys = hardware::fankeys;

namespace {

/// What a write of 0 to `key` failed with; none if it was accepted.
std::optional<std::string> failureText(const std::string& key,
                                       const hardware::SMCResult<std::uint8_t>& written) {
  if (!written) return fmt::format("{}=0 failed ({})", key, written.error().description());
  if (*written != 0) return fmt::format("{}=0 rejected (SMC 0x{:x})", key, *written);
  return std::nullopt;
}

std::string joined(const std::vector<std::string>& errors) {
  return fmt::format("failed to restore Auto: {}", fmt::join(errors, "; "));
}

} // namespace

Async<ControlResult> LocalFanController::automaticNow() {
  if (!privileges_.mayControlFans()) co_return ControlResult::notPrivileged;
  auto error = co_await giveBackByCommand();
  co_return error ? ControlResult::failed(std::move(*error)) : ControlResult::applied;
}

Async<void> LocalFanController::restoreAutoNow() {
  co_await giveBackByCommand();
}

Async<LocalFanController::ErrorText> LocalFanController::giveBackByCommand() {
  ++givenBack_;
  standDownRetry();
  activePlan_ = core::FanControlPlan::allAutomatic;
  evaluator_.reset();
  co_return co_await releaseAllToAuto(directCommand);
}

/// A direct command has no expected generation and always runs. A retry gives up, without a text and
/// leaving all state as it stands, wherever it finds that a newer command has come.
bool LocalFanController::isStale(std::optional<Generation> expectedRetryGeneration) const {
  return expectedRetryGeneration && *expectedRetryGeneration != releaseRetryGeneration_;
}

Async<LocalFanController::ErrorText>
LocalFanController::releaseAllToAuto(std::optional<Generation> expectedRetryGeneration) {
  if (isStale(expectedRetryGeneration)) co_return std::nullopt;
  // Both before the first write: no pass that resumes later can write over a fan that is handed back.
  if (holdTask_) holdTask_->requestStop();
  holdTask_.reset();
  ++releaseGeneration_;

  const Generation command = releaseRetryGeneration_;
  co_await smc_.writeUInt8(fankeys::forceTest, 1);
  std::set<FanID> failed;
  std::vector<std::string> errors;
  const auto modeKeys = modeKeyCache_; // A copy: another operation may learn a key wherever this waits.
  for (const auto& [fan, modeKey] : modeKeys) {
    if (isStale(expectedRetryGeneration)) co_return std::nullopt;
    if (auto error = co_await writeZero(modeKey)) {
      failed.insert(fan);
      errors.push_back(std::move(*error));
    } else {
      forgetHeld(fan);
    }
  }
  if (isStale(expectedRetryGeneration)) co_return std::nullopt;
  const bool isOvertaken = command != releaseRetryGeneration_;
  if (failed.empty() && !isOvertaken) { // Else the latch stays set: the retry or the newer command needs it.
    auto error = co_await clearLatch();
    if (isStale(expectedRetryGeneration)) co_return std::nullopt;
    if (error) errors.push_back(std::move(*error));
  }
  if (command == releaseRetryGeneration_) {
    settleRelease(failed);
    publishState(!claimedFans_.empty(), errors.empty() ? std::nullopt : ErrorText(joined(errors)));
  } else {
    leaveToNewerCommand(failed);
  }
  if (errors.empty()) co_return std::nullopt;
  ensureReleaseRetryLoopRunning();
  co_return joined(errors);
}

/// The narrower form, for fans that fell out of a plan while others are held: it neither publishes a
/// state nor clears the latch.
Async<LocalFanController::ErrorText>
LocalFanController::releasePendingAutoFans(std::optional<Generation> expectedRetryGeneration) {
  if (pendingAutoReleaseFans_.empty() || isStale(expectedRetryGeneration)) co_return std::nullopt;
  co_await smc_.writeUInt8(fankeys::forceTest, 1);
  std::vector<std::string> errors;
  const std::set<FanID> pending = pendingAutoReleaseFans_; // A copy, as above.
  for (const FanID fan : pending) {
    if (isStale(expectedRetryGeneration)) co_return std::nullopt;
    if (!pendingAutoReleaseFans_.contains(fan)) continue; // A plan has come that holds it.
    const auto cachedKey = modeKeyCache_.find(fan);
    if (cachedKey == modeKeyCache_.end()) continue;
    const std::string modeKey = cachedKey->second;
    if (auto error = co_await writeZero(modeKey)) {
      errors.push_back(std::move(*error));
    } else {
      pendingAutoReleaseFans_.erase(fan);
      forgetHeld(fan);
    }
  }
  if (isStale(expectedRetryGeneration) || errors.empty()) co_return std::nullopt;
  ensureReleaseRetryLoopRunning();
  co_return joined(errors);
}

/// Writes 0 to a mode key, and returns what that failed with.
Async<LocalFanController::ErrorText> LocalFanController::writeZero(std::string key) {
  const auto written = co_await smc_.writeUInt8(key, 0);
  co_return failureText(key, written);
}

/// A machine without the latch has none to clear.
Async<LocalFanController::ErrorText> LocalFanController::clearLatch() {
  const auto written = co_await smc_.writeUInt8(fankeys::forceTest, 0);
  const bool hasNone =
      !written && std::holds_alternative<hardware::SMCError::KeyNotFound>(written.error().value);
  co_return hasNone ? std::nullopt : failureText(fankeys::forceTest, written);
}

/// What a release leaves behind: the fans that refused, and nothing else.
void LocalFanController::settleRelease(const std::set<FanID>& failed) {
  const auto isBack = [&failed](FanID fan) { return !failed.contains(fan); };
  std::erase_if(claimedFans_, isBack);
  std::erase_if(targets_, [&](const auto& entry) { return isBack(entry.first); });
  std::erase_if(perFanMode_, [&](const auto& entry) { return isBack(entry.first); });
  pendingAutoReleaseFans_ = failed;
  monitoredFans_.clear();
  stoppedFans_.clear();
  lastHeartbeat_ = runtime::distantPast;
  consecutiveMissingTemperatureSnapshots_ = 0;
}

/// What a release leaves behind that a newer command has overtaken: plan, heartbeat and report are that
/// command's own, and its fans too. Only what refused to go back and is not its to hold is still pending.
void LocalFanController::leaveToNewerCommand(const std::set<FanID>& failed) {
  std::copy_if(failed.begin(), failed.end(),
               std::inserter(pendingAutoReleaseFans_, pendingAutoReleaseFans_.end()),
               [this](FanID fan) { return !monitoredFans_.contains(fan); });
}

void LocalFanController::forgetHeld(FanID fan) {
  claimedFans_.erase(fan);
  targets_.erase(fan);
  perFanMode_.erase(fan);
}

/// A command has come: no retry and no pass from before it may undo it.
void LocalFanController::standDownRetry() {
  ++releaseRetryGeneration_;
  if (releaseRetryTask_) releaseRetryTask_->requestStop();
  releaseRetryTask_.reset();
}

void LocalFanController::ensureReleaseRetryLoopRunning() {
  if (releaseRetryTask_) return;
  releaseRetryTask_.emplace();
  runtime::start(
      serial_.executor(), "the release retry loop",
      startedReleaseRetryLoop(weak_from_this(), releaseRetryGeneration_, releaseRetryTask_->token()));
}

/// Holds the controller weakly until it first runs.
Async<void> LocalFanController::startedReleaseRetryLoop(std::weak_ptr<LocalFanController> controller,
                                                        Generation generation, runtime::StopToken stop) {
  if (const auto self = controller.lock()) co_await self->releaseRetryLoop(generation, std::move(stop));
}

/// Without limit, for as long as a fan refuses and no newer command comes.
Async<void> LocalFanController::releaseRetryLoop(Generation generation, runtime::StopToken stop) {
  const auto standsDown = [&] { return stop.stopRequested() || releaseRetryGeneration_ != generation; };
  while (!standsDown()) {
    co_await clock_.sleep(releaseRetryPeriod, stop);
    if (standsDown()) break;
    // Nothing pending means that it was the latch alone that refused.
    const auto error = pendingAutoReleaseFans_.empty() ? co_await releaseAllToAuto(generation)
                                                       : co_await releasePendingAutoFans(generation);
    if (!error && pendingAutoReleaseFans_.empty()) break;
  }
  if (releaseRetryGeneration_ == generation) releaseRetryTask_.reset(); // Else it names a newer loop.
}

} // namespace ventolith::helper
