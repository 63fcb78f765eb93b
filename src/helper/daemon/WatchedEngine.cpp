#include "helper/daemon/WatchedEngine.h"

#include "hardware/FanKeys.h"

#include <utility>

namespace ventolith::helper {

using core::ControlResult;
using runtime::Async;

namespace {

// The steps in which a claim that stands down, and an engine that comes to rest, are waited for.
constexpr runtime::Duration standDownStep = std::chrono::milliseconds(100);
constexpr int standDownSteps = 10;
constexpr runtime::Duration restStep = std::chrono::seconds(1);

std::string textOf(const ControlResult& result) {
  const auto* failed = std::get_if<ControlResult::Failed>(&result.value);
  return failed != nullptr ? failed->message : result.text();
}

} // namespace

WatchedEngine::WatchedEngine(const runtime::Executor& executor, runtime::Clock& clock,
                             hardware::SMCWriting& smc, hardware::SensorReading& sensors,
                             const hardware::Privileges& privileges, ServiceSupervisor& supervisor,
                             HelperLog& log)
    : executor_(executor),
      clock_(clock),
      smc_(smc),
      privileges_(privileges),
      supervisor_(supervisor),
      log_(log),
      watchedClock_(clock, [this] { noteSignOfLife(); }),
      engine_(std::make_shared<LocalFanController>(executor, watchedClock_, smc, sensors, privileges)) {}

Async<ControlResult> WatchedEngine::setManual(core::FanID fan, std::int64_t rpm) {
  return observed(engine_->setManual(fan, rpm));
}

Async<ControlResult> WatchedEngine::setPercent(core::FanID fan, double percent) {
  return observed(engine_->setPercent(fan, percent));
}

Async<ControlResult> WatchedEngine::fullBlast() {
  return observed(engine_->fullBlast());
}

Async<ControlResult> WatchedEngine::applyPlan(core::FanControlPlan plan) {
  return observed(engine_->applyPlan(std::move(plan)));
}

Async<ControlResult> WatchedEngine::automatic() {
  return observed(engine_->automatic());
}

Async<void> WatchedEngine::restoreAuto() {
  return observed(engine_->restoreAuto());
}

Async<void> WatchedEngine::heartbeat() {
  return engine_->heartbeat();
}

Async<std::optional<std::string>> WatchedEngine::recover() {
  isRecoveryDue_ = true;
  auto error = co_await observed(recoverOnce());
  if (error && !std::exchange(keepsRecovering_, true))
    runtime::start(executor_, "the recovery", recoverUntilItSucceeds());
  co_return error;
}

Async<std::optional<std::string>> WatchedEngine::recoverOnce() {
  std::optional<std::string> error;
  if (co_await mayHaveFans(smc_)) error = co_await engine_->restoreAllFansToAutomatic();
  if (!error) isRecoveryDue_ = false;
  co_return error;
}

Async<bool> WatchedEngine::mayHaveFans(hardware::SMCWriting& smc) {
  const auto count = co_await smc.readValue(hardware::fankeys::fanCount);
  co_return count || !std::holds_alternative<hardware::SMCError::KeyNotFound>(count.error().value);
}

/// Through the watched clock: it is part of what the service manager watches.
Async<void> WatchedEngine::recoverUntilItSucceeds() {
  while (isRecoveryDue_) {
    co_await watchedClock_.sleep(recoveryInterval, runtime::StopToken());
    if (!isRecoveryDue_) break;
    if (!co_await observed(recoverOnce()))
      log_.note("every fan that was held before is with the firmware now");
  }
  keepsRecovering_ = false;
}

Async<std::optional<core::FanControlPlan>> WatchedEngine::planInForce() {
  core::FanControlPlan plan = co_await engine_->activePlan();
  if (plan == core::FanControlPlan::allAutomatic) co_return std::nullopt;
  co_return plan;
}

/// Neither object nor guard ends the command: where the process ends before it does, nothing is to run any
/// more.
template <class Result>
Async<Result> WatchedEngine::observed(Async<Result> command) {
  commandBegins();
  if constexpr (std::is_void_v<Result>) {
    co_await std::move(command);
    commandEnds();
  } else {
    Result result = co_await std::move(command);
    commandEnds();
    co_return result;
  }
}

void WatchedEngine::commandBegins() {
  ++commandsUnderWay_;
  if (activity_) return;
  activity_.emplace();
  lastSign_ = clock_.now();
  if (isSupervised_) supervisor_.setWatched(true);
  if (followsStates_) return; // One that has not noticed yet that the engine was at rest.
  followsStates_ = true;
  runtime::start(executor_, "the engine's states", followStates());
}

void WatchedEngine::commandEnds() {
  --commandsUnderWay_;
  lookForRest();
}

void WatchedEngine::beginSupervision() {
  isSupervised_ = true;
  if (activity_) supervisor_.setWatched(true);
}

void WatchedEngine::noteSignOfLife() {
  if (!activity_ || !isSupervised_ || clock_.now() - lastSign_ < mostFrequentSign) return;
  lastSign_ = clock_.now();
  supervisor_.alive();
}

void WatchedEngine::lookForRest() {
  if (!activity_) return;
  if (!isAtRest()) {
    if (commandsUnderWay_ == 0 && engine_->isComingToRest()) watchItComeToRest();
    return;
  }
  activity_->requestStop();
  activity_.reset();
  if (isSupervised_) supervisor_.setWatched(false);
}

/// Keeps the stream short, to its last state when all is at rest; and notices a watchdog's release, which
/// comes to rest without a command.
Async<void> WatchedEngine::followStates() {
  while (activity_) {
    const runtime::StopToken stop = activity_->token();
    while (co_await engine_->stateStream().next(stop))
      lookForRest();
  }
  followsStates_ = false;
}

void WatchedEngine::watchItComeToRest() {
  if (std::exchange(looksForRest_, true)) return;
  runtime::start(executor_, "the engine's way to rest", lookUntilItRests());
}

Async<void> WatchedEngine::lookUntilItRests() {
  while (activity_ && engine_->isComingToRest()) {
    co_await clock_.sleep(restStep, activity_->token());
    // A retry that has succeeded told nobody, and left the latch as it was.
    if (isAtRest() && !currentState().perFanMode.empty()) co_await observed(engine_->restoreAuto());
    lookForRest();
  }
  looksForRest_ = false;
}

Async<std::optional<std::string>> WatchedEngine::giveEveryFanBack() {
  if (isAtRest())
    co_return std::nullopt; // Also where there are no fans, and nothing that could take a write.
  const int attempts = privileges_.mayControlFans() ? giveBackAttempts : 1;
  for (int attempt = 1;; ++attempt) {
    auto error = co_await giveBackOnce();
    if (!error || attempt == attempts) co_return error;
    log_.warn(*error + "; trying again");
    co_await clock_.sleep(giveBackInterval, runtime::StopToken());
  }
}

Async<std::optional<std::string>> WatchedEngine::giveBackOnce() {
  const ControlResult result = co_await automatic();
  // Permission was lost while fans are held: the attempt is made all the same.
  if (result == ControlResult::notPrivileged) co_await restoreAuto();
  for (int step = 0; step < standDownSteps && commandsUnderWay_ > 0; ++step)
    co_await clock_.sleep(standDownStep, runtime::StopToken());
  if (isRecoveryDue_) {
    if (auto error = co_await observed(recoverOnce())) co_return error;
  }
  if (isAtRest()) co_return std::nullopt;
  if (result == ControlResult::notPrivileged)
    co_return engine_->currentState().lastError.value_or(result.text());
  if (result != ControlResult::applied) co_return textOf(result);
  co_return "a command that was under way took fans meanwhile";
}

} // namespace ventolith::helper
