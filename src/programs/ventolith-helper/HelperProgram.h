// The helper's program, but for the build that it calls itself.
#pragma once

#include <string>
#include <vector>

namespace ventolith::programs {

/// Serves until it is told to end, or does what `arguments` say, and returns the exit status: 0 after what
/// was asked for, every fan given back; 3 where another helper serves; 1 otherwise. `arguments` come without
/// the program's name.
int runHelper(std::vector<std::string> arguments, const std::string& buildIdentifier);

} // namespace ventolith::programs
