#include "programs/ventolithctl/RecordCommand.h"

#include "programs/ventolithctl/DurationRange.h"
#include "programs/ventolithctl/MachineReader.h"
#include "programs/ventolithctl/Pace.h"
#include "programs/ventolithctl/Trace.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cmath>
#include <memory>
#include <optional>
#include <system_error>

namespace ventolith::ctl {

namespace {

/// The fan controller's own pace, so that a replay sees what the controller would have seen.
constexpr runtime::Duration period = std::chrono::milliseconds(1500);

struct RecordOptions {
  std::string file;
  std::optional<double> seconds;
};

/// A file that is written, or the context's output for "-".
class TraceFile {
public:
  TraceFile(const std::string& file, Context& context) {
    if (file == "-") {
      out_ = &context.out;
      return;
    }
    stream_.reset(std::fopen(file.c_str(), "w"));
    if (!stream_) throw OutputError(fmt::format("{}: {}", file, std::generic_category().message(errno)));
    file_ =
        std::make_unique<StreamOutput>(stream_.get(), file, [](const std::string&) { return std::nullopt; });
    out_ = file_.get();
  }

  /// The line reaches the file before this returns: a recording that is cut off is whole up to there.
  void write(const std::string& line) {
    out_->write(line);
    out_->flush();
  }

private:
  struct Close {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
  };

  std::unique_ptr<std::FILE, Close> stream_;
  std::unique_ptr<StreamOutput> file_;
  Output* out_ = nullptr;
};

double toMilliseconds(double seconds) {
  return std::round(seconds * 1000) / 1000;
}

runtime::Async<ExitStatus> record(RecordOptions options, Context& context) {
  const auto machine = co_await MachineReader::open(context);
  TraceFile file(options.file, context);
  Pace pace(context.clock, context.stop, period, options.seconds);
  while (!pace.isOver()) {
    const double seconds = toMilliseconds(pace.elapsedSeconds());
    file.write(traceLine(seconds, co_await machine->snapshot()));
    co_await pace.wait();
  }
  co_return ExitStatus::done;
}

} // namespace

void addRecord(CLI::App& app, Context& context) {
  auto* command = app.add_subcommand("record", "Record the temperatures and fans every 1.5 seconds");
  const auto options = std::make_shared<RecordOptions>();
  command->add_option("FILE", options->file, "The trace to write, a JSON object a line; - is standard output")
      ->required();
  command->add_option("--seconds", options->seconds, "End after so long; else at Ctrl-C")
      ->check(durationRange());
  command->callback(
      [&context, options] { context.command = [&context, options] { return record(*options, context); }; });
}

} // namespace ventolith::ctl
