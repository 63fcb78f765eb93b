#include "helper/engine/EngineFixture.h"

namespace ventolith::helper {
namespace {

using Log = std::vector<std::string>;

class HoldLoopTest : public EngineTest {
protected:
  void hold(const FanControlPlan& plan) {
    ASSERT_EQ(run(controller->applyPlan(plan)), ControlResult::applied);
    smc.log.clear();
  }
  void passOneRound() { pass(1.5); }
};

TEST_F(HoldLoopTest, EveryRoundAssertsLatchModeTargetAndReadsTheModeBack) {
  hold(fixed({{0, 3000}}));
  pass(1.49);
  EXPECT_TRUE(smc.log.empty());
  pass(0.01);
  EXPECT_EQ(smc.log, (Log{"Ftst=1", "F0Md=1", "F0Tg=3000", "F0Md?"}));
  EXPECT_TRUE(state().isHolding);
}

TEST_F(HoldLoopTest, SilenceOfExactlyTheLimitDoesNotRelease) {
  hold(fixed({{0, 3000}}));
  pass(15); // Ten rounds, the last at exactly 15 seconds.
  EXPECT_TRUE(state().isHolding);
  EXPECT_EQ(smc.count("F0Tg=3000"), 10);
}

TEST_F(HoldLoopTest, TheFirstRoundBeyondTheHeartbeatLimitReleases) {
  hold(fixed({{0, 3000}}));
  pass(15);
  smc.log.clear();
  passOneRound();
  EXPECT_EQ(smc.writes(), (Log{"Ftst=1", "F0Md=0", "Ftst=0"})); // No target in a round that ends in release.
  EXPECT_EQ(lastError(), "no heartbeat for >15s — released to Auto");
  EXPECT_FALSE(state().isHolding);
  EXPECT_TRUE(state().targets.empty());
}

TEST_F(HoldLoopTest, HeartbeatsKeepThePlanAlive) {
  hold(fixed({{0, 3000}}));
  passAlive(120);
  EXPECT_TRUE(state().isHolding);
  EXPECT_EQ(state().lastError, std::nullopt);
}

TEST_F(HoldLoopTest, AfterAReleaseALaterPlanStartsWithAFreshHeartbeat) {
  hold(fixed({{0, 3000}}));
  pass(16.5);
  ASSERT_FALSE(state().isHolding);
  pass(100);
  hold(fixed({{0, 3000}}));
  pass(15);
  EXPECT_TRUE(state().isHolding);
}

TEST_F(HoldLoopTest, TheCeilingIsReachedAtExactlyItsTemperature) {
  hold(fixed({{0, 3000}}));
  sensors.setCelsius(94.99);
  passOneRound();
  EXPECT_TRUE(state().isHolding);
  sensors.setCelsius(95.0);
  passOneRound();
  EXPECT_FALSE(state().isHolding);
  EXPECT_EQ(lastError(), "thermal ceiling 95°C exceeded — released to Auto");
}

TEST_F(HoldLoopTest, TheCeilingsMessageTruncates) {
  hold(fixed({{0, 3000}}));
  sensors.setCelsius(96.7);
  passOneRound();
  EXPECT_EQ(lastError(), "thermal ceiling 96°C exceeded — released to Auto");
}

TEST_F(HoldLoopTest, AHotMachineReportsHeatBeforeALostHeartbeat) {
  hold(fixed({{0, 3000}}));
  pass(15);
  sensors.setCelsius(99);
  passOneRound();
  EXPECT_EQ(lastError(), "thermal ceiling 99°C exceeded — released to Auto");
}

TEST_F(HoldLoopTest, OneSnapshotWithoutTemperaturesOnlyWarns) {
  hold(fixed({{0, 3000}}));
  sensors.setCelsius(std::nullopt);
  passOneRound();
  EXPECT_TRUE(smc.log.empty()); // No pass runs in this round.
  EXPECT_TRUE(state().isHolding);
  EXPECT_EQ(lastError(), "temperature data unavailable (1/2)");
}

TEST_F(HoldLoopTest, TwoSnapshotsWithoutTemperaturesInARowRelease) {
  hold(fixed({{0, 3000}}));
  sensors.setCelsius(std::nullopt);
  pass(3);
  EXPECT_FALSE(state().isHolding);
  EXPECT_EQ(lastError(), "temperature data unavailable — released to Auto");
  EXPECT_EQ(smc.writes(), (Log{"Ftst=1", "F0Md=0", "Ftst=0"}));
}

TEST_F(HoldLoopTest, TemperaturesThatComeBackClearTheCount) {
  hold(fixed({{0, 3000}}));
  for (int time = 0; time < 3; ++time) {
    sensors.setCelsius(std::nullopt);
    passOneRound();
    EXPECT_EQ(lastError(), "temperature data unavailable (1/2)");
    sensors.setCelsius(50);
    passOneRound();
    EXPECT_EQ(lastError(), "none");
    EXPECT_TRUE(state().isHolding);
  }
}

TEST_F(HoldLoopTest, AReleaseClearsTheCountOfMissingTemperatures) {
  hold(fixed({{0, 3000}}));
  sensors.setCelsius(std::nullopt);
  passOneRound();
  run(controller->automatic());
  sensors.setCelsius(50);
  hold(fixed({{0, 3000}}));
  sensors.setCelsius(std::nullopt);
  passOneRound();
  EXPECT_EQ(lastError(), "temperature data unavailable (1/2)");
}

TEST_F(HoldLoopTest, AFanThatTheFirmwareTookBackIsReportedAndReasserted) {
  hold(fixed({{0, 3000}}));
  smc.setNumber("F0Md", 3);
  passOneRound();
  EXPECT_EQ(lastError(), "reclaimed: fan(s) [0] reverted to mode 3");
  EXPECT_FALSE(state().isHolding);
  EXPECT_EQ(state().perFanMode.at(0), ControlMode::manual); // Still claimed.
  smc.setNumber("F0Md", 1);
  smc.log.clear();
  passOneRound();
  EXPECT_EQ(smc.writes(), (Log{"Ftst=1", "F0Md=1", "F0Tg=3000"}));
  EXPECT_TRUE(state().isHolding);
  EXPECT_EQ(lastError(), "none");
}

TEST_F(HoldLoopTest, TwoReclaimedFansAreListedAscending) {
  hold(fixed({{1, 3000}, {0, 3000}}));
  smc.setNumber("F0Md", 3);
  smc.setNumber("F1Md", 3);
  passOneRound();
  EXPECT_EQ(lastError(), "reclaimed: fan(s) [0, 1] reverted to mode 3");
}

TEST_F(HoldLoopTest, AReleaseFailureInAWatchdogReplacesItsMessage) {
  hold(fixed({{0, 3000}, {1, 3000}}));
  smc.refuseForEver("F1Md=0", 5);
  sensors.setCelsius(97);
  passOneRound();
  EXPECT_EQ(lastError(), "failed to restore Auto: F1Md=0 rejected (SMC 0x5)");
  EXPECT_TRUE(state().isHolding); // Fan 1 stays claimed.
  EXPECT_EQ(state().targets, (std::map<FanID, std::int64_t>{{1, 3000}}));
  smc.log.clear();
  pass(2); // The hold loop is gone, the retry loop goes on.
  EXPECT_EQ(smc.writes(), (Log{"Ftst=1", "F1Md=0"}));
}

TEST_F(HoldLoopTest, AfterAWatchdogTheLoopStaysGone) {
  hold(fixed({{0, 3000}}));
  sensors.setCelsius(96);
  passOneRound();
  smc.log.clear();
  pass(60);
  EXPECT_TRUE(smc.log.empty());
  EXPECT_EQ(clock.sleeperCount(), 0U);
}

TEST_F(HoldLoopTest, AWatchdogResetsTheEvaluator) {
  FanControlPlan plan = fixed({{0, 3000}});
  plan.rules.push_back(rule(60, 55, 100));
  hold(plan);
  sensors.setCelsius(200); // Latches the rule only if a pass ran on it; the ceiling comes first.
  passOneRound();
  sensors.setCelsius(57); // Neither fires nor lets go of a latched rule.
  hold(plan);
  EXPECT_EQ(state().targets.at(0), 3000);
}

TEST_F(HoldLoopTest, MonitoredFansThatAreNotClaimedKeepTheLoopRunning) {
  smc.refuseForEver("F0Md=1", 5);
  EXPECT_EQ(run(controller->applyPlan(fixed({{0, 3000}}))), ControlResult::rejected(5));
  run(controller->heartbeat());
  pass(2.5);
  EXPECT_FALSE(state().isHolding);
  EXPECT_EQ(state().lastError, std::nullopt);
  smc.acceptAll();
  pass(2.5); // A later pass claims it.
  EXPECT_TRUE(state().isHolding);
  EXPECT_EQ(state().targets.at(0), 3000);
}

TEST_F(HoldLoopTest, TheLoopEndsWhenThereIsNothingLeftToHold) {
  hold(fixed({{0, 3000}}));
  run(controller->applyPlan(FanControlPlan::allAutomatic));
  smc.log.clear();
  pass(10);
  EXPECT_TRUE(smc.log.empty());
  EXPECT_EQ(clock.sleeperCount(), 0U);
}

TEST_F(HoldLoopTest, AFanThatVanishesFromTheSnapshotIsReleased) {
  hold(fixed({{0, 3000}, {1, 3000}}));
  sensors.next.fans.pop_back();
  passOneRound();
  EXPECT_EQ(smc.log, (Log{"Ftst=1", "F1Md=0", "F0Md=1", "F0Tg=3000", "F0Md?"}));
  EXPECT_EQ(state().perFanMode.count(1), 0U);
}

TEST_F(HoldLoopTest, AnHourOfHoldingLeavesNoSleeperBehind) {
  hold(fixed({{0, 3000}}));
  passAlive(3600);
  EXPECT_EQ(smc.count("F0Tg=3000"), 2400);
  EXPECT_EQ(clock.sleeperCount(), 1U); // The loop's own.
  while (controller->stateStream().tryNext())
    continue;
}

} // namespace
} // namespace ventolith::helper
