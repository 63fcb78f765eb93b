// `ventolithctl`: the command line of Ventolith, which needs no window.
#include "platform/system/SystemClock.h"
#include "platform/system/service/SystemServices.h"
#include "programs/common/MachineSelection.h"
#include "programs/common/Signals.h"
#include "programs/ventolithctl/CommandLine.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

using namespace ventolith;

namespace {

/// None also where a variable is set to nothing.
std::optional<std::string> variable(const char* name) {
  auto value = programs::processEnvironment(name);
  return value && value->empty() ? std::nullopt : value;
}

/// Opened at the first use: most commands need no message bus, nor that there is one.
class LazyServices {
public:
  LazyServices(const runtime::Executor& executor, runtime::Clock& clock)
      : executor_(executor), clock_(clock) {}

  [[nodiscard]] platform::SystemServices& get() {
    if (!services_) {
      services_ = std::make_unique<platform::SystemServices>(
          executor_, clock_,
          platform::ServiceOptions{.busAddress = variable("VENTOLITH_BUS"),
                                   .helperProgram = variable("VENTOLITH_HELPER")});
    }
    return *services_;
  }

private:
  runtime::Executor executor_;
  runtime::Clock& clock_;
  std::unique_ptr<platform::SystemServices> services_;
};

} // namespace

int main(int argumentCount, char** arguments) {
  std::signal(SIGPIPE, SIG_IGN); // A reader that went away is a write that fails, and no sudden end.
  boost::asio::io_context executor(1);
  platform::SystemClock clock(executor.get_executor());
  runtime::StopSource stop;
  ctl::StreamOutput out(stdout, "standard output", programs::processEnvironment);
  ctl::StreamOutput err(stderr, "standard error", programs::processEnvironment);
  LazyServices services(executor.get_executor(), clock);
  ctl::Context context{
      .in = std::cin,
      .out = out,
      .err = err,
      .clock = clock,
      .stop = stop.token(),
      .selectMachine = [&clock] { return programs::selectMachine(programs::processEnvironment, clock); },
      .helperChannels = [&services] { return services.get().helperChannels(); },
      .daemonService = [&services] { return services.get().daemonService(); },
      .helperIsChild = variable("VENTOLITH_HELPER").has_value()};

  // The first signal asks, so that the command leaves the terminal and the fans as it found them. A second
  // one ends it, unless there are fans to give back: then none does, and none stops it half-way.
  bool mustFinish = false;
  boost::asio::signal_set signals(executor, SIGINT, SIGTERM);
  context.insistOnFinishing = [&] {
    mustFinish = true;
    signals.add(SIGQUIT);
    for (const int stopping : {SIGTSTP, SIGTTIN, SIGTTOU})
      std::signal(stopping, SIG_IGN);
  };
  if (!programs::isIgnored(SIGHUP)) signals.add(SIGHUP);
  signals.async_wait([&](const boost::system::error_code& error, int) {
    if (error) return;
    stop.requestStop();
    if (!mustFinish) signals.clear();
  });

  auto status = ctl::ExitStatus::failed;
  const auto run = [&]() -> runtime::Async<void> {
    status = co_await ctl::runCommandLine({arguments + 1, arguments + argumentCount}, context);
    executor.stop(); // Nothing is left to wait for, not even a fan that refuses to go back.
  };
  runtime::start(executor.get_executor(), "ventolithctl", run());
  executor.run();
  std::exit(static_cast<int>(status)); // Takes nothing down in which work that was given up may still wait.
}
