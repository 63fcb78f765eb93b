// The logic stage of the self-test: pins the values on which the control policy rests. Needs no hardware.
#pragma once

#include "app/selftest/SelfTestOutput.h"
#include "core/FanControlPlan.h"
#include "runtime/Clock.h"

#include <string>

namespace ventolith::app {

/// `plan` to JSON and back: a check under `label`, and the size of the JSON. A plan that cannot be written
/// or read fails the check, with the reason on a line of its own.
void checkRoundTrip(const std::string& label, const core::FanControlPlan& plan, SelfTestOutput& output,
                    bool& allOK);

/// A fan of 2000 to 8000 RPM under `curve` at 50 degrees: passes if the evaluator's first tick gives 3800.
void checkFirstTick(const core::FanCurve& curve, runtime::Clock& clock, SelfTestOutput& output, bool& allOK);

/// Curves, the plan's JSON round trip, and the evaluator's first tick.
bool runControlConfigSelfTest(runtime::Clock& clock, SelfTestOutput& output);

/// A plan applied to a simulated controller, and its JSON round trip.
runtime::Async<bool> runPlanPlumbingSelfTest(runtime::Executor executor, runtime::Clock& clock,
                                             SelfTestOutput& output);

} // namespace ventolith::app
