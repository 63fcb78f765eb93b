#pragma once

#include "programs/ventolithctl/Context.h"

namespace ventolith::ctl {

/// `apply PLAN [--hold]`: a plan, held by the helper.
void addApply(CLI::App& app, Context& context);

} // namespace ventolith::ctl
