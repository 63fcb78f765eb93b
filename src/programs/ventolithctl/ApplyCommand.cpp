#include "programs/ventolithctl/ApplyCommand.h"

#include "programs/ventolithctl/PlanFile.h"
#include "programs/ventolithctl/RemoteCommand.h"
#include "programs/ventolithctl/RemoteHold.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace ventolith::ctl {

using core::FanControlling;
using runtime::Async;

namespace {

struct ApplyOptions {
  std::string plan;
  bool holds = false;
};

Async<ExitStatus> applyOnce(core::FanControlPlan plan, Context& context) {
  const bool holdsNothing = leavesEveryFanToTheFirmware(plan);
  co_return co_await runRemoteCommand(
      {.send = [plan](FanControlling& controller) { return controller.applyPlan(plan); },
       .done = holdsNothing ? "The plan leaves every fan to the firmware." : "The helper holds the plan.",
       .lasts = holdsNothing ? RemoteCommand::Lasts::byItself : RemoteCommand::Lasts::onlyWithHeartbeats},
      context);
}

Async<ExitStatus> apply(ApplyOptions options, Context& context) {
  core::FanControlPlan plan = readPlanFile(options.plan);
  if (!options.holds || leavesEveryFanToTheFirmware(plan))
    co_return co_await applyOnce(std::move(plan), context);
  context.insistOnFinishing();
  co_return co_await holdRemotely(std::move(plan), context);
}

} // namespace

void addApply(CLI::App& app, Context& context) {
  auto* command = app.add_subcommand("apply", "Have the helper hold the fans by a plan");
  const auto options = std::make_shared<ApplyOptions>();
  command->add_option("PLAN", options->plan, "The plan, a JSON file")->required();
  command->add_flag("--hold", options->holds,
                    "Stay and send heartbeats until Ctrl-C, then give the fans back");
  command->footer("Without heartbeats the helper gives the fans back after 15 s: the application sends them, "
                  "and --hold does.\n"
                  "--hold applies the plan again when the helper was restarted. It ends with 0 when Ctrl-C "
                  "ended it and every fan\n"
                  "is back, and with 3 when the helper had to let go of the fans.");
  command->callback(
      [&context, options] { context.command = [&context, options] { return apply(*options, context); }; });
}

} // namespace ventolith::ctl
