// When a fan that is asked for no speed stops, and what wakes it.
#include "core/PlanEvaluator.h"
#include "support/Plans.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace ventolith::core {
namespace {

using support::at;
using support::fan;
using support::percentAsCelsius;
using support::planOf;
using support::sensor;
using support::snapshot;

const FanDecision stopped = FanDecision::idleStopped();
FanDecision running(double percent) {
  return FanDecision::target(2000 + 60 * percent);
}

/// One fan, asked for a percentage a tick.
class OneFan {
public:
  FanDecision ask(double seconds, double percent) {
    return tick(seconds, planOf(FanControlModePlan::fixedPercent(percent)), {});
  }
  FanDecision askByCurve(double seconds, double percent) {
    return tick(seconds, planOf(percentAsCelsius()), {sensor("a", percent)});
  }
  FanDecision tick(double seconds, const FanControlPlan& plan, std::vector<TempSensor> temps = {}) {
    return evaluator.evaluate(plan, snapshot({fan(0)}, std::move(temps)), at(seconds)).at(0);
  }

  /// Stops the fan, in the ten seconds up to this time.
  void stopBy(double seconds) {
    ask(seconds - 10, 0);
    ASSERT_EQ(ask(seconds, 0), stopped);
  }

  PlanEvaluator evaluator;
};

TEST(PlanEvaluatorStop, StopsAfterTenSecondsAndWakesAfterThreeAtThreePercent) {
  EXPECT_EQ(FanStopPolicy::stopDwellSeconds, 10.0);
  EXPECT_EQ(FanStopPolicy::resumePercent, 3.0);
  EXPECT_EQ(FanStopPolicy::resumeDwellSeconds, 3.0);
  EXPECT_EQ(FanStopPolicy::stoppedTargetRPM, 0.0);
}

TEST(PlanEvaluatorStop, RequestOfZeroRunsAtTheMinimumForTenSeconds) {
  OneFan one;
  EXPECT_EQ(one.ask(0, 0), running(0));
  EXPECT_EQ(one.ask(5, 0), running(0));
  EXPECT_EQ(one.ask(9.999, 0), running(0));
  EXPECT_TRUE(one.evaluator.stoppedFans().empty());
  EXPECT_EQ(one.ask(10, 0), stopped);
  EXPECT_EQ(one.evaluator.stoppedFans(), std::set<FanID>{0});
  EXPECT_EQ(one.ask(1000, 0), stopped);
}

TEST(PlanEvaluatorStop, CurveStopsLikeAFixedPercentage) {
  OneFan one;
  EXPECT_EQ(one.askByCurve(0, 0), running(0));
  EXPECT_EQ(one.askByCurve(9.9, 0), running(0));
  EXPECT_EQ(one.askByCurve(10, 0), stopped);
}

TEST(PlanEvaluatorStop, NegativePercentageIsARequestOfZero) {
  OneFan one;
  EXPECT_EQ(one.ask(0, -5), running(0));
  EXPECT_EQ(one.ask(10, -5), stopped);
}

TEST(PlanEvaluatorStop, AnyRequestAboveZeroStartsTheDwellAnew) {
  OneFan one;
  one.ask(0, 0);
  EXPECT_EQ(one.ask(9, 0.1), running(0.1));
  EXPECT_EQ(one.ask(10, 0), running(0));
  EXPECT_EQ(one.ask(19.9, 0), running(0));
  EXPECT_EQ(one.ask(20, 0), stopped);
}

TEST(PlanEvaluatorStop, RunningFanIsGivenAWeakRequest) {
  OneFan one;
  EXPECT_EQ(one.ask(0, 1), running(1));
  EXPECT_EQ(one.ask(100, 1), running(1));
}

TEST(PlanEvaluatorStop, FixedRPMNeverStopsAFan) {
  OneFan one;
  const FanControlPlan still = planOf(FanControlModePlan::fixedRPM(0));
  EXPECT_EQ(one.tick(0, still), running(0));
  EXPECT_EQ(one.tick(1e6, still), running(0));
}

TEST(PlanEvaluatorStop, StoppedFanIgnoresAWeakRequestForEver) {
  OneFan one;
  one.stopBy(10);
  for (const double percent : {2.0, 0.001, 2.999}) {
    EXPECT_EQ(one.askByCurve(11, percent), stopped);
    EXPECT_EQ(one.askByCurve(1000, percent), stopped);
  }
}

TEST(PlanEvaluatorStop, StoppedFanWakesAfterThreeSecondsOfThreePercent) {
  OneFan one;
  one.stopBy(10);
  EXPECT_EQ(one.askByCurve(11, 3), stopped);
  EXPECT_EQ(one.askByCurve(13.9, 3), stopped);
  EXPECT_EQ(one.askByCurve(14, 3), running(3));
  EXPECT_TRUE(one.evaluator.stoppedFans().empty());
}

TEST(PlanEvaluatorStop, WeakRequestStartsTheWakingAnew) {
  OneFan one;
  one.stopBy(10);
  one.ask(11, 50);
  EXPECT_EQ(one.ask(13, 2), stopped);
  EXPECT_EQ(one.ask(14, 50), stopped);
  EXPECT_EQ(one.ask(16.9, 50), stopped);
  EXPECT_EQ(one.ask(17, 50), running(50));
}

TEST(PlanEvaluatorStop, RequestOfZeroStartsTheWakingAnew) {
  OneFan one;
  one.stopBy(10);
  one.ask(11, 50);
  EXPECT_EQ(one.ask(13, 0), stopped);
  EXPECT_EQ(one.ask(14, 50), stopped);
  EXPECT_EQ(one.ask(17, 50), running(50));
}

TEST(PlanEvaluatorStop, FanThatWokeStopsOnlyAfterAFullDwell) {
  OneFan one;
  one.stopBy(10);
  one.ask(11, 50);
  EXPECT_EQ(one.ask(14, 50), running(50));
  EXPECT_EQ(one.ask(15, 0), running(0));
  EXPECT_EQ(one.ask(24.9, 0), running(0));
  EXPECT_EQ(one.ask(25, 0), stopped);
}

TEST(PlanEvaluatorStop, WakingFanHasNoSlewLimit) {
  OneFan one;
  FanControlPlan slow = planOf(percentAsCelsius());
  slow.tuning.maxDeltaRPMPerTick = 10;
  one.tick(0, slow, {sensor("a", 0)});
  EXPECT_EQ(one.tick(10, slow, {sensor("a", 0)}), stopped);
  EXPECT_TRUE(one.evaluator.lastTargetByFan().empty());
  one.tick(11, slow, {sensor("a", 90)});
  EXPECT_EQ(one.tick(14, slow, {sensor("a", 90)}), running(90));
}

TEST(PlanEvaluatorStop, FixedRPMWakesAStoppedFanAtOnce) {
  OneFan one;
  one.stopBy(10);
  EXPECT_EQ(one.tick(11, planOf(FanControlModePlan::fixedRPM(0))), running(0));
  EXPECT_TRUE(one.evaluator.stoppedFans().empty());
}

TEST(PlanEvaluatorStop, AutomaticClearsTheStop) {
  OneFan one;
  one.stopBy(10);
  EXPECT_EQ(one.tick(11, planOf(FanControlModePlan::automatic())), FanDecision::releaseToAuto());
  EXPECT_TRUE(one.evaluator.stoppedFans().empty());
  EXPECT_EQ(one.ask(12, 1), running(1));
}

TEST(PlanEvaluatorStop, CurveWithoutTemperatureClearsTheStop) {
  OneFan one;
  one.stopBy(10);
  EXPECT_EQ(one.tick(11, planOf(percentAsCelsius())), FanDecision::releaseToAuto());
  EXPECT_TRUE(one.evaluator.stoppedFans().empty());
}

TEST(PlanEvaluatorStop, FixedSpeedAutomaticAndMissingTemperatureEndTheDwell) {
  const FanControlPlan interruptions[] = {planOf(FanControlModePlan::fixedRPM(0)),
                                          planOf(FanControlModePlan::automatic()),
                                          planOf(percentAsCelsius())};
  for (const FanControlPlan& interruption : interruptions) {
    OneFan one;
    one.ask(0, 0);
    one.tick(5, interruption);
    EXPECT_EQ(one.ask(10, 0), running(0));
    EXPECT_EQ(one.ask(20, 0), stopped);
  }
}

TEST(PlanEvaluatorStop, FixedSpeedAutomaticAndMissingTemperatureEndTheWaking) {
  const FanControlPlan interruptions[] = {planOf(FanControlModePlan::fixedRPM(0)),
                                          planOf(FanControlModePlan::automatic()),
                                          planOf(percentAsCelsius())};
  for (const FanControlPlan& interruption : interruptions) {
    OneFan one;
    one.stopBy(10);
    one.ask(11, 50);
    one.tick(12, interruption);
    one.evaluator.setStoppedFans({0}); // The waking begins at its first second again.
    EXPECT_EQ(one.ask(14, 50), stopped);
    EXPECT_EQ(one.ask(17, 50), running(50));
  }
}

TEST(PlanEvaluatorStop, WakingIsNotForgottenWhileTheFanRuns) {
  OneFan one;
  one.stopBy(10);
  one.ask(11, 50);
  one.evaluator.setStoppedFans({});
  EXPECT_EQ(one.ask(12, 50), running(50));
  one.evaluator.setStoppedFans({0});
  EXPECT_EQ(one.ask(14, 50), running(50)); // Three seconds since 11.
}

TEST(PlanEvaluatorStop, StopCarriesOverToANewPlan) {
  OneFan one;
  one.stopBy(10);
  EXPECT_EQ(one.askByCurve(11, 0), stopped);
  EXPECT_EQ(one.askByCurve(12, 2), stopped);
}

TEST(PlanEvaluatorStop, FanThatIsGoneForATickStaysStopped) {
  OneFan one;
  one.stopBy(10);
  const auto decisions =
      one.evaluator.evaluate(planOf(FanControlModePlan::fixedPercent(0)), snapshot({}), at(11));
  EXPECT_TRUE(decisions.empty());
  EXPECT_EQ(one.evaluator.stoppedFans(), std::set<FanID>{0});
  EXPECT_EQ(one.ask(12, 0), stopped);
}

TEST(PlanEvaluatorStop, StoppedFansCanBeSetFromOutside) {
  OneFan one;
  one.evaluator.setStoppedFans({0, 3});
  EXPECT_EQ(one.ask(0, 0), stopped); // Without a dwell of its own.
  EXPECT_EQ(one.evaluator.stoppedFans(), (std::set<FanID>{0, 3}));
}

TEST(PlanEvaluatorStop, FansStopApart) {
  PlanEvaluator evaluator;
  const auto zero = FanControlModePlan::fixedPercent(0);
  const auto half = FanControlModePlan::fixedPercent(50);
  evaluator.evaluate(support::plan({{0, zero}, {1, half}}), snapshot({fan(0), fan(1)}), at(0));
  evaluator.evaluate(support::plan({{0, zero}, {1, zero}}), snapshot({fan(0), fan(1)}), at(5));
  EXPECT_EQ(evaluator.evaluate(support::plan({{0, zero}, {1, zero}}), snapshot({fan(0), fan(1)}), at(10)),
            (FanDecisions{{0, stopped}, {1, running(0)}}));
}

TEST(PlanEvaluatorStop, ResetForgetsStopDwellAndWaking) {
  OneFan one;
  one.stopBy(10);
  one.evaluator.reset();
  EXPECT_TRUE(one.evaluator.stoppedFans().empty());
  EXPECT_EQ(one.ask(11, 0), running(0));
  one.evaluator.reset();
  EXPECT_EQ(one.ask(21, 0), running(0));
  EXPECT_EQ(one.ask(31, 0), stopped);
}

} // namespace
} // namespace ventolith::core
