// The periodic loop while any fan is held, and the safety net of the whole system: if the client
// vanishes, the temperature data vanishes, or the machine gets too hot, it gives every fan back.
#include "helper/engine/LocalFanController.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cmath>

namespace ventolith::helper {

using core::FanID;
using runtime::Async;

void LocalFanController::ensureHoldLoopRunning() {
  if (holdTask_) return;
  holdTask_.emplace();
  runtime::start(serial_.executor(), "the hold loop",
                 startedHoldLoop(shared_from_this(), holdTask_->token()));
}

/// Holds the controller weakly until it first runs.
Async<void> LocalFanController::startedHoldLoop(std::weak_ptr<LocalFanController> controller,
                                                runtime::StopToken stop) {
  if (const auto self = controller.lock()) co_await self->holdLoop(std::move(stop));
}

Async<void> LocalFanController::holdLoop(runtime::StopToken stop) {
  while (!stop.stopRequested()) {
    co_await clock_.sleep(holdPeriod, stop);
    const bool hasNothingToHold = claimedFans_.empty() && monitoredFans_.empty();
    if (stop.stopRequested() || hasNothingToHold) break;
    if (co_await holdRound(stop) == Round::endsTheLoop) break;
  }
  // Whoever stops the loop has cleared the field, which may name a newer loop by now.
  if (!stop.stopRequested()) holdTask_.reset();
}

/// One round after its sleep: the watchdogs, then one pass. The ceiling comes before the heartbeat, so
/// that a hot machine reports heat, and both come before any write of the round.
Async<LocalFanController::Round> LocalFanController::holdRound(runtime::StopToken stop) {
  auto snapshot = co_await sensors_.snapshot();
  const Generation command = releaseRetryGeneration_;
  if (stop.stopRequested()) co_return Round::endsTheLoop; // The fans were given back, and that was reported.
  if (snapshot.temps.empty()) {
    if (++consecutiveMissingTemperatureSnapshots_ >= missingTemperatureLimit) {
      co_return co_await releaseSequence("temperature data unavailable — released to Auto");
    }
    publishState(true, fmt::format("temperature data unavailable ({}/{})",
                                   consecutiveMissingTemperatureSnapshots_, missingTemperatureLimit));
    co_return Round::goesOn;
  }
  consecutiveMissingTemperatureSnapshots_ = 0;
  if (auto message = watchdogMessage(snapshot)) co_return co_await releaseSequence(std::move(*message));
  const auto reclaimed = co_await assertPlanOnce(activePlan_, std::move(snapshot), clock_.now());
  if (stop.stopRequested()) co_return Round::endsTheLoop;
  co_return command == releaseRetryGeneration_ ? reportPass(reclaimed) : Round::goesOn;
}

/// Why every fan has to be given back now; none if all is well. The snapshot has temperatures.
LocalFanController::ErrorText
LocalFanController::watchdogMessage(const core::SensorSnapshot& snapshot) const {
  const double hottest = snapshot.hottest()->celsius;
  if (hottest >= thermalCeilingCelsius) {
    return fmt::format("thermal ceiling {:.0f}°C exceeded — released to Auto", std::trunc(hottest));
  }
  const bool isArmed = lastHeartbeat_ != runtime::distantPast;
  if (isArmed && clock_.now() - lastHeartbeat_ > std::chrono::seconds(heartbeatLimitSeconds)) {
    return fmt::format("no heartbeat for >{}s — released to Auto", heartbeatLimitSeconds);
  }
  return std::nullopt;
}

Async<LocalFanController::Round> LocalFanController::releaseSequence(std::string message) {
  activePlan_ = core::FanControlPlan::allAutomatic;
  evaluator_.reset();
  const Generation command = releaseRetryGeneration_;
  auto error = co_await releaseAllToAuto(directCommand);
  if (command != releaseRetryGeneration_) co_return Round::endsTheLoop; // A newer plan reports for itself.
  if (error) {
    publishState(!claimedFans_.empty(), std::move(error)); // Worse than the watchdog's own message.
  } else {
    publishState(false, std::move(message));
  }
  co_return Round::endsTheLoop;
}

LocalFanController::Round LocalFanController::reportPass(const std::vector<FanID>& reclaimed) {
  if (claimedFans_.empty()) {
    publishState(false, std::nullopt);
    return monitoredFans_.empty() ? Round::endsTheLoop : Round::goesOn;
  }
  if (reclaimed.empty()) {
    publishState(true, std::nullopt);
    return Round::goesOn;
  }
  // The fans stay claimed and the next pass reasserts them; not holding says that the hold did not stick.
  publishState(false, fmt::format("reclaimed: fan(s) [{}] reverted to mode 3", fmt::join(reclaimed, ", ")));
  return Round::goesOn;
}

} // namespace ventolith::helper
