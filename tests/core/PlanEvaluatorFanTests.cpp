// What each mode of a plan gives, without rules.
#include "core/PlanEvaluator.h"
#include "support/Plans.h"

#include <gtest/gtest.h>

#include <map>
#include <vector>

namespace ventolith::core {
namespace {

using support::at;
using support::fan;
using support::percentAsCelsius;
using support::plan;
using support::planOf;
using support::sensor;
using support::snapshot;

FanDecisions firstTick(const FanControlPlan& plan, std::vector<Fan> fans,
                       std::vector<TempSensor> temps = {}) {
  PlanEvaluator evaluator;
  return evaluator.evaluate(plan, snapshot(std::move(fans), std::move(temps)), at(0));
}

TEST(PlanEvaluatorFan, AutomaticIsReleased) {
  EXPECT_EQ(firstTick(planOf(FanControlModePlan::automatic()), {fan(0)}).at(0), FanDecision::releaseToAuto());
}

TEST(PlanEvaluatorFan, FixedRPMIsClampedToTheFansRange) {
  struct Row {
    double asked;
    double given;
  };
  for (const auto& [asked, given] : {Row{3000, 3000}, Row{2500.75, 2500.75}, Row{0, 2000}, Row{-100, 2000},
                                     Row{2000, 2000}, Row{8000, 8000}, Row{20000, 8000}}) {
    SCOPED_TRACE(asked);
    EXPECT_EQ(firstTick(planOf(FanControlModePlan::fixedRPM(asked)), {fan(0)}).at(0),
              FanDecision::target(given));
  }
}

TEST(PlanEvaluatorFan, FixedPercentIsOfTheFansRangeAndClamped) {
  struct Row {
    double percent;
    double rpm;
  };
  for (const auto& [percent, rpm] : {Row{0, 2000}, Row{1, 2060}, Row{50, 5000}, Row{99.5, 7970},
                                     Row{100, 8000}, Row{150, 8000}, Row{-20, 2000}}) {
    SCOPED_TRACE(percent);
    EXPECT_EQ(firstTick(planOf(FanControlModePlan::fixedPercent(percent)), {fan(0)}).at(0),
              FanDecision::target(rpm));
  }
}

TEST(PlanEvaluatorFan, TargetIsNotRounded) {
  const auto decisions = firstTick(planOf(FanControlModePlan::fixedPercent(33.3)), {fan(0, 1350, 5777)});
  EXPECT_EQ(decisions.at(0), FanDecision::target(33.3 * (5777.0 - 1350.0) / 100 + 1350.0));
}

TEST(PlanEvaluatorFan, RangeUpsideDownIsHeldAtItsMaximum) {
  const Fan odd = fan(0, 5000, 3000);
  for (const double rpm : {1000.0, 4000.0, 9000.0}) {
    EXPECT_EQ(firstTick(planOf(FanControlModePlan::fixedRPM(rpm)), {odd}).at(0), FanDecision::target(3000));
  }
  EXPECT_EQ(firstTick(planOf(FanControlModePlan::fixedPercent(50)), {odd}).at(0), FanDecision::target(3000));
}

TEST(PlanEvaluatorFan, RangeOfNothingIsHeldAtItsOneSpeed) {
  EXPECT_EQ(firstTick(planOf(FanControlModePlan::fixedPercent(70)), {fan(0, 0, 0)}).at(0),
            FanDecision::target(0));
  EXPECT_EQ(firstTick(planOf(FanControlModePlan::fixedRPM(70)), {fan(0, 2500, 2500)}).at(0),
            FanDecision::target(2500));
}

TEST(PlanEvaluatorFan, FirstTickOfACurveIsAtItsValue) {
  const auto mode = FanControlModePlan::curve(support::curve({{30, 0}, {50, 30}, {80, 100}}));
  const FanControlPlan defaults{.fans = {{0, mode}}};
  EXPECT_EQ(firstTick(defaults, {fan(0)}, {sensor("a", 50)}).at(0), FanDecision::target(3800));
}

TEST(PlanEvaluatorFan, CurveWithoutTemperatureIsReleased) {
  EXPECT_EQ(firstTick(planOf(percentAsCelsius()), {fan(0)}).at(0), FanDecision::releaseToAuto());
  EXPECT_EQ(firstTick(planOf(percentAsCelsius("SMC-b")), {fan(0)}, {sensor("a", 50)}).at(0),
            FanDecision::releaseToAuto());
  EXPECT_EQ(firstTick(planOf(percentAsCelsius("a")), {fan(0)}, {sensor("a", 50)}).at(0),
            FanDecision::releaseToAuto());
  EXPECT_EQ(firstTick(planOf(percentAsCelsius("")), {fan(0)}, {sensor("a", 50)}).at(0),
            FanDecision::releaseToAuto());
}

TEST(PlanEvaluatorFan, FanThatIsAbsentFromTheSnapshotGetsNoDecision) {
  const auto mode = FanControlModePlan::fixedRPM(3000);
  EXPECT_EQ(firstTick(plan({{0, mode}, {5, mode}}), {fan(0)}),
            (FanDecisions{{0, FanDecision::target(3000)}}));
}

TEST(PlanEvaluatorFan, FanThatIsNotListedGetsNoDecision) {
  EXPECT_EQ(firstTick(planOf(FanControlModePlan::fixedRPM(3000)), {fan(0), fan(1)}).count(1), 0U);
}

TEST(PlanEvaluatorFan, EmptyPlanGivesNoDecisions) {
  EXPECT_TRUE(firstTick(FanControlPlan::allAutomatic, {fan(0), fan(1)}, {sensor("a", 99)}).empty());
}

TEST(PlanEvaluatorFan, EachFanHasItsOwnRange) {
  const auto half = FanControlModePlan::fixedPercent(50);
  EXPECT_EQ(firstTick(plan({{0, half}, {1, half}}), {fan(0, 1000, 3000), fan(1, 0, 9000)}),
            (FanDecisions{{0, FanDecision::target(2000)}, {1, FanDecision::target(4500)}}));
}

TEST(PlanEvaluatorFan, FirstOfTwoReadingsOfAFanCounts) {
  const auto half = FanControlModePlan::fixedPercent(50);
  EXPECT_EQ(firstTick(planOf(half), {fan(0, 1000, 3000), fan(0, 0, 9000)}).at(0), FanDecision::target(2000));
  // The second stands where its id says.
  EXPECT_EQ(firstTick(plan({{1, half}}), {fan(1, 1000, 3000), fan(1, 0, 9000)}).at(1),
            FanDecision::target(2000));
  EXPECT_EQ(firstTick(plan({{2, half}}), {fan(0), fan(2, 1000, 3000), fan(2, 0, 9000)}).at(2),
            FanDecision::target(2000));
}

TEST(PlanEvaluatorFan, FansAreFoundInAnyOrderAndByAnyID) {
  const auto half = FanControlModePlan::fixedPercent(50);
  const FanControlPlan all = plan({{0, half}, {1, half}, {3, half}, {-1, half}, {INT64_MAX, half}});
  EXPECT_EQ(firstTick(all, {fan(0, 0, 1000), fan(3, 0, 2000), fan(INT64_MAX, 0, 3000), fan(-1, 0, 4000),
                            fan(1, 0, 5000)}),
            (FanDecisions{{-1, FanDecision::target(2000)},
                          {0, FanDecision::target(500)},
                          {1, FanDecision::target(2500)},
                          {3, FanDecision::target(1000)},
                          {INT64_MAX, FanDecision::target(1500)}}));
}

TEST(PlanEvaluatorFan, LastDecisionOfAFanThatIsListedTwiceStands) {
  const auto fixed = FanControlModePlan::fixedRPM(3000);
  const auto automatic = FanControlModePlan::automatic();
  EXPECT_EQ(firstTick(plan({{0, fixed}, {0, automatic}}), {fan(0)}),
            (FanDecisions{{0, FanDecision::releaseToAuto()}}));
  EXPECT_EQ(firstTick(plan({{0, automatic}, {0, fixed}}), {fan(0)}),
            (FanDecisions{{0, FanDecision::target(3000)}}));
}

// Slew limit of a curve

/// A curve over one fan, with the temperature as its percentage, and a target of before.
struct Slew {
  explicit Slew(double maxDelta, FanControlModePlan before = FanControlModePlan::fixedRPM(3000)) {
    following.tuning.maxDeltaRPMPerTick = maxDelta;
    evaluator.evaluate(planOf(std::move(before)), snapshot({fan(0)}, {sensor("a", 20)}), at(0));
  }

