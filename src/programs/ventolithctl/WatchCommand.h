#pragma once

#include "programs/ventolithctl/Context.h"

namespace ventolith::ctl {

/// `watch [--seconds N]`: the readings as they change, drawn in place on a terminal, line by line else.
void addWatch(CLI::App& app, Context& context);

} // namespace ventolith::ctl
