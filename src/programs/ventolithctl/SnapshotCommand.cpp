#include "programs/ventolithctl/SnapshotCommand.h"

#include "programs/ventolithctl/MachineReader.h"
#include "programs/ventolithctl/ReadingTable.h"
#include "programs/ventolithctl/TextLayout.h"
#include "programs/ventolithctl/Trace.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace ventolith::ctl {

namespace {

struct SnapshotOptions {
  bool asJSON = false;
};

std::string asJSON(const std::string& machine, const core::SensorSnapshot& snapshot) {
  core::JSON json = core::JSON::object();
  json["machine"] = machine;
  json["fans"] = fansJSON(snapshot);
  json["temps"] = tempsJSON(snapshot);
  return core::writeJSON(json) + "\n";
}

std::string asText(const std::string& machine, const core::SensorSnapshot& snapshot, const Output& out) {
  std::string text = printable(machine) + "\n\n";
  const TableStyle style{.columns = out.size().columns, .colors = out.colors(), .showsSensorIDs = true};
  for (const std::string& line : readingTable(snapshot, style))
    text += line + "\n";
  return text + "\n" + stateLine(snapshot) + "\n";
}

runtime::Async<ExitStatus> snapshot(SnapshotOptions options, Context& context) {
  const auto machine = co_await MachineReader::open(context);
  const core::SensorSnapshot reading = co_await machine->snapshot();
  context.out.write(options.asJSON ? asJSON(machine->machineName(), reading)
                                   : asText(machine->machineName(), reading, context.out));
  co_return ExitStatus::done;
}

} // namespace

void addSnapshot(CLI::App& app, Context& context) {
  auto* command = app.add_subcommand("snapshot", "Show the temperatures and fans of this moment");
  const auto options = std::make_shared<SnapshotOptions>();
  command->add_flag("--json", options->asJSON, "One JSON object: machine, fans, temps");
  command->footer(
      "The sensor ids that it shows are the ones by which curves and rules of a plan name a sensor.");
  command->callback(
      [&context, options] { context.command = [&context, options] { return snapshot(*options, context); }; });
}

} // namespace ventolith::ctl
