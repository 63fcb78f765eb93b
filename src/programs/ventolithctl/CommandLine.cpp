#include "programs/ventolithctl/CommandLine.h"

#include "helper/link/HelperBuildVersion.h"
#include "programs/ventolithctl/ApplyCommand.h"
#include "programs/ventolithctl/CheckCommand.h"
#include "programs/ventolithctl/FanCommands.h"
#include "programs/ventolithctl/HelperCommand.h"
#include "programs/ventolithctl/HoldCommand.h"
#include "programs/ventolithctl/RecordCommand.h"
#include "programs/ventolithctl/ReplayCommand.h"
#include "programs/ventolithctl/SnapshotCommand.h"
#include "programs/ventolithctl/StatusCommand.h"
#include "programs/ventolithctl/WatchCommand.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <sstream>

namespace ventolith::ctl {

namespace {

constexpr const char* description =
    "Shows the temperatures and fans of this computer, tries fan plans without touching it, and holds them: "
    "by\n"
    "itself (hold), or by way of the helper (status, apply, set, full-blast, auto, helper).";

constexpr const char* footer = R"(Exit status:
  0  done
  1  check: the plan is valid, and there are warnings
  2  the command line, a plan or a trace is wrong
  3  the machine cannot be reached, something cannot be written, or the fans had to be let go

  Of the commands that go to the helper besides:
  11  accepted, and the fans are still being taken over
  12  a fan did not come under control in time
  13  the fans went back to the firmware before they were taken over
  14  the hardware refused
  15  not allowed
  16  no helper can be reached, or it does not answer
  17  the command failed
  130 Ctrl-C came before the answer

Environment:
  VENTOLITH_MACHINE  which machine: unset is this computer, simulated:NAME a simulated one,
                     socket:PATH a simulator that runs
  VENTOLITH_BUS      the address of another message bus than the system's, to reach a helper there
  VENTOLITH_HELPER   a helper program that helper install starts as a child, for development
  VENTOLITH_HWMON_ROOT  where this computer's devices are looked for (/sys/class/hwmon)
  VENTOLITH_STATE_DIR   where hold notes what it took, for the next start if it is killed
  NO_COLOR           set to anything: no colours)";

/// The commands' parsers; one that recognises its name sets `context.command`.
void addCommands(CLI::App& app, Context& context) {
  addSnapshot(app, context);
  addWatch(app, context);
  addRecord(app, context);
  addReplay(app, context);
  addCheck(app, context);
  addHold(app, context);
  addStatus(app, context);
  addApply(app, context);
  addFanCommands(app, context);
  addHelper(app, context);
}

/// Where not even this can be said, the status has to do.
void complain(Context& context, const std::string& text) {
  try {
    context.err.write(text);
    context.err.flush();
  } catch (const OutputError&) {
  }
}

/// The status to end with right away, for help and for what cannot be understood; none to go on.
std::optional<ExitStatus> parse(CLI::App& app, std::vector<std::string> arguments, Context& context) {
  try {
    std::reverse(arguments.begin(), arguments.end()); // The parser takes them from the back.
    app.parse(std::move(arguments));
    return std::nullopt;
  } catch (const CLI::ParseError& error) {
    std::ostringstream out;
    std::ostringstream err;
    const int code = app.exit(error, out, err);
    context.out.write(out.str());
    context.out.flush();
    if (code == 0) return ExitStatus::done;
    complain(context, "ventolithctl: " + err.str());
    return ExitStatus::invalid;
  }
}

ExitStatus report(Context& context, ExitStatus status, const std::exception& error) {
  complain(context, fmt::format("ventolithctl: {}\n", error.what()));
  return status;
}

runtime::Async<ExitStatus> runReporting(CLI::App& app, std::vector<std::string> arguments, Context& context) {
  try {
    if (const auto status = parse(app, std::move(arguments), context)) co_return *status;
    const ExitStatus status = co_await context.command();
    context.out.flush();
    co_return status;
  } catch (const InputError& error) {
    co_return report(context, ExitStatus::invalid, error);
  } catch (const CommandError& error) {
    co_return report(context, error.status(), error);
  } catch (const std::exception& error) {
    co_return report(context, ExitStatus::failed, error);
  }
}

} // namespace

runtime::Async<ExitStatus> runCommandLine(std::vector<std::string> arguments, Context& context) {
  CLI::App app(description, "ventolithctl");
  app.footer(footer);
  app.require_subcommand(1);
  app.set_version_flag("--version", std::string("ventolithctl ") + helper::HelperBuildVersion::identifier);
  addCommands(app, context);
  co_return co_await runReporting(app, std::move(arguments), context);
}

} // namespace ventolith::ctl
