#include "programs/ventolithctl/RemoteHold.h"

#include "programs/ventolithctl/ControlWords.h"
#include "programs/ventolithctl/RemoteCommand.h"
#include "programs/ventolithctl/StateReport.h"
#include "programs/ventolithctl/TextLayout.h"
#include "programs/ventolithctl/Warn.h"

#include <fmt/format.h>

#include <exception>
#include <memory>
#include <optional>
#include <utility>

namespace ventolith::ctl {

using core::ControlResult;
using core::ControlState;
using helper::XPCFanController;
using runtime::Async;

namespace {

constexpr runtime::Duration absenceRetryPeriod = std::chrono::seconds(1);

// As hold does: a fan that refuses is tried again a few times before the command ends without it.
constexpr int releaseAttempts = 5;
constexpr runtime::Duration releaseAttemptInterval = std::chrono::seconds(2);

/// Whether the helper holds nothing. Fans that slipped away and are taken again are still in its state.
bool isIdle(const ControlState& state) {
  return !state.isHolding && state.perFanMode.empty() && !state.stoppedFans;
}

/// What the hold's parts tell each other. Parts that are still waiting when the hold is over keep it.
struct Events {
  std::optional<ControlResult> result; // Of the application that is over, until it is looked at.
  bool isApplying = false;
  int interruptions = 0;
  int interruptionsBeforeResult = 0; // They were on the way to the helper that gave it.
  runtime::StopSource wake;          // Requested by whoever has news for the hold.
  runtime::StopSource ended;         // Requested when the hold is over.
};

Async<void> sendHeartbeats(std::weak_ptr<XPCFanController> controller, runtime::Clock& clock,
                           runtime::StopToken stop) {
  while (!stop.stopRequested()) {
    if (const auto present = controller.lock()) co_await present->heartbeat();
    co_await clock.sleep(heartbeatPeriod, stop);
  }
}

Async<void> applyAfter(runtime::Duration pause, std::weak_ptr<XPCFanController> controller,
                       core::FanControlPlan plan, runtime::Clock& clock, std::shared_ptr<Events> events) {
  co_await clock.sleep(pause, events->ended.token());
  auto present = controller.lock();
  if (events->ended.stopRequested() || !present) co_return;
  auto application = present->applyPlan(std::move(plan));
  present = nullptr; // Not kept alive by a helper that never answers.
  events->result = co_await std::move(application);
  events->interruptionsBeforeResult = events->interruptions;
  events->isApplying = false;
  events->wake.requestStop();
}

class RemoteHold {
public:
  RemoteHold(runtime::Executor executor, Context& context, HelperLine& line, std::string build,
             core::FanControlPlan plan)
      : executor_(std::move(executor)),
        context_(context),
        line_(line),
        build_(std::move(build)),
        plan_(std::move(plan)),
        report_(StateReport::Form::words, context.out),
        stopObservation_(context.stop.onStop([events = events_] { events->wake.requestStop(); })) {
    line_.onInterruption([events = events_] {
      ++events->interruptions;
      events->wake.requestStop();
    });
  }
  RemoteHold(const RemoteHold&) = delete;
  RemoteHold& operator=(const RemoteHold&) = delete;
  ~RemoteHold() { events_->ended.requestStop(); }

  /// Until the user ends it, the helper lets go of the fans, or the plan cannot be held.
  Async<ExitStatus> hold() {
    apply(runtime::Duration::zero());
    runtime::start(executor_, "the heartbeats",
                   sendHeartbeats(line_.weakController(), context_.clock, events_->ended.token()));
    while (!context_.stop.stopRequested()) {
      const auto state = co_await line_.controller().stateStream().next(events_->wake.token());
      if (state) report_.show(*state);
      if (events_->wake.stopRequested()) events_->wake = runtime::StopSource();
      if (const auto end = co_await endBy(state)) co_return *end;
    }
    co_return ExitStatus::done;
  }

  /// Gives the fans back; none if the helper does not answer.
  Async<std::optional<ControlResult>> release() {
    events_->ended.requestStop();
    for (int attempt = 1;; ++attempt) {
      const auto result =
          co_await within(answerLimit, context_.clock, runtime::StopToken(), line_.controller().automatic());
      const bool isWorthAnother = result && *result != ControlResult::applied &&
                                  *result != ControlResult::noHelper &&
                                  *result != ControlResult::notPrivileged;
      if (!isWorthAnother || attempt == releaseAttempts) co_return result;
      warn(context_, reasonText(*result) + "; trying again");
      co_await context_.clock.sleep(releaseAttemptInterval, runtime::StopToken());
    }
  }

