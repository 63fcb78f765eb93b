#pragma once

#include "programs/ventolithctl/Context.h"

namespace ventolith::ctl {

/// `replay --plan PLAN --trace TRACE [--json]`: what a plan would do on a recorded run.
void addReplay(CLI::App& app, Context& context);

} // namespace ventolith::ctl
