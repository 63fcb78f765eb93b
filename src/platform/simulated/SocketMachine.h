// A machine that a running simulator serves over a Unix socket, as the seams see it.
//
// A simulator that is not there, or goes away, is a driver that fails: `open` says that there is none,
// every call returns an error, and there is no hub. `open` tries anew. A simulator that does not answer
// within five seconds counts as gone.
#pragma once

#include "hardware/Machine.h"

#include <optional>
#include <string>
#include <string_view>

namespace ventolith::simulated {

/// The machine served at `path`; it may come up later. Both seams talk over one socket, so they belong to
/// one thread.
[[nodiscard]] hardware::Machine socketMachine(const std::string& path);

/// Has the simulator at `path` do a line of a script. Returns what is wrong with the line, none if it was
/// done. Fails with std::runtime_error if no simulator answers.
[[nodiscard]] std::optional<std::string> sendScriptLine(const std::string& path, std::string_view line);

} // namespace ventolith::simulated
