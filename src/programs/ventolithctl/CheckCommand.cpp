#include "programs/ventolithctl/CheckCommand.h"

#include "programs/ventolithctl/PlanFile.h"
#include "programs/ventolithctl/PlanWarnings.h"
#include "programs/ventolithctl/TextLayout.h"
#include "programs/ventolithctl/Trace.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include <memory>
#include <optional>

namespace ventolith::ctl {

namespace {

struct CheckOptions {
  std::string plan;
  std::optional<std::string> trace;
};

std::vector<PlanWarning> warningsOf(const core::FanControlPlan& plan, const CheckOptions& options,
                                    Context& context) {
  auto warnings = planWarnings(plan);
  if (!options.trace) return warnings;
  InputFile file(*options.trace, context);
  TraceReader trace(file.stream(), *options.trace);
  for (PlanWarning& warning : unknownSensors(plan, sensorIDs(trace)))
    warnings.push_back(std::move(warning));
  return warnings;
}

runtime::Async<ExitStatus> check(CheckOptions options, Context& context) {
  const core::FanControlPlan plan = readPlanFile(options.plan);
  const auto warnings = warningsOf(plan, options, context);
  for (const PlanWarning& warning : warnings) {
    context.out.write(fmt::format("{}: {}\n", warning.path, printable(warning.text)));
  }
  co_return warnings.empty() ? ExitStatus::done : ExitStatus::warnings;
}

} // namespace

void addCheck(CLI::App& app, Context& context) {
  auto* command =
      app.add_subcommand("check", "Say whether a plan is valid, and what in it is surely unwanted");
  const auto options = std::make_shared<CheckOptions>();
  command->add_option("PLAN", options->plan, "The plan, a JSON file")->required();
  command->add_option("--trace", options->trace,
                      "A trace of the machine: warn of sensors that it does not have; - is standard input");
  command->footer("Each warning is a line: the path in the plan, and what is odd there.\n"
                  "Exit status: 0 without warnings, 1 with warnings, 2 if the plan is not valid.");
  command->callback(
      [&context, options] { context.command = [&context, options] { return check(*options, context); }; });
}

} // namespace ventolith::ctl
