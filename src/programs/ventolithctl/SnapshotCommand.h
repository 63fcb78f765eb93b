#pragma once

#include "programs/ventolithctl/Context.h"

namespace ventolith::ctl {

/// `snapshot [--json]`: one reading of the machine.
void addSnapshot(CLI::App& app, Context& context);

} // namespace ventolith::ctl
