// What a rule that has fired does to the fans.
#include "core/PlanEvaluator.h"
#include "support/Plans.h"

#include <gtest/gtest.h>

namespace ventolith::core {
namespace {

using support::at;
using support::fan;
using support::plan;
using support::sensor;
using support::snapshot;

const auto manual = FanControlModePlan::fixedRPM(3000);

FanRule demand(double percent, RuleFanTarget target = RuleFanTarget::all()) {
  FanRule made = support::rule();
  made.targetPercent = percent;
  made.fanTarget = target;
  return made;
}

FanDecisions firstTick(const FanControlPlan& plan, std::vector<Fan> fans = {fan(0), fan(1)},
                       double celsius = 90) {
  PlanEvaluator evaluator;
  return evaluator.evaluate(plan, snapshot(std::move(fans), {sensor("a", celsius)}), at(0));
}

TEST(PlanEvaluatorOverride, OverridesEveryMode) {
  const FanControlModePlan modes[] = {FanControlModePlan::automatic(), FanControlModePlan::fixedRPM(3000),
                                      FanControlModePlan::fixedPercent(0), support::percentAsCelsius(),
                                      support::percentAsCelsius("SMC-missing")};
  for (const FanControlModePlan& mode : modes) {
    EXPECT_EQ(firstTick(plan({{0, mode}}, {demand(50)})).at(0), FanDecision::target(5000));
  }
}

TEST(PlanEvaluatorOverride, PercentageIsOfTheFansRangeAndClamped) {
  struct Row {
    double percent;
    double rpm;
  };
  for (const auto& [percent, rpm] : {Row{1, 2060}, Row{33, 3980}, Row{100, 8000}, Row{250, 8000}}) {
    SCOPED_TRACE(percent);
    EXPECT_EQ(firstTick(plan({{0, manual}}, {demand(percent)})).at(0), FanDecision::target(rpm));
  }
}

TEST(PlanEvaluatorOverride, RuleForAllActsOnTheListedFansAlone) {
  const FanDecisions decisions = firstTick(plan({{0, manual}}, {demand(100)}));
  EXPECT_EQ(decisions, (FanDecisions{{0, FanDecision::target(8000)}}));
}

TEST(PlanEvaluatorOverride, RuleForOneFanLeavesTheOthers) {
  const FanDecisions decisions =
      firstTick(plan({{0, manual}, {1, manual}}, {demand(100, RuleFanTarget::fan(1))}));
  EXPECT_EQ(decisions, (FanDecisions{{0, FanDecision::target(3000)}, {1, FanDecision::target(8000)}}));
}

TEST(PlanEvaluatorOverride, RuleForAFanThatIsNotListedHasNoEffect) {
  const FanDecisions decisions =
      firstTick(plan({{0, manual}}, {demand(100, RuleFanTarget::fan(5))}), {fan(0), fan(5)});
  EXPECT_EQ(decisions, (FanDecisions{{0, FanDecision::target(3000)}}));
}

TEST(PlanEvaluatorOverride, EarlierOfTwoFiredRulesWins) {
  EXPECT_EQ(firstTick(plan({{0, manual}}, {demand(20), demand(90)})).at(0), FanDecision::target(3200));
  EXPECT_EQ(firstTick(plan({{0, manual}}, {demand(90), demand(20)})).at(0), FanDecision::target(7400));
}

TEST(PlanEvaluatorOverride, LaterRuleForOneFanDoesNotReplaceTheEarlierForAll) {
  EXPECT_EQ(firstTick(plan({{0, manual}}, {demand(20), demand(90, RuleFanTarget::fan(0))})).at(0),
            FanDecision::target(3200));
}

TEST(PlanEvaluatorOverride, LaterRuleFillsInTheFansThatTheEarlierLeaves) {
  const FanDecisions decisions =
      firstTick(plan({{0, manual}, {1, manual}}, {demand(20, RuleFanTarget::fan(1)), demand(90)}));
  EXPECT_EQ(decisions, (FanDecisions{{0, FanDecision::target(7400)}, {1, FanDecision::target(3200)}}));
}

TEST(PlanEvaluatorOverride, EarlierRuleThatHasNotFiredLeavesTheFanToTheLater) {
  FanRule cold = demand(20);
  cold.thresholdCelsius = 95;
  EXPECT_EQ(firstTick(plan({{0, manual}}, {cold, demand(90)})).at(0), FanDecision::target(7400));
}

TEST(PlanEvaluatorOverride, DisabledRuleLeavesTheFanToTheLater) {
  FanRule off = demand(20);
  off.enabled = false;
  EXPECT_EQ(firstTick(plan({{0, manual}}, {off, demand(90)})).at(0), FanDecision::target(7400));
}

TEST(PlanEvaluatorOverride, RuleThatLetsGoGivesTheFanToTheNext) {
  FanRule first = demand(20);
  first.releaseBelowCelsius = 84;
  const FanControlPlan both = plan({{0, manual}}, {first, demand(90)});
  PlanEvaluator evaluator;
  evaluator.evaluate(both, snapshot({fan(0)}, {sensor("a", 90)}), at(0));
  EXPECT_EQ(evaluator.evaluate(both, snapshot({fan(0)}, {sensor("a", 80)}), at(1)).at(0),
            FanDecision::target(7400));
}

TEST(PlanEvaluatorOverride, JumpsAtOnce) {
  FanControlPlan slow =
      plan({{0, support::percentAsCelsius()}}, {demand(100)}, {.emaAlpha = 1, .maxDeltaRPMPerTick = 10});
  PlanEvaluator evaluator;
  evaluator.evaluate(slow, snapshot({fan(0)}, {sensor("a", 20)}), at(0));
  EXPECT_EQ(evaluator.evaluate(slow, snapshot({fan(0)}, {sensor("a", 90)}), at(1)).at(0),
            FanDecision::target(8000));
}

TEST(PlanEvaluatorOverride, CurveThatTakesOverFallsFromThere) {
  FanControlPlan slow =
      plan({{0, support::percentAsCelsius()}}, {demand(100)}, {.emaAlpha = 1, .maxDeltaRPMPerTick = 400});
  PlanEvaluator evaluator;
  evaluator.evaluate(slow, snapshot({fan(0)}, {sensor("a", 90)}), at(0));
  EXPECT_EQ(evaluator.evaluate(slow, snapshot({fan(0)}, {sensor("a", 20)}), at(1)).at(0),
            FanDecision::target(7600));
}

TEST(PlanEvaluatorOverride, DemandOfZeroStopsTheFanAfterItsDwell) {
  const FanControlPlan silent = plan({{0, manual}}, {demand(0)});
  PlanEvaluator evaluator;
  const auto decide = [&](double seconds) {
    return evaluator.evaluate(silent, snapshot({fan(0)}, {sensor("a", 90)}), at(seconds)).at(0);
  };
  EXPECT_EQ(decide(0), FanDecision::target(2000));
  EXPECT_EQ(decide(9.9), FanDecision::target(2000));
  EXPECT_EQ(decide(10), FanDecision::idleStopped());
}

TEST(PlanEvaluatorOverride, NegativeDemandIsADemandOfZero) {
  const FanControlPlan silent = plan({{0, manual}}, {demand(-20)});
  PlanEvaluator evaluator;
  const SensorSnapshot hot = snapshot({fan(0)}, {sensor("a", 90)});
  EXPECT_EQ(evaluator.evaluate(silent, hot, at(0)).at(0), FanDecision::target(2000));
  EXPECT_EQ(evaluator.evaluate(silent, hot, at(10)).at(0), FanDecision::idleStopped());
}

TEST(PlanEvaluatorOverride, WakesAStoppedFanAtOnceHoweverWeak) {
  for (const double percent : {0.5, 2.0, 50.0}) {
    SCOPED_TRACE(percent);
    PlanEvaluator evaluator;
    evaluator.setStoppedFans({0});
    const auto decisions =
        evaluator.evaluate(plan({{0, FanControlModePlan::fixedPercent(0)}}, {demand(percent)}),
                           snapshot({fan(0)}, {sensor("a", 90)}), at(0));
    EXPECT_EQ(decisions.at(0), FanDecision::target(2000 + 60 * percent));
    EXPECT_TRUE(evaluator.stoppedFans().empty());
  }
}

TEST(PlanEvaluatorOverride, FanThatAnOverrideWokeStopsOnlyAfterAFullDwell) {
  const FanControlPlan silent = plan({{0, FanControlModePlan::fixedPercent(0)}}, {demand(50)});
  PlanEvaluator evaluator;
  const auto decide = [&](double seconds, double celsius) {
    return evaluator.evaluate(silent, snapshot({fan(0)}, {sensor("a", celsius)}), at(seconds)).at(0);
  };
  decide(0, 20);
  EXPECT_EQ(decide(10, 20), FanDecision::idleStopped());
  EXPECT_EQ(decide(11, 90), FanDecision::target(5000));
  EXPECT_EQ(decide(12, 20), FanDecision::target(2000));
  EXPECT_EQ(decide(21.9, 20), FanDecision::target(2000));
  EXPECT_EQ(decide(22, 20), FanDecision::idleStopped());
}

} // namespace
} // namespace ventolith::core
