// `ventolithctl hold`: the engine in this process, in the foreground.
#pragma once

#include "programs/ventolithctl/Context.h"

namespace ventolith::ctl {

void addHold(CLI::App& app, Context& context);

} // namespace ventolith::ctl
