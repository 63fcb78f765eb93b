// What every command of `ventolithctl` is given, and what it answers.
#pragma once

#include "core/ControlContract.h"
#include "hardware/Machine.h"
#include "helper/link/DaemonService.h"
#include "helper/link/HelperChannel.h"
#include "helper/link/ProcessWideCounter.h"
#include "programs/ventolithctl/Output.h"
#include "runtime/Clock.h"

#include <functional>
#include <istream>
#include <memory>
#include <stdexcept>
#include <string>

namespace CLI {
class App;
}

namespace ventolith::ctl {

/// The status that the process ends with.
enum class ExitStatus {
  done = 0,
  warnings = 1, // `check` found something to warn of.
  invalid = 2,  // The command line or a file that was given is wrong.
  failed = 3,   // The machine cannot be reached, something cannot be written, or fans had to be let go.

  // What the helper made of a command: 10 and the code that crosses the link.
  acquiring = 11,
  timedOut = 12,
  reclaimed = 13,
  rejected = 14,
  notPrivileged = 15,
  noHelper = 16,
  commandFailed = 17,

  interrupted = 130, // Ctrl-C came before the answer. As a shell reports a SIGINT.
};

/// 0 for applied.
[[nodiscard]] ExitStatus statusOf(const core::ControlResult& result);

/// A file that was given is wrong. `what()` names it, the place and the reason.
class InputError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// The machine cannot be reached. `what()` names it and the reason.
class MachineError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// A command had no success; `what()` says why, and the process ends with `status`.
class CommandError : public std::runtime_error {
public:
  CommandError(ExitStatus status, const std::string& reason) : std::runtime_error(reason), status_(status) {}

  [[nodiscard]] ExitStatus status() const { return status_; }

private:
  ExitStatus status_;
};

/// Outlives the command. A command may end with InputError, MachineError, CommandError or OutputError, which
/// its runner reports on `err`.
struct Context {
  std::istream& in;
  Output& out;
  Output& err;
  runtime::Clock& clock;
  runtime::StopToken stop; // Requested by Ctrl-C.
  std::function<hardware::Machine()> selectMachine;

  // The way to the helper, and its registration. Asked for by the commands that need them, and by no other: a
  // computer without a message bus can be looked at all the same. Fail with an exception that says why.
  std::function<helper::HelperChannelFactory()> helperChannels = {};
  std::function<std::unique_ptr<helper::DaemonService>()> daemonService = {};
  /// A helper that is registered is a child of this process, and ends with it.
  bool helperIsChild = false;
  helper::ProcessWideCounter& upgradeAttempts = helper::processWideUpgradeAttempts();

  /// Called by a command that neither a second Ctrl-C may end nor Ctrl-Z stop: it has fans to give back.
  std::function<void()> insistOnFinishing = [] {};

  /// What is to be run, as the command line was understood. Set by the chosen command's parser.
  std::function<runtime::Async<ExitStatus>()> command = {};
};

} // namespace ventolith::ctl
