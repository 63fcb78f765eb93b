// The stage of the self-test that drives a controller through its commands.
#pragma once

#include "app/selftest/SelfTestOutput.h"
#include "core/ControlContract.h"
#include "runtime/Async.h"

#include <string>
#include <vector>

namespace ventolith::app {

/// automatic, setPercent, heartbeat, fullBlast and restoreAuto on `controller`, each to its end, and a
/// report of the results, of the states that were observed meanwhile, and of the controller's `log`. True
/// exactly when all three results are applied. When it ends nothing refers to `controller` any more.
runtime::Async<bool> runControlSequence(core::FanControlling& controller, const std::vector<std::string>& log,
                                        SelfTestOutput& output);

} // namespace ventolith::app
