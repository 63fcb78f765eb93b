// The temperature filter, and which temperature a rule and a curve see.
#include "core/PlanEvaluator.h"
#include "support/Plans.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ventolith::core {
namespace {

using support::at;
using support::fan;
using support::percentAsCelsius;
using support::sensor;
using support::snapshot;

/// Feeds one sensor, "SMC-a", a reading a tick.
std::vector<double> filtered(double alpha, const std::vector<double>& readings) {
  PlanEvaluator evaluator;
  const FanControlPlan plan{.tuning = {.emaAlpha = alpha}};
  std::vector<double> results;
  for (const double celsius : readings) {
    evaluator.evaluate(plan, snapshot({}, {sensor("a", celsius)}), at(0));
    results.push_back(evaluator.filteredCelsius("SMC-a").value());
  }
  return results;
}

TEST(PlanEvaluatorFilter, FirstReadingPassesThrough) {
  EXPECT_EQ(filtered(0.3, {50}), std::vector<double>{50});
}

TEST(PlanEvaluatorFilter, NewReadingHasTheWeightOfAlpha) {
  EXPECT_EQ(filtered(0.3, {50, 60}), (std::vector<double>{50, 53}));
}

TEST(PlanEvaluatorFilter, EachReadingIsMixedIntoTheLastResult) {
  const double second = 60 * 0.25 + 50 * (1 - 0.25);
  const double third = 80 * 0.25 + second * (1 - 0.25);
  EXPECT_EQ(filtered(0.25, {50, 60, 80}), (std::vector<double>{50, second, third}));
}

TEST(PlanEvaluatorFilter, AlphaIsTakenAsItStands) {
  EXPECT_EQ(filtered(1, {50, 60}).back(), 60);
  EXPECT_EQ(filtered(0, {50, 60}).back(), 50);
  EXPECT_EQ(filtered(2, {50, 60}).back(), 70); // No limit is imposed here.
}

TEST(PlanEvaluatorFilter, AlphaOfThePresentPlanCounts) {
  PlanEvaluator evaluator;
  evaluator.evaluate({.tuning = {.emaAlpha = 0.5}}, snapshot({}, {sensor("a", 50)}), at(0));
  evaluator.evaluate({.tuning = {.emaAlpha = 0.1}}, snapshot({}, {sensor("a", 60)}), at(1));
  EXPECT_DOUBLE_EQ(evaluator.filteredCelsius("SMC-a").value(), 51);
}

TEST(PlanEvaluatorFilter, SensorsAreFilteredApart) {
  PlanEvaluator evaluator;
  TempSensor hid = sensor("a", 20);
  hid.source = SensorSource::hid;
  evaluator.evaluate({}, snapshot({}, {sensor("a", 50), sensor("b", 90), hid}), at(0));
  EXPECT_EQ(evaluator.filteredCelsius("SMC-a"), 50);
  EXPECT_EQ(evaluator.filteredCelsius("SMC-b"), 90);
  EXPECT_EQ(evaluator.filteredCelsius("HID-a"), 20);
  EXPECT_EQ(evaluator.filteredSensorCount(), 3U);
}

TEST(PlanEvaluatorFilter, SensorThatIsListedTwiceIsFilteredTwice) {
  PlanEvaluator evaluator;
  evaluator.evaluate({.tuning = {.emaAlpha = 0.5}}, snapshot({}, {sensor("a", 50), sensor("a", 60)}), at(0));
  EXPECT_EQ(evaluator.filteredCelsius("SMC-a"), 55);
}

TEST(PlanEvaluatorFilter, SensorThatDropsOutComesBackUnfiltered) {
  PlanEvaluator evaluator;
  evaluator.evaluate({}, snapshot({}, {sensor("a", 50), sensor("b", 40)}), at(0));
  evaluator.evaluate({}, snapshot({}, {sensor("b", 40)}), at(1));
  EXPECT_EQ(evaluator.filteredCelsius("SMC-a"), std::nullopt);
  evaluator.evaluate({}, snapshot({}, {sensor("a", 90), sensor("b", 40)}), at(2));
  EXPECT_EQ(evaluator.filteredCelsius("SMC-a"), 90);
}

TEST(PlanEvaluatorFilter, EmptySnapshotForgetsEverySensor) {
  PlanEvaluator evaluator;
  evaluator.evaluate({}, snapshot({}, {sensor("a", 50), sensor("b", 40)}), at(0));
  evaluator.evaluate({}, SensorSnapshot::empty, at(1));
  EXPECT_EQ(evaluator.filteredSensorCount(), 0U);
}

TEST(PlanEvaluatorFilter, FilterAdvancesWithoutFansInThePlan) {
  PlanEvaluator evaluator;
  EXPECT_TRUE(evaluator.evaluate({}, snapshot({fan(0)}, {sensor("a", 50)}), at(0)).empty());
  EXPECT_TRUE(evaluator.evaluate({}, snapshot({fan(0)}, {sensor("a", 60)}), at(1)).empty());
  EXPECT_EQ(evaluator.filteredCelsius("SMC-a"), 53);
}

TEST(PlanEvaluatorFilter, CurveFollowsTheFilteredTemperature) {
  PlanEvaluator evaluator;
  FanControlPlan plan = support::planOf(percentAsCelsius());
  plan.tuning.emaAlpha = 0.5;
  evaluator.evaluate(plan, snapshot({fan(0)}, {sensor("a", 40)}), at(0));
  const auto decisions = evaluator.evaluate(plan, snapshot({fan(0)}, {sensor("a", 60)}), at(1));
  EXPECT_EQ(decisions.at(0), FanDecision::target(5000)); // 50 %, not 60.
}

TEST(PlanEvaluatorFilter, HottestIsTheHighestFilteredValue) {
  PlanEvaluator evaluator;
  FanControlPlan plan = support::planOf(percentAsCelsius());
  plan.tuning.emaAlpha = 0.5;
  evaluator.evaluate(plan, snapshot({fan(0)}, {sensor("a", 60), sensor("b", 20)}), at(0));
  // By reading b leads with 80, but filtered it is at 50, and a at 55.
  const auto decisions =
      evaluator.evaluate(plan, snapshot({fan(0)}, {sensor("a", 50), sensor("b", 80)}), at(1));
  EXPECT_EQ(decisions.at(0), FanDecision::target(5300));
}

TEST(PlanEvaluatorFilter, HottestFollowsWhenTheHottestDropsOut) {
  PlanEvaluator evaluator;
  const FanControlPlan plan = support::planOf(percentAsCelsius());
  evaluator.evaluate(plan, snapshot({fan(0)}, {sensor("a", 60), sensor("b", 20)}), at(0));
  const auto decisions = evaluator.evaluate(plan, snapshot({fan(0)}, {sensor("b", 20)}), at(1));
  EXPECT_EQ(decisions.at(0), FanDecision::target(3200));
}

TEST(PlanEvaluatorFilter, NamedSensorIsFollowedThoughAnotherIsHotter) {
  PlanEvaluator evaluator;
  const auto decisions = evaluator.evaluate(support::planOf(percentAsCelsius("SMC-b")),
                                            snapshot({fan(0)}, {sensor("a", 90), sensor("b", 20)}), at(0));
  EXPECT_EQ(decisions.at(0), FanDecision::target(3200));
}

TEST(PlanEvaluatorFilter, TemperaturesBelowZeroAreTemperatures) {
  PlanEvaluator evaluator;
  const auto mode = FanControlModePlan::curve(support::curve({{-20, 0}, {0, 100}}));
  const auto decisions =
      evaluator.evaluate(support::planOf(mode), snapshot({fan(0)}, {sensor("a", -10)}), at(0));
  EXPECT_EQ(decisions.at(0), FanDecision::target(5000));
}

TEST(PlanEvaluatorFilter, ResetForgetsTheHistory) {
  PlanEvaluator evaluator;
  evaluator.evaluate({}, snapshot({}, {sensor("a", 50)}), at(0));
  evaluator.reset();
  EXPECT_EQ(evaluator.filteredSensorCount(), 0U);
  evaluator.evaluate({}, snapshot({}, {sensor("a", 90)}), at(1));
  EXPECT_EQ(evaluator.filteredCelsius("SMC-a"), 90);
}

} // namespace
} // namespace ventolith::core
