// The logic stage of the self-test: pins the values on which the control policy rests. Needs no hardware.
#pragma once

#include "app/selftest/SelfTestOutput.h"
#include "runtime/Clock.h"

namespace ventolith::app {

/// Curves, the plan's JSON round trip, and the evaluator's first tick.
bool runControlConfigSelfTest(runtime::Clock& clock, SelfTestOutput& output);

/// A plan applied to a simulated controller, and its JSON round trip.
runtime::Async<bool> runPlanPlumbingSelfTest(runtime::Executor executor, runtime::Clock& clock,
                                             SelfTestOutput& output);

} // namespace ventolith::app
