#pragma once

#include "programs/ventolithctl/Context.h"

namespace ventolith::ctl {

/// `status [--json]`: whether there is a helper, and what it does.
void addStatus(CLI::App& app, Context& context);

} // namespace ventolith::ctl
