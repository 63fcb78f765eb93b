#include "helper/daemon/FansThroughSleep.h"

#include "core/Visitor.h"

#include <fmt/format.h>

#include <utility>

namespace ventolith::helper {

using core::ControlResult;
using runtime::Async;

namespace {

constexpr runtime::Duration lookInterval = std::chrono::milliseconds(250);

} // namespace

FansThroughSleep::FansThroughSleep(const runtime::Executor& executor, runtime::Clock& clock,
                                   WatchedEngine& engine, HelperLog& log)
    : executor_(executor), clock_(clock), engine_(engine), log_(log) {}

Async<ControlResult> FansThroughSleep::setManual(core::FanID fan, std::int64_t rpm) {
  return changeOrRemember(RememberedRPM{fan, rpm});
}

Async<ControlResult> FansThroughSleep::setPercent(core::FanID fan, double percent) {
  return changeOrRemember(RememberedPercent{fan, percent});
}

Async<ControlResult> FansThroughSleep::fullBlast() {
  return changeOrRemember(RememberedFullBlast{});
}

Async<ControlResult> FansThroughSleep::applyPlan(core::FanControlPlan plan) {
  return changeOrRemember(RememberedPlan{std::move(plan)});
}

Async<ControlResult> FansThroughSleep::automatic() {
  startAnew();
  co_return co_await engine_.automatic();
}

Async<void> FansThroughSleep::restoreAuto() {
  startAnew();
  co_await engine_.restoreAuto();
}

Async<void> FansThroughSleep::heartbeat() {
  if (phase_ == Phase::awaitsItsClient) resume();
  co_await engine_.heartbeat();
}

Async<std::optional<std::string>> FansThroughSleep::giveEveryFanBack() {
  startAnew();
  co_return co_await engine_.giveEveryFanBack();
}

/// A command that leaves nothing of what was there before.
void FansThroughSleep::startAnew() {
  ++startsAnew_;
  remembered_.forget();
  if (phase_ != Phase::asleep) enter(Phase::awake);
}

Async<ControlResult> FansThroughSleep::changeOrRemember(RememberedCommand command) {
  if (std::holds_alternative<RememberedPlan>(command)) startAnew();
  if (phase_ == Phase::awake) {
    const ControlResult result = co_await carryOut(std::move(command));
    const bool isTakenBackForSleep = result == ControlResult::reclaimed && phase_ == Phase::asleep;
    co_return isTakenBackForSleep && !remembered_.isEmpty() ? ControlResult::acquiring : result;
  }
  if (!remembered_.add(std::move(command)))
    co_return ControlResult::failed("too many commands wait for the fans");
  if (phase_ == Phase::awaitsItsClient) resume();
  co_return ControlResult::acquiring;
}

Async<ControlResult> FansThroughSleep::carryOut(RememberedCommand command) {
  return std::visit(
      core::Visitor{[this](RememberedPlan& its) { return engine_.applyPlan(std::move(its.plan)); },
                    [this](RememberedRPM& its) { return engine_.setManual(its.fan, its.rpm); },
                    [this](RememberedPercent& its) { return engine_.setPercent(its.fan, its.percent); },
                    [this](RememberedFullBlast&) { return engine_.fullBlast(); }},
      command);
}

void FansThroughSleep::enter(Phase phase) {
  phase_ = phase;
  if (waitForClient_) waitForClient_->requestStop();
  waitForClient_.reset();
}

Async<void> FansThroughSleep::willSleep() {
  enter(Phase::asleep);
  const auto isAsleep = [this, resumption = resumptions_] {
    return phase_ == Phase::asleep && resumption == resumptions_;
  };
  const std::int64_t before = startsAnew_;
  if (auto plan = co_await engine_.planInForce(); plan && before == startsAnew_ && isAsleep())
    remembered_.putFirst(std::move(*plan));

  const runtime::Instant start = clock_.now();
  while (isAsleep() && clock_.now() - start <= mostDelayOfSleep) {
    // Once: the engine goes on trying where a fan refuses. A command that was under way may have taken fans
    // since.
    if (co_await engine_.planInForce()) co_await engine_.automatic();
    if (engine_.isAtRest()) co_return log_.note("the machine goes to sleep, and the firmware has every fan");
    co_await clock_.sleep(lookInterval, runtime::StopToken());
  }
  if (isAsleep())
    log_.warn("the machine goes to sleep, and not every fan is back: " +
              engine_.currentState().lastError.value_or("no reason is known"));
}

void FansThroughSleep::didWake() {
  if (phase_ != Phase::asleep) return;
  if (remembered_.isEmpty()) return enter(Phase::awake);
  enter(Phase::awaitsItsClient);
  waitForClient_.emplace();
  runtime::start(executor_, "the wait for a client after sleep", awaitClient(waitForClient_->token()));
}

Async<void> FansThroughSleep::awaitClient(runtime::StopToken stop) {
  co_await clock_.sleep(std::chrono::seconds(LocalFanController::heartbeatLimitSeconds), stop);
  if (stop.stopRequested()) co_return;
  startAnew();
  log_.note("the heartbeat is gone since the machine slept: its plan is forgotten");
}

void FansThroughSleep::resume() {
  enter(Phase::resumes);
  log_.note("the machine has slept, and the plan from before is put in force again");
  runtime::start(executor_, "the plan after sleep", carryOutRemembered(++resumptions_));
}

Async<void> FansThroughSleep::carryOutRemembered(std::int64_t resumption) {
  const auto goesOn = [this, resumption] { return phase_ == Phase::resumes && resumption == resumptions_; };
  while (goesOn()) {
    auto command = remembered_.takeFirst();
    if (!command) co_return enter(Phase::awake);
    const ControlResult result = co_await carryOut(std::move(*command));
    const bool isCarriedOut = result == ControlResult::applied || result == ControlResult::acquiring;
    if (!isCarriedOut && goesOn()) log_.warn("after sleep: " + result.text());
  }
}

} // namespace ventolith::helper
