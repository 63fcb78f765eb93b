// When a rule fires and when it lets go.
#include "core/PlanEvaluator.h"
#include "support/Plans.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace ventolith::core {
namespace {

using support::at;
using support::fan;
using support::rule;
using support::sensor;
using support::snapshot;

/// One rule over one fan of fixed speed, unfiltered: the rule has fired when the fan is at its maximum.
class OneRule {
public:
  explicit OneRule(FanRule watched)
      : plan_(support::plan({{0, FanControlModePlan::fixedRPM(3000)}}, {std::move(watched)})) {}

  /// Whether the rule acts after a tick at this time, with its sensor at `celsius` or missing.
  bool actsAt(double seconds, std::optional<double> celsius) {
    std::vector<TempSensor> temps;
    if (celsius) temps.push_back(sensor("a", *celsius));
    return evaluator_.evaluate(plan_, snapshot({fan(0)}, temps), at(seconds)).at(0) ==
           FanDecision::target(8000);
  }

  FanRule& edited() { return plan_.rules.front(); }
  PlanEvaluator& evaluator() { return evaluator_; }

private:
  FanControlPlan plan_;
  PlanEvaluator evaluator_;
};

FanRule dwelling(double seconds) {
  FanRule made = rule();
  made.dwellSeconds = seconds;
  return made;
}

TEST(PlanEvaluatorRule, FiresStrictlyAboveItsThreshold) {
  struct Row {
    double celsius;
    bool acts;
  };
  for (const auto& [celsius, acts] :
       {Row{84.9, false}, Row{85.0, false}, Row{85.001, true}, Row{120, true}}) {
    SCOPED_TRACE(celsius);
    OneRule hot(rule());
    EXPECT_EQ(hot.actsAt(0, celsius), acts);
  }
}

TEST(PlanEvaluatorRule, WithoutDwellFiresOnTheFirstTick) {
  OneRule hot(dwelling(0));
  EXPECT_TRUE(hot.actsAt(0, 86));
}

TEST(PlanEvaluatorRule, NegativeDwellFiresOnTheFirstTick) {
  OneRule hot(dwelling(-5));
  EXPECT_TRUE(hot.actsAt(0, 86));
}

TEST(PlanEvaluatorRule, FiresInTheTickInWhichItsDwellHasPassed) {
  OneRule hot(dwelling(5));
  EXPECT_FALSE(hot.actsAt(0, 86));
  EXPECT_FALSE(hot.actsAt(4.9, 86));
  EXPECT_TRUE(hot.actsAt(5.0, 86));
}

TEST(PlanEvaluatorRule, OneTickAfterALongGapIsEnough) {
  OneRule hot(dwelling(5));
  EXPECT_FALSE(hot.actsAt(0, 86));
  EXPECT_TRUE(hot.actsAt(1000, 86));
}

TEST(PlanEvaluatorRule, DipStartsTheDwellAnew) {
  for (const double dip : {84.0, 85.0}) { // At the threshold is not above it.
    SCOPED_TRACE(dip);
    OneRule hot(dwelling(5));
    EXPECT_FALSE(hot.actsAt(0, 86));
    EXPECT_FALSE(hot.actsAt(4, dip));
    EXPECT_FALSE(hot.actsAt(5, 86));
    EXPECT_FALSE(hot.actsAt(9.9, 86));
    EXPECT_TRUE(hot.actsAt(10, 86));
  }
}

TEST(PlanEvaluatorRule, MissingTemperatureStartsTheDwellAnew) {
  OneRule hot(dwelling(5));
  EXPECT_FALSE(hot.actsAt(0, 86));
  EXPECT_FALSE(hot.actsAt(4, std::nullopt));
  EXPECT_FALSE(hot.actsAt(5, 86));
  EXPECT_TRUE(hot.actsAt(10, 86));
}

TEST(PlanEvaluatorRule, MissingTemperatureKeepsAnUnlatchedRuleFromFiring) {
  OneRule hot(dwelling(0));
  EXPECT_FALSE(hot.actsAt(0, std::nullopt));
  EXPECT_FALSE(hot.actsAt(100, std::nullopt));
}

TEST(PlanEvaluatorRule, LatchedRuleStaysWithoutTemperature) {
  OneRule hot(rule());
  EXPECT_TRUE(hot.actsAt(0, 86));
  EXPECT_TRUE(hot.actsAt(1, std::nullopt));
  EXPECT_TRUE(hot.actsAt(1000, std::nullopt));
}

TEST(PlanEvaluatorRule, LetsGoStrictlyBelowTheLowerOfItsTwoLevels) {
  struct Row {
    double releaseBelow;
    double keepsAt;
    double letsGoAt;
  };
  // The threshold is 85: above 84.5 no release level counts.
  for (const auto& [releaseBelow, keepsAt, letsGoAt] :
       {Row{75, 75, 74.999}, Row{90, 84.5, 84.499}, Row{84.5, 84.5, 84.499}, Row{84.9, 84.5, 84.499},
        Row{84.25, 84.25, 84.2}, Row{-10, -10, -10.5}}) {
    SCOPED_TRACE(releaseBelow);
    FanRule hysteretic = rule();
    hysteretic.releaseBelowCelsius = releaseBelow;
    OneRule hot(hysteretic);
    EXPECT_TRUE(hot.actsAt(0, 86));
    EXPECT_TRUE(hot.actsAt(1, 84.5));
    EXPECT_TRUE(hot.actsAt(2, keepsAt));
    EXPECT_FALSE(hot.actsAt(3, letsGoAt));
  }
}

TEST(PlanEvaluatorRule, TuningHysteresisAndDwellChangeNothing) {
  FanControlPlan plan = support::plan({{0, FanControlModePlan::fixedRPM(3000)}}, {rule()});
  plan.rules.front().releaseBelowCelsius = 90;
  plan.tuning.hysteresisCelsius = 40;
  plan.tuning.minDwellSeconds = 1000;
  PlanEvaluator evaluator;
  const auto decide = [&](double seconds, double celsius) {
    return evaluator.evaluate(plan, snapshot({fan(0)}, {sensor("a", celsius)}), at(seconds)).at(0);
  };
  EXPECT_EQ(decide(0, 86), FanDecision::target(8000));
  EXPECT_EQ(decide(1, 84.4), FanDecision::target(3000));
}

TEST(PlanEvaluatorRule, DwellBeginsAnewAfterARelease) {
  OneRule hot(dwelling(5));
  hot.actsAt(0, 86);
  EXPECT_TRUE(hot.actsAt(5, 86));
  EXPECT_FALSE(hot.actsAt(6, 70));
  EXPECT_FALSE(hot.actsAt(7, 86));
  EXPECT_FALSE(hot.actsAt(11.9, 86));
  EXPECT_TRUE(hot.actsAt(12, 86));
}

TEST(PlanEvaluatorRule, SeesTheHottestWhenItNamesNoSensor) {
  PlanEvaluator evaluator;
  const FanControlPlan plan = support::plan({{0, FanControlModePlan::fixedRPM(3000)}}, {rule()});
  const auto decisions =
      evaluator.evaluate(plan, snapshot({fan(0)}, {sensor("a", 20), sensor("b", 90)}), at(0));
  EXPECT_EQ(decisions.at(0), FanDecision::target(8000));
}

TEST(PlanEvaluatorRule, SeesItsOwnSensorAlone) {
  FanRule named = rule();
  named.sensorID = "SMC-a";
  const FanControlPlan plan = support::plan({{0, FanControlModePlan::fixedRPM(3000)}}, {named});
  PlanEvaluator evaluator;
  const auto decide = [&](std::vector<TempSensor> temps) {
    return evaluator.evaluate(plan, snapshot({fan(0)}, std::move(temps)), at(0)).at(0);
  };
  EXPECT_EQ(decide({sensor("a", 20), sensor("b", 90)}), FanDecision::target(3000));
  EXPECT_EQ(decide({sensor("b", 90)}), FanDecision::target(3000)); // There is no fallback to the hottest.
  EXPECT_EQ(decide({sensor("a", 90), sensor("b", 20)}), FanDecision::target(8000));
}

TEST(PlanEvaluatorRule, SeesTheFilteredTemperature) {
  FanControlPlan plan = support::plan({{0, FanControlModePlan::fixedRPM(3000)}}, {rule()});
  plan.tuning.emaAlpha = 0.5;
  PlanEvaluator evaluator;
  evaluator.evaluate(plan, snapshot({fan(0)}, {sensor("a", 60)}), at(0));
  const auto decisions = evaluator.evaluate(plan, snapshot({fan(0)}, {sensor("a", 100)}), at(1));
  EXPECT_EQ(decisions.at(0), FanDecision::target(3000)); // Filtered it is 80.
}

TEST(PlanEvaluatorRule, LatchedRuleThatIsDisabledKeepsItsLatchWithoutEffect) {
  OneRule hot(rule());
  EXPECT_TRUE(hot.actsAt(0, 86));
  hot.edited().enabled = false;
  EXPECT_FALSE(hot.actsAt(1, 86));
  EXPECT_FALSE(hot.actsAt(2, 20)); // Not even this lets it go.
  hot.edited().enabled = true;
  EXPECT_TRUE(hot.actsAt(3, 80));
}

TEST(PlanEvaluatorRule, DisabledRuleNeitherStartsNorEndsItsDwell) {
  OneRule hot(dwelling(5));
  hot.edited().enabled = false;
  EXPECT_FALSE(hot.actsAt(0, 86));
  hot.edited().enabled = true;
  EXPECT_FALSE(hot.actsAt(5, 86)); // It begins here,
  hot.edited().enabled = false;
  EXPECT_FALSE(hot.actsAt(7, 20)); // and this dip is not seen.
  hot.edited().enabled = true;
  EXPECT_TRUE(hot.actsAt(10, 86));
}

TEST(PlanEvaluatorRule, KeepsItsLatchAcrossAnEdit) {
  OneRule hot(rule());
  EXPECT_TRUE(hot.actsAt(0, 86));
  hot.edited().name = "renamed";
  hot.edited().thresholdCelsius = 95;
  EXPECT_TRUE(hot.actsAt(1, 86)); // The release level, of 75, still counts.
}

TEST(PlanEvaluatorRule, KeepsItsLatchWhileItIsNotInThePlan) {
  const FanControlPlan with = support::plan({{0, FanControlModePlan::fixedRPM(3000)}}, {rule()});
  FanControlPlan without = with;
  without.rules.clear();
  PlanEvaluator evaluator;
  const auto decide = [&](const FanControlPlan& plan, double celsius) {
    return evaluator.evaluate(plan, snapshot({fan(0)}, {sensor("a", celsius)}), at(0)).at(0);
  };
  EXPECT_EQ(decide(with, 86), FanDecision::target(8000));
  EXPECT_EQ(decide(without, 20), FanDecision::target(3000));
  EXPECT_EQ(decide(with, 80), FanDecision::target(8000));
}

TEST(PlanEvaluatorRule, NewIdentifierIsANewRule) {
  OneRule hot(rule());
  EXPECT_TRUE(hot.actsAt(0, 86));
  hot.edited().id = makeUUID();
  EXPECT_FALSE(hot.actsAt(1, 80));
}

TEST(PlanEvaluatorRule, ResetForgetsLatchAndDwell) {
  OneRule latched(rule());
  EXPECT_TRUE(latched.actsAt(0, 86));
  latched.evaluator().reset();
  EXPECT_FALSE(latched.actsAt(1, 80));

  OneRule waiting(dwelling(5));
  EXPECT_FALSE(waiting.actsAt(0, 86));
  waiting.evaluator().reset();
  EXPECT_FALSE(waiting.actsAt(5, 86));
  EXPECT_TRUE(waiting.actsAt(10, 86));
}

TEST(PlanEvaluatorRule, StateAdvancesWithoutFansInThePlan) {
  FanControlPlan plan = support::plan({}, {dwelling(5)});
  PlanEvaluator evaluator;
  const SensorSnapshot hot = snapshot({fan(0)}, {sensor("a", 86)});
  EXPECT_TRUE(evaluator.evaluate(plan, hot, at(0)).empty());
  plan.fans = {{0, FanControlModePlan::fixedRPM(3000)}};
  EXPECT_EQ(evaluator.evaluate(plan, hot, at(5)).at(0), FanDecision::target(8000));
}

} // namespace
} // namespace ventolith::core
