// The run behind `--selftest`: reads the hardware once, drives the simulated controller through its
// commands, and checks the policy. Needs no display, no helper and no write access.
#pragma once

#include "app/selftest/SelfTestOutput.h"
#include "core/ControlContract.h"
#include "hardware/Machine.h"
#include "runtime/Clock.h"

#include <string>
#include <string_view>
#include <vector>

namespace ventolith::app {

/// Whether the switch stands anywhere among the arguments, to the letter.
[[nodiscard]] bool wantsSelfTest(const std::vector<std::string_view>& arguments);

/// True when everything passed. A driver that cannot be opened ends the run before its first line; a
/// failed check is reported and the run goes on. Takes 1.2 seconds of the clock.
runtime::Async<bool> runSelfTest(runtime::Executor executor, runtime::Clock& clock,
                                 hardware::Machine& machine, SelfTestOutput& output);

/// What follows the hardware: `controller` through its commands, the policy, and the line of the verdict.
/// `log` is what the controller says of its calls. Every stage runs, whatever became of those before it.
runtime::Async<bool> runChecks(runtime::Executor executor, runtime::Clock& clock,
                               core::FanControlling& controller, const std::vector<std::string>& log,
                               SelfTestOutput& output);

} // namespace ventolith::app
