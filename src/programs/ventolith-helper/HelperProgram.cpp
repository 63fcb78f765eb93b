#include "programs/ventolith-helper/HelperProgram.h"

#include "helper/daemon/HelperDaemon.h"
#include "platform/system/SystemClock.h"
#include "platform/system/service/SystemServices.h"
#include "programs/common/MachineSelection.h"
#include "programs/ventolith-helper/ConnectedMachine.h"
#include "programs/ventolith-helper/StandardErrorLog.h"

#include <CLI/CLI.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <optional>
#include <sstream>
#include <utility>

namespace ventolith::programs {

using runtime::Async;

namespace {

constexpr const char* description =
    "Owns the fans of this computer, and holds them as an application asks it to over the message bus.";

constexpr const char* footer = R"(Exit status:
  0  it was told to end, or made room for another build, and every fan is back with the firmware
  1  anything else; it has said why
  3  another helper serves this computer, and has its fans

With --give-back, 0 also when another helper serves: its fans are left alone.

Environment, unless --system-service:
  VENTOLITH_BUS      the address of the message bus (the system's)
  VENTOLITH_MACHINE  which machine: unset is this computer, simulated:NAME a simulated one,
                     socket:PATH a simulator that runs
  VENTOLITH_HWMON_ROOT  where this computer's devices are looked for (/sys/class/hwmon)
  VENTOLITH_STATE_DIR   where it is noted what was taken (/run/ventolith))";

constexpr int anotherServesStatus = 3;

int statusOf(bool isDone) {
  return isDone ? EXIT_SUCCESS : EXIT_FAILURE;
}

struct Options {
  bool givesBack = false;
  bool allowsSameUser = false;
  bool isSystemService = false;
};

/// What lives as long as the process: everything that is begun refers to it.
struct Process {
  Options options;
  std::string buildIdentifier;
  StandardErrorLog log{isStandardErrorTheJournal(processEnvironment)};
  boost::asio::io_context context{1};
  platform::SystemClock clock{context.get_executor()};
  runtime::StopSource stop;
  std::unique_ptr<ConnectedMachine> machine;
  std::optional<platform::SystemServices> services;
  std::unique_ptr<helper::HelperListener> listener;
  std::unique_ptr<helper::CallerAuthorizer> authorizer;
  std::unique_ptr<helper::SleepEvents> sleepEvents;
  std::unique_ptr<helper::ServiceSupervisor> supervisor;
  std::unique_ptr<helper::HelperDaemon> daemon;
  std::shared_ptr<helper::LocalFanController> engine; // Of a process that only gives back.
};

/// A system service is what its unit says, and nothing else.
std::optional<std::string> environment(const Options& options, const std::string& name) {
  return options.isSystemService ? std::nullopt : processEnvironment(name);
}

hardware::Machine select(Process& process) {
  const auto variables = [&process](const std::string& name) { return environment(process.options, name); };
  return selectMachine(variables, process.clock);
}

/// For a process that serves nobody.
Async<bool> giveBack(Process& process) {
  if (!co_await helper::WatchedEngine::mayHaveFans(process.machine->smc())) {
    process.log.note("this computer has no fans that could be held");
    co_return true;
  }
  auto& machine = *process.machine;
  process.engine = std::make_shared<helper::LocalFanController>(
      process.context.get_executor(), process.clock, machine.smc(), machine.sensors(), machine.privileges());
  auto error = co_await process.engine->restoreAllFansToAutomatic();
  for (int attempt = 1; error && attempt < helper::WatchedEngine::giveBackAttempts; ++attempt) {
    co_await process.clock.sleep(helper::WatchedEngine::giveBackInterval, runtime::StopToken());
    error = co_await process.engine->restoreAllFansToAutomatic();
  }
  if (error) {
    process.log.warn("not every fan is back: " + *error);
  } else {
    process.log.note("every fan is with the firmware");
  }
  co_return !error;
}

Async<bool> serve(Process& process) {
  auto& services = *process.services;
  process.authorizer =
      process.options.allowsSameUser ? services.sameUserAuthorizer() : services.policyAuthorizer();
  process.sleepEvents = services.sleepEvents();
  auto& machine = *process.machine;
  process.daemon = std::make_unique<helper::HelperDaemon>(
      process.context.get_executor(), process.clock,
      helper::HelperDaemon::Machine{machine.smc(), machine.sensors(), machine.privileges()},
      helper::HelperDaemon::Surroundings{*process.listener, *process.authorizer, *process.sleepEvents,
                                         *process.supervisor, process.log},
      process.buildIdentifier);
  using End = helper::HelperDaemon::End;
  const auto outcome = co_await process.daemon->run(process.stop.token());
  // The build that follows gives the fans back once more.
  co_return outcome.end == End::upgrade || (outcome.end == End::asked && outcome.areFansBack);
}

enum class Claim { done, anotherServes, nobodyToServe };

Claim claimListener(Process& process) {
  try {
    process.listener = process.services->claimListener();
    return Claim::done;
  } catch (const platform::AnotherHelperError& error) {
    process.log.warn(error.what());
    return Claim::anotherServes;
  } catch (const platform::ServiceError& error) {
    process.log.warn(error.what());
    return Claim::nobodyToServe;
  }
}

/// Returns the status to end with.
Async<int> run(Process& process) {
  process.services.emplace(
      process.context.get_executor(), process.clock,
      platform::ServiceOptions{.busAddress = environment(process.options, "VENTOLITH_BUS"),
                               .helperProgram = std::nullopt});
  if (process.options.givesBack && process.services->isHelperPresent()) {
    process.log.note("a helper serves this computer, and its fans are left alone");
    co_return EXIT_SUCCESS;
  }
  process.machine = co_await ConnectedMachine::connect(select(process), process.clock, process.log);
  process.supervisor = process.services->supervisor();
  if (process.options.givesBack) co_return statusOf(co_await giveBack(process));
  switch (claimListener(process)) {
  case Claim::done: co_return statusOf(co_await serve(process));
  case Claim::anotherServes: co_return anotherServesStatus; // The fans are that one's.
  case Claim::nobodyToServe: break;
  }
  co_await giveBack(process);
  co_return EXIT_FAILURE;
}

/// The status to end with right away; none to go on.
std::optional<int> parse(std::vector<std::string> arguments, const std::string& buildIdentifier,
                         Options& options) {
  CLI::App app(description, "ventolith-helper");
  app.footer(footer);
  app.set_version_flag("--version", buildIdentifier);
  app.add_flag("--give-back", options.givesBack, "Give every fan back to the firmware, and end");
  app.add_flag("--allow-same-user", options.allowsSameUser,
               "Admit this process's user instead of asking the system's policy: for development");
  app.add_flag("--system-service", options.isSystemService, "Run as the system's own service");
  try {
    std::reverse(arguments.begin(), arguments.end()); // The parser takes them from the back.
    app.parse(std::move(arguments));
    return std::nullopt;
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
  }
}

/// Variables that are read elsewhere: where devices are looked for, where claims are kept, where buses are.
void forgetEnvironment() {
  for (const char* name : {"VENTOLITH_HWMON_ROOT", "VENTOLITH_STATE_DIR", "DBUS_SYSTEM_BUS_ADDRESS",
                           "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"})
    ::unsetenv(name);
}

} // namespace

int runHelper(std::vector<std::string> arguments, const std::string& buildIdentifier) {
  Options options;
  if (const auto status = parse(std::move(arguments), buildIdentifier, options)) return *status;
  if (options.isSystemService) forgetEnvironment();
  std::signal(SIGPIPE, SIG_IGN); // Nobody who goes away ends this process.

  const auto process = std::make_unique<Process>();
  process->options = options;
  process->buildIdentifier = buildIdentifier;
  boost::asio::signal_set signals(process->context, SIGINT, SIGTERM, SIGHUP);
  signals.async_wait([&](const boost::system::error_code& error, int) {
    if (!error) process->stop.requestStop(); // Once: no further signal interrupts the handing back.
  });

  int status = EXIT_FAILURE;
  const auto runToItsEnd = [&]() -> Async<void> {
    try {
      status = co_await run(*process);
    } catch (const std::exception& error) {
      process->log.warn(error.what());
    }
    process->context.stop(); // Nothing is left to wait for.
  };
  runtime::start(process->context.get_executor(), "the helper", runToItsEnd());
  process->context.run();
  return status;
}

} // namespace ventolith::programs
