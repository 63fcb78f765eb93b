#pragma once

#include "programs/ventolithctl/Context.h"

namespace ventolith::ctl {

/// `helper install|uninstall|status|restart`: the helper's registration with the system.
void addHelper(CLI::App& app, Context& context);

} // namespace ventolith::ctl
