#pragma once

#include "programs/ventolithctl/Context.h"

namespace ventolith::ctl {

/// `set FAN RPM|N%`, `full-blast` and `auto`: what the fans do, by way of the helper.
void addFanCommands(CLI::App& app, Context& context);

} // namespace ventolith::ctl
