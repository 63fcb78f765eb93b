#include "programs/ventolith/HeadlessRun.h"

#include "app/platform-kit/TrimmedText.h"
#include "platform/system/SystemClock.h"
#include "programs/common/Signals.h"
#include "programs/ventolith/Application.h"
#include "programs/ventolith/EngineThread.h"
#include "programs/ventolith/HeadlessCommands.h"
#include "programs/ventolith/HeadlessReport.h"
#include "programs/ventolith/LastWords.h"
#include "programs/ventolith/MainLoop.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/signal_set.hpp>
#include <fmt/format.h>

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace ventolith::programs {

namespace {

namespace asio = boost::asio;

constexpr std::size_t longestLine = 4096; // Bytes.

/// A reader that has gone, or is in no hurry, loses lines; nothing else.
void writeLine(const std::string& line) {
  std::fputs((line + '\n').c_str(), stdout);
  std::fflush(stdout);
}

/// Standard input with a mode of its own: it is read without waiting, which the shell and whoever else has it
/// must not notice.
int ownStandardInput() {
  // Not every system shows its descriptors as files; a terminal has a name on all of them.
  for (const char* const name : {"/proc/self/fd/0", const_cast<const char*>(::ttyname(STDIN_FILENO))}) {
    const int own = name == nullptr ? -1 : ::open(name, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (own >= 0) return own;
  }
  return ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
}

class Headless {
public:
  Headless(const Environment& environment, EngineRuns engineRuns)
      : engine_(engineRuns == EngineRuns::onItsOwnThread ? std::make_unique<EngineThread>() : nullptr),
        application_(executors(), environment) {}

  /// True when nothing runs any more; else the engine's thread, which something holds up.
  [[nodiscard]] bool run() {
    if (engine_) engine_->start();
    writeLine("machine: " + application_.machineName());
    application_.lifecycle().join(application_.model());
    report_.emplace(context_.get_executor(), *application_.model(), writeLine);
    awaitSignals();
    readCommands();
    context_.run();
    return end();
  }

private:
  [[nodiscard]] Executors executors() {
    return {.main = context_.get_executor(),
            .mainClock = clock_,
            .engine = engine_ ? engine_->executor() : context_.get_executor(),
            .engineClock = engine_ ? engine_->clock() : clock_};
  }

  void awaitSignals() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
      if (!isIgnored(signal)) signals_.add(signal);
    }
    signals_.async_wait([this](const boost::system::error_code& error, int) {
      if (!error) context_.stop();
    });
  }

  void readCommands() {
    asio::async_read_until(in_, asio::dynamic_buffer(read_, longestLine), '\n',
                           [this](const boost::system::error_code& error, std::size_t length) {
                             if (error == asio::error::not_found) return skipLongLine();
                             if (error == asio::error::eof) return obey(std::exchange(read_, {}));
                             if (error) return;
                             const std::string line = read_.substr(0, length);
                             read_.erase(0, length);
                             obey(line);
                             readCommands();
                           });
  }

  void skipLongLine() {
    writeLine(fmt::format("error: a line has more than {} bytes", longestLine));
    read_.clear();
    readCommands();
  }

  void obey(const std::string& line) {
    const std::string command(app::trimmed(line));
    if (command == "quit") return context_.stop();
    if (command == "help") return writeLine(headlessCommandHelp);
    try {
      runHeadlessCommand({context_.get_executor(), *application_.model()}, command);
    } catch (const CommandLineError& error) {
      writeLine(fmt::format("error: {}", error.what()));
    }
  }

  /// A second signal ends the process at once.
  [[nodiscard]] bool end() {
    report_.reset();
    signals_.clear();
    in_.close();
    application_.terminate();
    context_.restart();
    context_.run_for(lastWords);
    return !engine_ || engine_->end(longestEngineEnd);
  }

  asio::io_context context_{1};
  platform::SystemClock clock_{context_.get_executor()};
  asio::signal_set signals_{context_};
  asio::posix::stream_descriptor in_{context_, ownStandardInput()};
  std::string read_;                     // Of the line that is being read, and beyond.
  std::unique_ptr<EngineThread> engine_; // None when it shares the model's.
  Application application_;
  std::optional<HeadlessReport> report_;
};

} // namespace

void runHeadless(const Environment& environment, EngineRuns engineRuns) {
  std::signal(SIGPIPE, SIG_IGN); // A reader that went away is a write that fails, and no sudden end.
  Headless application(environment, engineRuns);
  bool isEngineEnded = false;
  runBesideMainLoop([&] { isEngineEnded = application.run(); });
  endProcess(isEngineEnded); // Takes nothing down in which work that was given up may still wait.
}

} // namespace ventolith::programs