  /// Tells how the release went, and what the whole ends with.
  ExitStatus finish(ExitStatus status, const std::optional<ControlResult>& released) {
    while (const auto state = line_.controller().stateStream().tryNext())
      report_.show(*state);
    const bool isEveryFanBack = released == ControlResult::applied;
    if (isEveryFanBack) {
      report_.say("every fan is back with the firmware");
    } else {
      warn(context_, "not every fan may be back: " +
                         (released ? reasonText(*released) : std::string("the helper does not answer")));
    }
    report_.finish();
    if (isEveryFanBack || status != ExitStatus::done) return status;
    return released ? statusOf(*released) : ExitStatus::noHelper;
  }

private:
  void apply(runtime::Duration pause) {
    events_->isApplying = true;
    runtime::start(executor_, "the plan's application",
                   applyAfter(pause, line_.weakController(), plan_, context_.clock, events_));
  }

  /// The status to end with, by what has happened; none to go on.
  Async<std::optional<ExitStatus>> endBy(std::optional<ControlState> state) {
    if (context_.stop.stopRequested() || events_->isApplying) co_return std::nullopt;
    if (const auto result = std::exchange(events_->result, std::nullopt))
      co_return co_await endByResult(*result);
    if (events_->interruptions != interruptionsSeen_) {
      interruptionsSeen_ = events_->interruptions;
      isAgain_ = true;
      apply(runtime::Duration::zero());
      co_return std::nullopt;
    }
    if (state && isIdle(*state) && state->lastError) co_return co_await endByIdleState(ExitStatus::failed);
    co_return std::nullopt;
  }

  Async<std::optional<ExitStatus>> endByResult(ControlResult result) {
    if (result == ControlResult::noHelper) co_return endByAbsence();
    interruptionsSeen_ = events_->interruptionsBeforeResult;
    awaySince_ = std::nullopt;
    if (auto build = std::exchange(build_, std::nullopt))
      co_await warnOfOtherBuild(line_, std::move(*build), context_);
    const bool isAgain = std::exchange(isAgain_, false);
    if (result == ControlResult::applied) {
      if (isAgain) report_.say("the helper was restarted, and has the plan again");
      co_return std::nullopt;
    }
    warn(context_, (co_await commandError(line_, result, context_)).what());
    if (result == ControlResult::notPrivileged) co_return statusOf(result);
    if (result == ControlResult::acquiring) co_return std::nullopt;
    co_return co_await endByIdleState(statusOf(result)); // Fans that were taken over are held all the same.
  }

  /// The helper answered once, so it comes back, as a rule.
  std::optional<ExitStatus> endByAbsence() {
    const runtime::Instant now = context_.clock.now();
    if (!awaySince_) {
      awaySince_ = now;
      isAgain_ = true;
      warn(context_, "the helper went away; waiting for it");
    }
    if (now - *awaySince_ >= absenceLimit) {
      warn(context_, reasonText(ControlResult::noHelper));
      return ExitStatus::noHelper;
    }
    apply(absenceRetryPeriod);
    return std::nullopt;
  }

  /// A state from the stream may be older than the plan, so the helper is asked once more.
  Async<std::optional<ExitStatus>> endByIdleState(ExitStatus status) {
    const auto state =
        co_await within(answerLimit, context_.clock, context_.stop, line_.controller().readRemoteState());
    if (!state || !*state || !isIdle(**state) || hasNews()) co_return std::nullopt;
    if (status == ExitStatus::failed) // Else the command has told why.
      warn(context_, "the helper let go of the fans: " + printable((*state)->lastError.value_or("")));
    co_return status;
  }

  [[nodiscard]] bool hasNews() const { return events_->interruptions != interruptionsSeen_; }

  runtime::Executor executor_;
  Context& context_;
  HelperLine& line_;
  std::optional<std::string> build_; // As the helper told at first, until it was looked at again.
  core::FanControlPlan plan_;
  StateReport report_;
  std::shared_ptr<Events> events_ = std::make_shared<Events>();
  runtime::StopObservation stopObservation_;
  int interruptionsSeen_ = 0;
  bool isAgain_ = false; // The plan is on its way to a helper that may not know it.
  std::optional<runtime::Instant> awaySince_;
};

} // namespace

Async<ExitStatus> holdRemotely(core::FanControlPlan plan, Context& context) {
  const runtime::Executor executor = co_await boost::asio::this_coro::executor;
  HelperLine line(executor, context, HelperLine::OtherBuild::isReplaced);
  std::string build = co_await line.requireBuild();
  RemoteHold remote(executor, context, line, std::move(build), std::move(plan));

  // Whatever happens from here on, a reader that went away included, the fans go back.
  auto status = ExitStatus::failed;
  std::exception_ptr failure;
  try {
    status = co_await remote.hold();
  } catch (...) {
    failure = std::current_exception();
  }
  const bool hasNothingToRelease = status == ExitStatus::notPrivileged || status == ExitStatus::noHelper;
  if (hasNothingToRelease) co_return status;
  const auto released = co_await remote.release();
  if (failure) std::rethrow_exception(failure);
  co_return remote.finish(status, released);
}

} // namespace ventolith::ctl
