#include "programs/ventolithctl/HoldCommand.h"

#include "hardware/FanKeys.h"
#include "helper/engine/LocalFanController.h"
#include "programs/ventolithctl/DurationRange.h"
#include "programs/ventolithctl/MachineReader.h"
#include "programs/ventolithctl/PlanFile.h"
#include "programs/ventolithctl/StateReport.h"
#include "programs/ventolithctl/Warn.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <memory>
#include <optional>
#include <utility>

namespace ventolith::ctl {

using core::ControlResult;
using runtime::Async;

namespace {

// How often, and how long between, the fans are given back by command before hold ends without all of
// them; the engine's own retries go on meanwhile.
constexpr int releaseAttempts = 5;
constexpr runtime::Duration releaseAttemptInterval = std::chrono::seconds(2);

struct HoldOptions {
  std::string plan;
  std::optional<double> seconds;
  bool asJSON = false;
};

/// Stops at the context's stop and when the time is over, whichever is first.
class HoldEnd {
public:
  HoldEnd(const HoldOptions& options, Context& context, const runtime::Executor& executor)
      : observation_(context.stop.onStop([this] { source_.requestStop(); })) {
    if (context.stop.stopRequested()) source_.requestStop();
    if (options.seconds) {
      runtime::start(executor, "the end of hold",
                     stopAfter(context.clock, runtime::fromSeconds(*options.seconds), source_));
    }
  }
  HoldEnd(const HoldEnd&) = delete;
  HoldEnd& operator=(const HoldEnd&) = delete;
  ~HoldEnd() { source_.requestStop(); } // So that nobody waits for the time any more.

  [[nodiscard]] runtime::StopToken token() const { return source_.token(); }

private:
  static Async<void> stopAfter(runtime::Clock& clock, runtime::Duration span, runtime::StopSource source) {
    co_await clock.sleep(span, source.token());
    source.requestStop();
  }

