#pragma once

#include "programs/ventolithctl/Context.h"

namespace ventolith::ctl {

/// `check PLAN [--trace TRACE]`: whether a plan is valid, and what in it is surely unwanted.
void addCheck(CLI::App& app, Context& context);

} // namespace ventolith::ctl
