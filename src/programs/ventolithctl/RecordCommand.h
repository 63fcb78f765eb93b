#pragma once

#include "programs/ventolithctl/Context.h"

namespace ventolith::ctl {

/// `record FILE [--seconds N]`: a trace of this machine, which `replay` reads.
void addRecord(CLI::App& app, Context& context);

} // namespace ventolith::ctl
