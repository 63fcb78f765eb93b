// The application's actions as words of a line of text.
#pragma once

#include "app/AppModel.h"

#include <stdexcept>
#include <string>
#include <string_view>

namespace ventolith::programs {

/// A line that is no command, or asks for what is not there. `what()` says which and why.
class CommandLineError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// What the commands act upon.
struct HeadlessTarget {
  runtime::Executor mainExecutor;
  app::AppModel& model;
};

/// One line for each command.
extern const char* const headlessCommandHelp;

/// Does what `line` says, as a click in the window would; a blank line is nothing. Begins no more than that:
/// how it goes shows in what the model publishes. Called on the main executor. Fails with CommandLineError.
void runHeadlessCommand(const HeadlessTarget& app, const std::string& line);

} // namespace ventolith::programs
