#include "app/selftest/PolicySelfTests.h"

#include "core/NumberText.h"
#include "core/PlanEvaluator.h"
#include "core/PreviewController.h"
#include "core/Visitor.h"

#include <fmt/format.h>

#include <cmath>

namespace ventolith::app {

using core::ControlResult;
using core::FanControlModePlan;
using core::FanControlPlan;
using core::FanCurve;
using core::FanDecision;
using core::fractionText;

namespace {

struct CurveRow {
  double celsius;
  double percent;
};

FanCurve threePointCurve() {
  return {.sourceSensorID = std::nullopt,
          .points = {{.celsius = 30, .percent = 0},
                     {.celsius = 50, .percent = 30},
                     {.celsius = 80, .percent = 100}},
          .interpolation = core::CurveInterpolation::linear};
}

core::FanRule hotRule(std::string name, std::optional<std::string> sensorID) {
  return {.name = std::move(name),
          .sensorID = std::move(sensorID),
          .thresholdCelsius = 85,
          .releaseBelowCelsius = 75,
          .targetPercent = 100,
          .fanTarget = core::RuleFanTarget::all(),
          .dwellSeconds = 5,
          .enabled = true};
}

void checkCurve(const FanCurve& curve, SelfTestOutput& output, bool& allOK) {
  constexpr double tolerance = 0.001;
  for (const auto& [celsius, expected] :
       {CurveRow{20, 0}, {30, 0}, {40, 15}, {50, 30}, {65, 65}, {80, 100}, {95, 100}}) {
    const double got = curve.percent(celsius);
    output.check(fmt::format("percent(at: {}) == {} (got {})", celsius, expected, fractionText(got)),
                 std::abs(got - expected) <= tolerance, allOK);
  }
}

std::string decisionText(const core::FanDecisions& decisions, core::FanID fan) {
  const auto decision = decisions.find(fan);
  if (decision == decisions.end()) return "none";
  return std::visit(core::Visitor{
                        [](const FanDecision::Target& target) { return fractionText(target.rpm); },
                        [](const FanDecision::ReleaseToAuto&) { return std::string("releaseToAuto"); },
                        [](const FanDecision::IdleStopped&) { return std::string("idleStopped"); },
                    },
                    decision->second.value);
}

} // namespace

void checkRoundTrip(const std::string& label, const FanControlPlan& plan, SelfTestOutput& output,
                    bool& allOK) {
  try {
    const std::string json = core::encode(plan);
    output.check(label, core::decodeFanControlPlan(json) == plan, allOK);
    output.print(fmt::format("  encoded plan JSON byte count: {}", json.size()));
  } catch (const std::exception& error) {
    output.check(label, false, allOK);
    output.print(fmt::format("  error: {}", error.what()));
  }
}

void checkFirstTick(const FanCurve& curve, runtime::Clock& clock, SelfTestOutput& output, bool& allOK) {
  const core::TempSensor sensor{"X", "X", 50, core::SensorCategory::cpu, core::SensorSource::hid};
  core::SensorSnapshot snapshot;
  snapshot.fans = {
      {.id = 0, .name = "Fan 0", .currentRPM = 0, .minRPM = 2000, .maxRPM = 8000, .mode = std::nullopt}};
  snapshot.temps = {sensor};
  snapshot.timestamp = clock.wallTime();

  FanCurve bound = curve;
  bound.sourceSensorID = sensor.id();
  FanControlPlan plan{.fans = {{0, FanControlModePlan::curve(std::move(bound))}}, .rules = {}, .tuning = {}};
  plan.tuning.maxDeltaRPMPerTick = 1e9;

  constexpr double expected = 3800; // 30 % of the span from 2000 to 8000, above 2000.
  constexpr double tolerance = 1.0;
  const auto decisions = core::PlanEvaluator().evaluate(plan, snapshot, clock.now());
  const auto decision = decisions.find(0);
  const auto* target =
      decision == decisions.end() ? nullptr : std::get_if<FanDecision::Target>(&decision->second.value);
  output.check(fmt::format("PlanEvaluator decision for fan 0 == .target(rpm: 3800) (got {})",
                           decisionText(decisions, 0)),
               target != nullptr && std::abs(target->rpm - expected) <= tolerance, allOK);
}

bool runControlConfigSelfTest(runtime::Clock& clock, SelfTestOutput& output) {
  output.print("=== control-config selftest ===");
  bool allOK = true;
  const FanCurve curve = threePointCurve();
  checkCurve(curve, output, allOK);
  const FanControlPlan plan{
      .fans = {{0, FanControlModePlan::curve(curve)}, {1, FanControlModePlan::fixedPercent(75)}},
      .rules = {hotRule("GPU hot", "HID-GPU")},
      .tuning = {}};
  checkRoundTrip("plan JSON round-trip", plan, output, allOK);
  checkFirstTick(curve, clock, output, allOK);
  return allOK;
}

runtime::Async<bool> runPlanPlumbingSelfTest(runtime::Executor executor, runtime::Clock& clock,
                                             SelfTestOutput& output) {
  output.print("=== plan plumbing selftest ===");
  bool allOK = true;
  const FanCurve curve{.sourceSensorID = std::nullopt,
                       .points = {{.celsius = 30, .percent = 0}, {.celsius = 80, .percent = 100}},
                       .interpolation = core::CurveInterpolation::linear};
  const FanControlPlan plan{
      .fans = {{0, FanControlModePlan::curve(curve)}, {1, FanControlModePlan::fixedPercent(100)}},
      .rules = {hotRule("CPU hot", std::nullopt)},
      .tuning = {}};
  core::PreviewController controller(executor, clock,
                                     [&output](const std::string& line) { output.print(line); });
  const ControlResult result = co_await controller.applyPlan(plan);
  output.check(fmt::format("PreviewController.applyPlan == .applied (got {})", result.text()),
               result == ControlResult::applied, allOK);
  checkRoundTrip("applyConfig JSON round-trip", plan, output, allOK);
  co_return allOK;
}

} // namespace ventolith::app
