#include "programs/ventolithctl/WatchCommand.h"

#include "programs/ventolithctl/DurationRange.h"
#include "programs/ventolithctl/LiveTable.h"
#include "programs/ventolithctl/MachineReader.h"
#include "programs/ventolithctl/Pace.h"
#include "programs/ventolithctl/ReadingTable.h"
#include "programs/ventolithctl/TextLayout.h"

#include <CLI/CLI.hpp>

#include <cmath>
#include <memory>
#include <optional>

namespace ventolith::ctl {

namespace {

constexpr runtime::Duration period = std::chrono::seconds(2);

struct WatchOptions {
  std::optional<double> seconds;
};

std::vector<std::string> frame(const std::string& machine, const core::SensorSnapshot& snapshot,
                               const Output& out) {
  const int columns = out.size().columns;
  const auto fitted = [columns](const std::string& text) {
    return withoutTrailingSpaces(leftIn(columns, text));
  };
  std::vector<std::string> lines = {fitted(printable(machine)), ""};
  const TableStyle style{.columns = columns, .colors = out.colors()};
  for (std::string& line : readingTable(snapshot, style))
    lines.push_back(std::move(line));
  lines.emplace_back();
  const std::string state = stateLine(snapshot);
  const std::string withHint = state + "; Ctrl-C ends";
  lines.push_back(columnsOf(withHint) <= columns ? withHint : fitted(state));
  return lines;
}

runtime::Async<ExitStatus> watch(WatchOptions options, Context& context) {
  const auto machine = co_await MachineReader::open(context);
  LiveTable table(context.out);
  Pace pace(context.clock, context.stop, period, options.seconds);
  while (!pace.isOver()) {
    const double seconds = std::round(pace.elapsedSeconds());
    const core::SensorSnapshot snapshot = co_await machine->snapshot();
    if (context.out.isTerminal())
      table.draw(frame(machine->machineName(), snapshot, context.out));
    else
      context.out.write(logLine(seconds, snapshot) + "\n");
    context.out.flush();
    co_await pace.wait();
  }
  co_return ExitStatus::done;
}

} // namespace

void addWatch(CLI::App& app, Context& context) {
  auto* command =
      app.add_subcommand("watch", "Show the temperatures and fans as they change, every 2 seconds");
  const auto options = std::make_shared<WatchOptions>();
  command->add_option("--seconds", options->seconds, "End after so long; else at Ctrl-C")
      ->check(durationRange());
  command->footer("Where the output is no terminal, each reading is one line.");
  command->callback(
      [&context, options] { context.command = [&context, options] { return watch(*options, context); }; });
}

} // namespace ventolith::ctl