  FanDecision askFor(double rpm) {
    const double percent = (rpm - 2000) / 60;
    return evaluator.evaluate(following, snapshot({fan(0)}, {sensor("a", percent)}), at(1)).at(0);
  }

  PlanEvaluator evaluator;
  FanControlPlan following = planOf(percentAsCelsius());
};

TEST(PlanEvaluatorSlew, CurveChangesByTheLimitAtTheMost) {
  struct Row {
    double asked;
    double given;
  };
  for (const auto& [asked, given] : {Row{3800, 3400}, Row{4000, 3400}, Row{2300, 2600}, Row{2000, 2600},
                                     Row{3200, 3200}, Row{2900, 2900}, Row{3401, 3400}, Row{8000, 3400}}) {
    SCOPED_TRACE(asked);
    EXPECT_EQ(Slew(400).askFor(asked), FanDecision::target(given));
  }
}

TEST(PlanEvaluatorSlew, RequestOfZeroFallsByTheLimitToo) {
  EXPECT_EQ(Slew(400).askFor(2000), FanDecision::target(2600));
}

TEST(PlanEvaluatorSlew, LimitIsTakenFromTheLastTargetOfEachTick) {
  Slew slew(400);
  EXPECT_EQ(slew.askFor(8000), FanDecision::target(3400));
  EXPECT_EQ(slew.askFor(8000), FanDecision::target(3800));
  EXPECT_EQ(slew.askFor(2300), FanDecision::target(3400));
}

TEST(PlanEvaluatorSlew, LimitOfZeroFreezesTheCurve) {
  EXPECT_EQ(Slew(0).askFor(8000), FanDecision::target(3000));
}

TEST(PlanEvaluatorSlew, NegativeLimitIsRaisedFirstAndLoweredThen) {
  // Raised to 3000 + 100, then lowered to 3000 - 100.
  EXPECT_EQ(Slew(-100).askFor(8000), FanDecision::target(2900));
  EXPECT_EQ(Slew(-100).askFor(2300), FanDecision::target(2900));
}

TEST(PlanEvaluatorSlew, LimitIsClampedToTheFansRange) {
  EXPECT_EQ(Slew(400, FanControlModePlan::fixedRPM(7900)).askFor(8000), FanDecision::target(8000));
  EXPECT_EQ(Slew(400, FanControlModePlan::fixedRPM(2100)).askFor(2060), FanDecision::target(2060));
}

TEST(PlanEvaluatorSlew, FixedSpeedJumpsAndIsRemembered) {
  Slew slew(400);
  slew.evaluator.evaluate(planOf(FanControlModePlan::fixedPercent(100)), snapshot({fan(0)}), at(1));
  EXPECT_EQ(slew.evaluator.lastTargetByFan(), (std::map<FanID, double>{{0, 8000}}));
  EXPECT_EQ(slew.askFor(2300), FanDecision::target(7600));
}

TEST(PlanEvaluatorSlew, ReleaseForgetsTheLastTarget) {
  Slew slew(400);
  slew.evaluator.evaluate(planOf(FanControlModePlan::automatic()), snapshot({fan(0)}), at(1));
  EXPECT_TRUE(slew.evaluator.lastTargetByFan().empty());
  EXPECT_EQ(slew.askFor(6800), FanDecision::target(6800));
}

TEST(PlanEvaluatorSlew, MissingTemperatureForgetsTheLastTarget) {
  Slew slew(400);
  EXPECT_EQ(slew.evaluator.evaluate(slew.following, snapshot({fan(0)}), at(1)).at(0),
            FanDecision::releaseToAuto());
  EXPECT_EQ(slew.askFor(6800), FanDecision::target(6800));
}

TEST(PlanEvaluatorSlew, FanThatIsGoneForATickKeepsItsLastTarget) {
  Slew slew(400);
  slew.evaluator.evaluate(slew.following, snapshot({}, {sensor("a", 20)}), at(1));
  EXPECT_EQ(slew.askFor(6800), FanDecision::target(3400));
}

TEST(PlanEvaluatorSlew, LastTargetIsKeptAcrossPlansThatDoNotListTheFan) {
  Slew slew(400);
  slew.evaluator.evaluate(FanControlPlan::allAutomatic, snapshot({fan(0)}, {sensor("a", 20)}), at(1));
  EXPECT_EQ(slew.askFor(6800), FanDecision::target(3400));
}

TEST(PlanEvaluatorSlew, ResetForgetsTheLastTarget) {
  Slew slew(400);
  slew.evaluator.reset();
  EXPECT_TRUE(slew.evaluator.lastTargetByFan().empty());
  EXPECT_EQ(slew.askFor(6800), FanDecision::target(6800));
}

TEST(PlanEvaluatorSlew, CurveOfAFanThatIsListedTwiceStepsTwice) {
  Slew slew(400);
  slew.following.fans.push_back(slew.following.fans.front());
  EXPECT_EQ(slew.askFor(8000), FanDecision::target(3800));
}

} // namespace
} // namespace ventolith::core
