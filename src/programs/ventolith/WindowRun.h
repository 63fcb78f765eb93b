// The application as people see it: its place in the menu bar, and its window.
#pragma once

#include "programs/common/MachineSelection.h"

namespace ventolith::programs {

/// Runs until the user quits, the session ends, or SIGINT, SIGTERM or SIGHUP come; then gives the fans back
/// and ends the process. Where it runs already for this user, that one comes to the front instead. Fails as
/// Application does.
[[noreturn]] void runWindow(int argumentCount, char** arguments, const Environment& environment);

} // namespace ventolith::programs
