#include "core/FanControlPlan.h"
#include "support/Plans.h"

#include <gtest/gtest.h>

namespace ventolith::core {
namespace {

TEST(PlanRecords, DefaultTuningHasItsFourValues) {
  const ControlTuning tuning;
  EXPECT_EQ(tuning.emaAlpha, 0.3);
  EXPECT_EQ(tuning.hysteresisCelsius, 2.0);
  EXPECT_EQ(tuning.maxDeltaRPMPerTick, 400.0);
  EXPECT_EQ(tuning.minDwellSeconds, 3.0);
}

TEST(PlanRecords, AllAutomaticListsNoFan) {
  EXPECT_TRUE(FanControlPlan::allAutomatic.fans.empty());
  EXPECT_TRUE(FanControlPlan::allAutomatic.rules.empty());
  EXPECT_EQ(FanControlPlan::allAutomatic.tuning, ControlTuning());
}

TEST(PlanRecords, AllAutomaticIsNotThePlanThatListsAutomaticFans) {
  const FanControlPlan listed{
      .fans = {{0, FanControlModePlan::automatic()}, {1, FanControlModePlan::automatic()}}};
  EXPECT_NE(listed, FanControlPlan::allAutomatic);
}

TEST(PlanRecords, PointsMadeWithoutAnIdentifierDiffer) {
  const CurvePoint first{.celsius = 30, .percent = 0};
  const CurvePoint second{.celsius = 30, .percent = 0};
  EXPECT_NE(first, second);
}

TEST(PlanRecords, RulesThatDifferInTheirIdentifierAloneAreNotEqual) {
  FanRule other = support::rule();
  const FanRule rule = other;
  EXPECT_EQ(rule, other);
  other.id = makeUUID();
  EXPECT_NE(rule, other);
}

TEST(PlanRecords, ModesOfTheSameNumberButAnotherCaseAreNotEqual) {
  EXPECT_NE(FanControlModePlan::fixedRPM(50), FanControlModePlan::fixedPercent(50));
  EXPECT_EQ(FanControlModePlan::fixedRPM(50), FanControlModePlan::fixedRPM(50));
}

TEST(PlanRecords, AutomaticIsTheOnlyAutomaticMode) {
  EXPECT_TRUE(FanControlModePlan::automatic().isAutomatic());
  EXPECT_FALSE(FanControlModePlan::fixedRPM(0).isAutomatic());
  EXPECT_FALSE(FanControlModePlan::fixedPercent(0).isAutomatic());
  EXPECT_FALSE(FanControlModePlan::curve({}).isAutomatic());
}

TEST(PlanRecords, InterpolationIsMadeOfItsRawValueAlone) {
  EXPECT_EQ(rawValue(CurveInterpolation::linear), "linear");
  EXPECT_EQ(rawValue(CurveInterpolation::monotone), "monotone");
  EXPECT_EQ(curveInterpolation("linear"), CurveInterpolation::linear);
  EXPECT_EQ(curveInterpolation("monotone"), CurveInterpolation::monotone);
  for (const std::string_view other : {"cubic", "", "Linear", "monotone "}) {
    EXPECT_EQ(curveInterpolation(other), std::nullopt);
  }
}

TEST(PlanRecords, AutoSwitchOffHasNoPresets) {
  EXPECT_FALSE(AutoSwitchSettings::off.enabled);
  EXPECT_EQ(AutoSwitchSettings::off.onBatteryPresetID, std::nullopt);
  EXPECT_EQ(AutoSwitchSettings::off.onACPresetID, std::nullopt);
}

} // namespace
} // namespace ventolith::core
