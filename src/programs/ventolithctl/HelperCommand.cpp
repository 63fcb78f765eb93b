#include "programs/ventolithctl/HelperCommand.h"

#include "helper/link/HelperManager.h"
#include "programs/ventolithctl/DaemonWords.h"
#include "programs/ventolithctl/Patience.h"
#include "programs/ventolithctl/TextLayout.h"
#include "programs/ventolithctl/Warn.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <string>

namespace ventolith::ctl {

using helper::DaemonStatus;
using helper::HelperManager;
using runtime::Async;

namespace {

using Manager = std::shared_ptr<HelperManager>;
using Change = Async<void> (HelperManager::*)();

struct Registered {
  Manager manager;
  bool hasFailed = false; // Said why on standard error.
};

/// Opens the settings where the helper is allowed, and waits for one more answer of the system's: that comes
/// after they have opened, and what was only asked for would be lost with this process.
Async<void> openSettings(Manager manager) {
  manager->openSystemSettings();
  co_await manager->refreshStatus();
}

/// A manager that has made its change, if there is one to make.
Async<Registered> changed(runtime::Executor executor, std::unique_ptr<helper::DaemonService> service,
                          Change change, Context& context) {
  const auto hasFailed = std::make_shared<bool>(false);
  const auto print = [&context, hasFailed](const std::string& text) {
    *hasFailed = true;
    tryToWrite(context, text);
  };
  const Manager manager = co_await HelperManager::make(std::move(executor), std::move(service), print);
  if (change != nullptr) {
    co_await ((*manager).*change)();
    if (manager->status() == DaemonStatus::requiresApproval) co_await openSettings(manager);
  }
  co_return Registered{.manager = manager, .hasFailed = *hasFailed};
}

CommandError interruptedTooEarly() {
  return {ExitStatus::interrupted, "interrupted before the system answered"};
}

/// The registration after `change`, which may wait for a person to answer. Fails with CommandError when the
/// user ends the command.
Async<Registered> changedUnlessInterrupted(Change change, Context& context) {
  auto registered = co_await within(
      noLimit, context.clock, context.stop,
      changed(co_await boost::asio::this_coro::executor, context.daemonService(), change, context));
  if (!registered) throw interruptedTooEarly();
  co_return std::move(*registered);
}

/// How a command ends that was to lead to `enabled`.
ExitStatus statusOfEnabling(DaemonStatus status) {
  switch (status) {
  case DaemonStatus::enabled: return ExitStatus::done;
  case DaemonStatus::requiresApproval: return ExitStatus::notPrivileged;
  case DaemonStatus::notRegistered:
  case DaemonStatus::notFound: break;
  }
  return ExitStatus::commandFailed;
}

/// Until Ctrl-C; the child then gives the fans back.
Async<void> stayWithChild(HelperManager& manager, Context& context) {
  context.insistOnFinishing();
  context.out.write("It is a child of this command, until Ctrl-C.\n");
  context.out.flush();
  co_await context.clock.sleep(noLimit, context.stop);
  co_await manager.unregister();
}

Async<ExitStatus> enable(Change change, std::string done, Context& context) {
  const Registered registered = co_await changedUnlessInterrupted(change, context);
  const DaemonStatus status = registered.manager->status();
  if (status != DaemonStatus::enabled)
    throw CommandError(statusOfEnabling(status), std::string(registrationReason(status)));
  if (registered.hasFailed)
    throw CommandError(ExitStatus::commandFailed, "the helper is installed, but did not start");
  context.out.write(done + "\n");
  if (context.helperIsChild) co_await stayWithChild(*registered.manager, context);
  co_return ExitStatus::done;
}

struct Unregistered {
  DaemonStatus status = DaemonStatus::notFound;
  helper::DaemonService::ErrorText error;
};

/// Not by a manager, which keeps to itself why it failed.
Async<Unregistered> unregistered(std::unique_ptr<helper::DaemonService> service) {
  auto error = co_await service->unregisterDaemon();
  const DaemonStatus status = co_await service->status();
  co_return Unregistered{.status = status, .error = std::move(error)};
}

Async<ExitStatus> uninstall(Context& context) {
  const auto left =
      co_await within(noLimit, context.clock, context.stop, unregistered(context.daemonService()));
  if (!left) throw interruptedTooEarly();
  if (left->status == DaemonStatus::notFound)
    throw CommandError(ExitStatus::commandFailed, std::string(registrationReason(left->status)));
  const bool isStillThere = left->status != DaemonStatus::notRegistered;
  if (isStillThere || left->error) {
    throw CommandError(
        ExitStatus::commandFailed,
        std::string(isStillThere ? "the helper is still installed" : "the helper may still run") +
            (left->error ? ": " + printable(*left->error) : std::string()));
  }
  context.out.write("The helper is uninstalled.\n");
  co_return ExitStatus::done;
}

Async<ExitStatus> showRegistration(Context& context) {
  const Registered registered = co_await changedUnlessInterrupted(nullptr, context);
  const DaemonStatus status = registered.manager->status();
  const auto advice = registrationAdvice(status);
  context.out.write(
      fmt::format("{}\n{}{}", registrationSentence(status), advice, advice.empty() ? "" : "\n"));
  co_return status == DaemonStatus::enabled ? ExitStatus::done : ExitStatus::noHelper;
}

} // namespace

void addHelper(CLI::App& app, Context& context) {
  auto* group = app.add_subcommand("helper", "Install the helper, or see to it");
  group->require_subcommand(1);
  group->footer("The helper owns the fans for every program. It is a service of the system, which may ask "
                "for a password.");
  const auto add = [&](const char* name, const char* description, const char* footer, auto run) {
    auto* command = group->add_subcommand(name, description);
    command->footer(footer);
    command->callback([&context, run] { context.command = [&context, run] { return run(context); }; });
  };
  add("install", "Register the helper with the system, and start it",
      "The system asks for permission. Exit status: 0 when the helper is installed, 15 when somebody has to "
      "allow it\n"
      "first, 17 when it cannot be installed.",
      [](Context& present) {
        return enable(&HelperManager::registerDaemon, "The helper is installed, and runs.", present);
      });
  add("uninstall", "Stop the helper and take it from the system", "The fans go back to the firmware first.",
      [](Context& present) { return uninstall(present); });
  add("status", "Show whether the helper is registered with the system",
      "Exit status: 0 when it is, 16 when it is not. \"ventolithctl status\" also asks the helper itself.",
      [](Context& present) { return showRegistration(present); });
  add("restart", "Stop the helper and start the build that is installed",
      "The fans go back to the firmware first. Exit status: as of install.", [](Context& present) {
        return enable(&HelperManager::recoverFromStaleHelper, "The helper was restarted.", present);
      });
}

} // namespace ventolith::ctl
