// The whole of `ventolithctl` but its surroundings: from arguments to the exit status.
#pragma once

#include "programs/ventolithctl/Context.h"

#include <string>
#include <vector>

namespace ventolith::ctl {

/// Understands `arguments` (without the program's name) and runs the command that they name. Help goes
/// to `context.out`, whatever is wrong to `context.err`. Fails with nothing: each failure has a status.
[[nodiscard]] runtime::Async<ExitStatus> runCommandLine(std::vector<std::string> arguments, Context& context);

} // namespace ventolith::ctl
