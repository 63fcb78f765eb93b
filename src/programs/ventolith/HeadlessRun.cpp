#include "programs/ventolith/HeadlessRun.h"

#include "platform/system/SystemClock.h"
#include "programs/ventolith/Application.h"
#include "programs/ventolith/EngineThread.h"
#include "programs/ventolith/HeadlessCommands.h"
#include "programs/ventolith/HeadlessReport.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/streambuf.hpp>
#include <fmt/format.h>

#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <istream>
#include <memory>
#include <optional>
#include <string>

namespace ventolith::programs {

namespace {

namespace asio = boost::asio;

constexpr std::chrono::milliseconds lastWords{500}; // For the message that asks the fans back.
constexpr std::size_t longestLine = 4096;           // Bytes.

void writeLine(const std::string& line) {
  fmt::print(stdout, "{}\n", line);
  std::fflush(stdout);
}

class Headless {
public:
  Headless(const Environment& environment, EngineRuns engineRuns)
      : engine_(engineRuns == EngineRuns::onItsOwnThread ? std::make_unique<EngineThread>() : nullptr),
        application_(executors(), environment) {}

  void run() {
    if (engine_) engine_->start();
    writeLine("machine: " + application_.machineName());
    application_.lifecycle().join(application_.model());
    report_.emplace(context_.get_executor(), *application_.model(), writeLine);
    signals_.async_wait([this](const boost::system::error_code& error, int) {
      if (!error) context_.stop();
    });
    readCommands();
    context_.run();
    end();
  }

private:
  [[nodiscard]] Executors executors() {
    return {.main = context_.get_executor(),
            .mainClock = clock_,
            .engine = engine_ ? engine_->executor() : context_.get_executor(),
            .engineClock = engine_ ? engine_->clock() : clock_};
  }

  /// Of an input that cannot be waited for, as a file cannot, nothing is read.
  void readCommands() {
    asio::async_read_until(in_, buffer_, '\n', [this](const boost::system::error_code& error, std::size_t) {
      if (error) return;
      std::istream stream(&buffer_);
      std::string line;
      std::getline(stream, line);
      obey(line);
      readCommands();
    });
  }

  void obey(const std::string& line) {
    if (line == "quit") return context_.stop();
    if (line == "help") return writeLine(headlessCommandHelp);
    try {
      runHeadlessCommand({context_.get_executor(), *application_.model()}, line);
    } catch (const CommandLineError& error) {
      writeLine(fmt::format("error: {}", error.what()));
    }
  }

  void end() {
    report_.reset();
    signals_.cancel();
    in_.close();
    application_.terminate();
    context_.restart();
    context_.run_for(lastWords);
    if (engine_) engine_->end();
  }

  asio::io_context context_{1};
  platform::SystemClock clock_{context_.get_executor()};
  asio::signal_set signals_{context_, SIGINT, SIGTERM, SIGHUP};
  asio::posix::stream_descriptor in_{context_, ::dup(STDIN_FILENO)};
  asio::streambuf buffer_{longestLine};
  std::unique_ptr<EngineThread> engine_; // None when it shares this one.
  Application application_;
  std::optional<HeadlessReport> report_;
};

} // namespace

void runHeadless(const Environment& environment, EngineRuns engineRuns) {
  std::signal(SIGPIPE, SIG_IGN); // A reader that went away is a write that fails, and no sudden end.
  Headless application(environment, engineRuns);
  application.run();
  std::exit(EXIT_SUCCESS); // Takes nothing down in which work that was given up may still wait.
}

} // namespace ventolith::programs
