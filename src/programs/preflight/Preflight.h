// The check of a build's settings before it is given away, as a program without its main().
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace ventolith::programs {

/// `arguments` are those after the program's name: the property list of the build. Writes all that is wrong
/// with its settings to `out`, one sentence a line, or that it is ready; and to `err` why it could not be
/// checked. Returns the status to end with: 0 when it is ready, 1 when something is wrong, and 2 without a
/// readable property list.
int runPreflight(std::vector<std::string> arguments, std::ostream& out, std::ostream& err);

} // namespace ventolith::programs
