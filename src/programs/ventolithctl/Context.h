// What every command of `ventolithctl` is given, and what it answers.
#pragma once

#include "hardware/Machine.h"
#include "programs/ventolithctl/Output.h"
#include "runtime/Clock.h"

#include <functional>
#include <istream>
#include <stdexcept>

namespace CLI {
class App;
}

namespace ventolith::ctl {

/// The status that the process ends with.
enum class ExitStatus {
  done = 0,
  warnings = 1, // `check` found something to warn of.
  invalid = 2,  // The command line or a file that was given is wrong.
  failed = 3,   // The machine cannot be reached, or something cannot be written.
};

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

/// Outlives the command. A command may end with InputError, MachineError or OutputError, which its
/// runner reports on `err`.
struct Context {
  std::istream& in;
  Output& out;
  Output& err;
  runtime::Clock& clock;
  runtime::StopToken stop; // Requested by Ctrl-C.
  std::function<hardware::Machine()> selectMachine;

  /// Called by a command that neither a second Ctrl-C may end nor Ctrl-Z stop: it has fans to give back.
  std::function<void()> insistOnFinishing = [] {};

  /// What is to be run, as the command line was understood. Set by the chosen command's parser.
  std::function<runtime::Async<ExitStatus>()> command = {};
};

} // namespace ventolith::ctl
