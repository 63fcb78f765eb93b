#include "app/selftest/PolicySelfTests.h"

#include "app/ReportText.h"
#include "core/FanControlPlan.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <limits>

namespace ventolith::app {
namespace {

/// The plan of a self-test, but for its identifiers, which are all of one length.
core::FanControlPlan planOf(std::vector<core::CurvePoint> points, double percent, std::string ruleName,
                            std::optional<std::string> sensorID) {
  core::FanCurve curve;
  curve.points = std::move(points);
  core::FanRule rule;
  rule.name = std::move(ruleName);
  rule.sensorID = std::move(sensorID);
  rule.thresholdCelsius = 85;
  rule.releaseBelowCelsius = 75;
  rule.targetPercent = 100;
  rule.fanTarget = core::RuleFanTarget::all();
  rule.dwellSeconds = 5;
  core::FanControlPlan plan;
  plan.fans = {{0, core::FanControlModePlan::curve(curve)},
               {1, core::FanControlModePlan::fixedPercent(percent)}};
  plan.rules = {rule};
  return plan;
}

std::string byteCountLine(const core::FanControlPlan& plan) {
  return "  encoded plan JSON byte count: " + std::to_string(core::encode(plan).size());
}

TEST(ControlConfigSelfTest, PassesAndReportsEveryCheckToTheLetter) {
  support::VirtualTime time;
  ReportText text;
  const auto plan =
      planOf({{.celsius = 30, .percent = 0}, {.celsius = 50, .percent = 30}, {.celsius = 80, .percent = 100}},
             75, "GPU hot", "HID-GPU");
  EXPECT_TRUE(runControlConfigSelfTest(time.clock, text.output));
  EXPECT_EQ(text.lines(), (Lines{
                              "=== control-config selftest ===",
                              "  [PASS] percent(at: 20) == 0 (got 0.0)",
                              "  [PASS] percent(at: 30) == 0 (got 0.0)",
                              "  [PASS] percent(at: 40) == 15 (got 15.0)",
                              "  [PASS] percent(at: 50) == 30 (got 30.0)",
                              "  [PASS] percent(at: 65) == 65 (got 65.0)",
                              "  [PASS] percent(at: 80) == 100 (got 100.0)",
                              "  [PASS] percent(at: 95) == 100 (got 100.0)",
                              "  [PASS] plan JSON round-trip",
                              byteCountLine(plan),
                              "  [PASS] PlanEvaluator decision for fan 0 == .target(rpm: 3800) (got 3800.0)",
                          }));
}

TEST(ControlConfigSelfTest, DecimalResultsPrintWithAFractionBesideWholeExpectations) {
  support::VirtualTime time;
  ReportText text;
  runControlConfigSelfTest(time.clock, text.output);
  EXPECT_NE(text.printed.str().find("percent(at: 95) == 100 (got 100.0)\n"), std::string::npos);
}

TEST(ControlConfigSelfTest, PassesWheneverItIsRun) {
  support::VirtualTime time;
  ReportText text;
  EXPECT_TRUE(runControlConfigSelfTest(time.clock, text.output));
  time.clock.advance(std::chrono::hours(1000));
  EXPECT_TRUE(runControlConfigSelfTest(time.clock, text.output));
}

TEST(PolicyChecks, APlanThatCannotBeWrittenFailsWithTheReasonAndTheRunGoesOn) {
  ReportText text;
  bool allOK = true;
  const auto unwritable = planOf({}, std::numeric_limits<double>::quiet_NaN(), "hot", std::nullopt);
  const auto sound = planOf({}, 75, "hot", std::nullopt);
  checkRoundTrip("first", unwritable, text.output, allOK);
  EXPECT_FALSE(allOK);
  checkRoundTrip("second", sound, text.output, allOK);
  EXPECT_FALSE(allOK);
  EXPECT_EQ(text.lines(), (Lines{
                              "  [FAIL] first",
                              "  error: a number that is not finite has no JSON form",
                              "  [PASS] second",
                              byteCountLine(sound),
                          }));
}

TEST(PolicyChecks, AFirstTickOfAnotherSpeedFailsAndIsReported) {
  struct Row {
    double percent;
    const char* line;
    bool isOK;
  };
  const Row rows[] = {
      {30, "  [PASS] PlanEvaluator decision for fan 0 == .target(rpm: 3800) (got 3800.0)", true},
      {30.025, "  [FAIL] PlanEvaluator decision for fan 0 == .target(rpm: 3800) (got 3801.5)", false},
      {0, "  [FAIL] PlanEvaluator decision for fan 0 == .target(rpm: 3800) (got 2000.0)", false},
      {100, "  [FAIL] PlanEvaluator decision for fan 0 == .target(rpm: 3800) (got 8000.0)", false},
  };
  for (const Row& row : rows) {
    support::VirtualTime time;
    ReportText text;
    bool allOK = true;
    checkFirstTick({.points = {{.celsius = 50, .percent = row.percent}}}, time.clock, text.output, allOK);
    EXPECT_EQ(text.lines(), Lines{row.line});
    EXPECT_EQ(allOK, row.isOK);
  }
}

TEST(PlanPlumbingSelfTest, PassesAndReportsEveryCheckToTheLetter) {
  support::VirtualTime time;
  ReportText text;
  const auto plan =
      planOf({{.celsius = 30, .percent = 0}, {.celsius = 80, .percent = 100}}, 100, "CPU hot", std::nullopt);
  EXPECT_TRUE(time.clock.run(runPlanPlumbingSelfTest(time.executor(), time.clock, text.output)));
  EXPECT_EQ(text.lines(), (Lines{
                              "=== plan plumbing selftest ===",
                              "[PreviewController] applyPlan(fans: 2, controlled: 2, rules: 1)",
                              "  [PASS] PreviewController.applyPlan == .applied (got applied)",
                              "  [PASS] applyConfig JSON round-trip",
                              byteCountLine(plan),
                          }));
}

TEST(PlanPlumbingSelfTest, WaitsOutTheControllersDelay) {
  support::VirtualTime time;
  ReportText text;
  const auto start = time.clock.now();
  time.clock.run(runPlanPlumbingSelfTest(time.executor(), time.clock, text.output));
  EXPECT_EQ(time.clock.now() - start, std::chrono::milliseconds(400));
}

} // namespace
} // namespace ventolith::app