  runtime::StopSource source_;
  runtime::StopObservation observation_;
};

/// Gives every fan back, and tells whether they are.
Async<ControlResult> giveBack(helper::LocalFanController& controller, Context& context) {
  for (int attempt = 1;; ++attempt) {
    ControlResult result = co_await controller.automatic();
    if (result == ControlResult::applied || attempt == releaseAttempts) co_return result;
    warn(context, result.text() + "; trying again");
    co_await context.clock.sleep(releaseAttemptInterval, runtime::StopToken());
  }
}

Async<bool> hasFans(hardware::SMCConnection& smc) {
  const auto count = co_await smc.tryReadValue(hardware::fankeys::fanCount);
  co_return count.has_value() && hardware::fankeys::fanCountOf(count->numeric()).value_or(0) > 0;
}

using PendingResult = std::shared_ptr<std::optional<ControlResult>>;

/// Claiming takes up to 10 seconds a fan, for which a signal does not wait.
Async<void> applyInBackground(std::shared_ptr<helper::LocalFanController> controller,
                              core::FanControlPlan plan, PendingResult result) {
  *result = co_await controller->applyPlan(std::move(plan));
}

/// Holds until the end, or until the engine's watchdogs have given the fans back.
Async<ExitStatus> holdPlan(const core::FanControlPlan& plan, const HoldOptions& options, Context& context,
                           std::shared_ptr<helper::LocalFanController> controller, StateReport& report) {
  if (const auto error = co_await controller->restoreAllFansToAutomatic()) warn(context, *error);
  if (leavesEveryFanToTheFirmware(plan)) {
    report.say("the plan leaves every fan to the firmware: there is nothing to hold");
    co_return ExitStatus::done;
  }
  const runtime::Executor executor = co_await boost::asio::this_coro::executor;
  const HoldEnd end(options, context, executor);
  const auto result = std::make_shared<std::optional<ControlResult>>();
  runtime::start(executor, "the plan's application", applyInBackground(controller, plan, result));

  bool wasInForce = false;
  bool wasHolding = false;
  bool isReported = false;
  while (const auto state = co_await controller->stateStream().next(end.token())) {
    report.show(*state);
    // The engine publishes in every round, so this is the heartbeat's timer, and costs no wake-up.
    co_await controller->heartbeat();
    wasHolding = wasHolding || state->isHolding;
    if (wasInForce && !controller->isPlanInForce()) co_return ExitStatus::failed; // By a watchdog.
    wasInForce = controller->isPlanInForce();
    if (!*result || std::exchange(isReported, true) || **result == ControlResult::applied) continue;
    warn(context, (*result)->text());
    const bool holdsNothing = controller->currentState().perFanMode.empty();
    if (holdsNothing && std::holds_alternative<ControlResult::Failed>((*result)->value))
      co_return ExitStatus::failed;
  }
  const bool isRefused = *result && **result != ControlResult::applied;
  if (wasHolding || !isRefused) co_return ExitStatus::done; // Ended, perhaps in the middle of a claim.
  warn(context, "no fan was held: " + (*result)->text());
  co_return ExitStatus::failed;
}

/// The controller, which keeps its machine: a pass or a retry that is under way when the command ends is
/// still about both.
std::shared_ptr<helper::LocalFanController>
makeController(const runtime::Executor& executor, Context& context, std::shared_ptr<MachineReader> machine) {
  auto controller = std::make_unique<helper::LocalFanController>(executor, context.clock, machine->smc(),
                                                                 machine->reader(), machine->privileges());
  return {controller.release(), [machine = std::move(machine)](helper::LocalFanController* owned) {
            std::default_delete<helper::LocalFanController>()(owned);
          }};
}

Async<ExitStatus> hold(HoldOptions options, Context& context) {
  const core::FanControlPlan plan = readPlanFile(options.plan);
  const std::shared_ptr<MachineReader> machine = co_await MachineReader::open(context);
  if (!machine->privileges().mayControlFans()) {
    throw MachineError(
        fmt::format("{}: not privileged: holding its fans takes root, or write access to their files",
                    machine->machineName()));
  }
  if (!co_await hasFans(machine->smc()))
    throw MachineError(fmt::format("{}: no fans are found", machine->machineName()));
  const auto controller = makeController(co_await boost::asio::this_coro::executor, context, machine);
  StateReport report(options.asJSON ? StateReport::Form::json : StateReport::Form::words, context.out);

  // Whatever happens from here on, a full disk behind the output included, the fans go back.
  auto status = ExitStatus::failed;
  std::exception_ptr failure;
  try {
    status = co_await holdPlan(plan, options, context, controller, report);
  } catch (...) {
    failure = std::current_exception();
  }
  const ControlResult result = co_await giveBack(*controller, context);
  const bool isEveryFanBack = result == ControlResult::applied;
  if (!isEveryFanBack) {
    warn(context, fmt::format("{}: not every fan is back: {}", machine->machineName(), result.text()));
  }
  if (failure) std::rethrow_exception(failure);
  while (const auto state = controller->stateStream().tryNext())
    report.show(*state);
  if (isEveryFanBack) report.say("every fan is back with the firmware");
  report.finish();
  co_return isEveryFanBack ? status : ExitStatus::failed;
}

} // namespace

void addHold(CLI::App& app, Context& context) {
  auto* command = app.add_subcommand("hold", "Hold the fans by a plan until Ctrl-C, then give them back");
  const auto options = std::make_shared<HoldOptions>();
  command->add_option("--plan", options->plan, "The plan, a JSON file")->required();
  command->add_option("--seconds", options->seconds, "End after so long; else at SIGINT, SIGTERM or SIGHUP")
      ->check(durationRange());
  command->add_flag("--json", options->asJSON, "Each state of the controller as a JSON line");
  command->footer(
      "Ends with 0 only when every fan is back with the firmware. Ends with 3, the fans given back, when\n"
      "no fan could be held, and when a watchdog had to release them: at 95 °C, and when two readings in\n"
      "a row give no temperature.");
  command->callback([&context, options] {
    context.command = [&context, options] {
      context.insistOnFinishing();
      return hold(*options, context);
    };
  });
}

} // namespace ventolith::ctl
