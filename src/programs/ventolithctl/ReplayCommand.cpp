#include "programs/ventolithctl/ReplayCommand.h"

#include "programs/ventolithctl/PlanFile.h"
#include "programs/ventolithctl/Replay.h"
#include "programs/ventolithctl/ReplayReport.h"
#include "programs/ventolithctl/Trace.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace ventolith::ctl {

namespace {

constexpr std::size_t writtenAtOnce = 1 << 16; // Bytes that are gathered before they are written.

struct ReplayOptions {
  std::string plan;
  std::string trace;
  bool asJSON = false;
  std::size_t every = 40; // A minute of a recording.
};

void writeAndClear(fmt::memory_buffer& text, Output& out) {
  out.write({text.data(), text.size()});
  text.clear();
}

void replayAsJSON(Replay replay, TraceReader& trace, Output& out) {
  fmt::memory_buffer text;
  try {
    while (const TraceTick* tick = trace.next()) {
      appendJSONLine(replay.step(*tick), text);
      if (text.size() >= writtenAtOnce) writeAndClear(text, out);
    }
  } catch (const InputError&) {
    writeAndClear(text, out); // What came before the bad line stands.
    throw;
  }
  writeAndClear(text, out);
}

void replayAsText(Replay replay, TraceReader& trace, std::size_t every, Output& out) {
  ReplayReport report(out, every);
  while (const TraceTick* tick = trace.next())
    report.add(*tick, replay.step(*tick));
  report.finish();
}

runtime::Async<ExitStatus> replay(ReplayOptions options, Context& context) {
  Replay replay(readPlanFile(options.plan));
  InputFile file(options.trace, context);
  TraceReader trace(file.stream(), options.trace);
  if (options.asJSON)
    replayAsJSON(std::move(replay), trace, context.out);
  else
    replayAsText(std::move(replay), trace, options.every, context.out);
  co_return ExitStatus::done;
}

} // namespace

void addReplay(CLI::App& app, Context& context) {
  auto* command =
      app.add_subcommand("replay", "Show what a plan would do on a recorded run, touching nothing");
  const auto options = std::make_shared<ReplayOptions>();
  command->add_option("--plan", options->plan, "The plan, a JSON file")->required();
  command->add_option("--trace", options->trace, "The run, as `record` writes it; - is standard input")
      ->required();
  command->add_flag("--json", options->asJSON, "One JSON object a tick: decisions and actions");
  command->add_option("--every", options->every, "A row at least every N ticks, 0 for changes alone")
      ->capture_default_str();
  command->footer(
      "A line of the trace may carry \"plan\":{...}, the plan from there on, and \"reset\":true, which makes "
      "the evaluator forget all before it.\n"
      "Exit status: 0 done, 2 if the plan or a line of the trace is not valid: nothing is shown from that "
      "line on.");
  command->callback(
      [&context, options] { context.command = [&context, options] { return replay(*options, context); }; });
}

} // namespace ventolith::ctl
