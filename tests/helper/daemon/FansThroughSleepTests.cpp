// What becomes of a plan when the machine sleeps.
#include "helper/daemon/EngineHouse.h"
#include "helper/daemon/FansThroughSleep.h"

namespace ventolith::helper {

using Lines = std::vector<std::string>;

class FansThroughSleepTest : public EngineHouse {
protected:
  void sleep() { run(fans.willSleep()); }
  void wake() {
    fans.didWake();
    time.clock.settle();
  }
  void heartbeat() {
    run(fans.heartbeat());
    time.clock.settle();
  }
  [[nodiscard]] std::map<FanID, std::int64_t> held() const { return engine.currentState().targets; }
  using Held = std::map<FanID, std::int64_t>;

  FansThroughSleep fans{time.executor(), time.clock, engine, log};
};

TEST_F(FansThroughSleepTest, AwakeCommandsArePassedOn) {
  EXPECT_EQ(run(fans.applyPlan(fixed({{0, 3000}}))), ControlResult::applied);
  EXPECT_EQ(run(fans.setPercent(1, 50)), ControlResult::applied);
  EXPECT_EQ(held(), (Held{{0, 3000}, {1, 5000}}));
  EXPECT_EQ(run(fans.fullBlast()), ControlResult::applied);
  EXPECT_EQ(held(), (Held{{0, 8000}, {1, 8000}}));
  EXPECT_EQ(run(fans.automatic()), ControlResult::applied);
  EXPECT_EQ(held(), Held());
}

TEST_F(FansThroughSleepTest, EveryFanIsBackBeforeSleep) {
  run(fans.applyPlan(fixed({{0, 3000}, {1, 3000}})));
  sleep();
  EXPECT_TRUE(engine.isAtRest());
  EXPECT_EQ(smc().log.back(), "Ftst=0");
  EXPECT_TRUE(isIdle());
}

TEST_F(FansThroughSleepTest, AHeartbeatAfterSleepBringsThePlanBack) {
  run(fans.applyPlan(fixed({{0, 3000}})));
  sleep();
  wake();
  heartbeat();
  EXPECT_EQ(held(), (Held{{0, 3000}}));
  EXPECT_TRUE(engine.currentState().isHolding);
}

TEST_F(FansThroughSleepTest, WakingUpAloneTakesNoFan) {
  run(fans.applyPlan(fixed({{0, 3000}})));
  sleep();
  smc().log.clear();
  wake();
  pass(14);
  EXPECT_TRUE(smc().writes().empty());
}

TEST_F(FansThroughSleepTest, AHeartbeatBeforeTheLimitIsEarlyEnough) {
  run(fans.applyPlan(fixed({{0, 3000}})));
  sleep();
  wake();
  pass(14.9);
  heartbeat();
  EXPECT_EQ(held(), (Held{{0, 3000}}));
}

TEST_F(FansThroughSleepTest, WithoutAHeartbeatThePlanIsForgotten) {
  run(fans.applyPlan(fixed({{0, 3000}})));
  sleep();
  wake();
  pass(15.1);
  EXPECT_TRUE(isIdle());
  heartbeat();
  pass(5);
  EXPECT_EQ(held(), Held());
  EXPECT_EQ(log.notes.back(), "the heartbeat is gone since the machine slept: its plan is forgotten");
}

TEST_F(FansThroughSleepTest, AHeartbeatWhileTheMachineGoesToSleepBringsNothingBack) {
  run(fans.applyPlan(fixed({{0, 3000}})));
  sleep();
  heartbeat();
  EXPECT_EQ(held(), Held());
}

TEST_F(FansThroughSleepTest, NothingHeldIsNothingToGiveBackAndNothingToWaitFor) {
  sleep();
  wake();
  EXPECT_TRUE(smc().writes().empty());
  EXPECT_TRUE(isIdle());
  EXPECT_EQ(run(fans.applyPlan(fixed({{0, 3000}}))), ControlResult::applied);
}

TEST_F(FansThroughSleepTest, ACommandDuringSleepIsCarriedOutAfterIt) {
  run(fans.applyPlan(fixed({{0, 3000}})));
  sleep();
  smc().log.clear();
  EXPECT_EQ(run(fans.setManual(1, 4000)), ControlResult::acquiring);
  EXPECT_TRUE(smc().log.empty());
  wake();
  heartbeat();
  EXPECT_EQ(held(), (Held{{0, 3000}, {1, 4000}}));
}

TEST_F(FansThroughSleepTest, FullBlastDuringSleepIsCarriedOutAfterIt) {
  sleep();
  EXPECT_EQ(run(fans.fullBlast()), ControlResult::acquiring);
  EXPECT_EQ(run(fans.setPercent(1, 50)), ControlResult::acquiring);
  wake();
  heartbeat();
  EXPECT_EQ(held(), (Held{{0, 8000}, {1, 5000}}));
}

TEST_F(FansThroughSleepTest, APlanDuringSleepTakesThePlaceOfTheOneFromBefore) {
  run(fans.applyPlan(fixed({{0, 3000}})));
  sleep();
  EXPECT_EQ(run(fans.applyPlan(fixed({{1, 4000}}))), ControlResult::acquiring);
  wake();
  heartbeat();
  EXPECT_EQ(held(), (Held{{1, 4000}}));
  EXPECT_EQ(smc().count("F0Md=1"), 2); // Before sleep: the claim, and the pass.
}

TEST_F(FansThroughSleepTest, ACommandToLetGoDuringSleepForgetsThePlan) {
  const std::vector<std::function<void()>> commands = {[this] { run(fans.automatic()); },
                                                       [this] { run(fans.restoreAuto()); }};
  for (const auto& letGo : commands) {
    run(fans.applyPlan(fixed({{0, 3000}})));
    sleep();
    letGo();
    wake();
    heartbeat();
    EXPECT_EQ(held(), Held());
    EXPECT_TRUE(isIdle());
  }
}

TEST_F(FansThroughSleepTest, ACommandToLetGoAfterSleepForgetsThePlan) {
  run(fans.applyPlan(fixed({{0, 3000}})));
  sleep();
  wake();
  EXPECT_EQ(run(fans.automatic()), ControlResult::applied);
  heartbeat();
  EXPECT_EQ(held(), Held());
  EXPECT_TRUE(isIdle());
}

TEST_F(FansThroughSleepTest, ACommandAfterSleepBringsThePlanBackAndIsCarriedOutAfterIt) {
  run(fans.applyPlan(fixed({{0, 3000}})));
  sleep();
  wake();
  EXPECT_EQ(run(fans.setManual(1, 4000)), ControlResult::acquiring);
  time.clock.settle();
  EXPECT_EQ(held(), (Held{{0, 3000}, {1, 4000}}));
}

TEST_F(FansThroughSleepTest, APlanAfterSleepIsAllThereIs) {
  run(fans.applyPlan(fixed({{0, 3000}})));
  sleep();
  wake();
  EXPECT_EQ(run(fans.applyPlan(fixed({{1, 4000}}))), ControlResult::applied);
  heartbeat();
  EXPECT_EQ(held(), (Held{{1, 4000}}));
}

TEST_F(FansThroughSleepTest, AReleaseWhileThePlanComesBackHasTheLastWord) {
  run(fans.applyPlan(fixed({{0, 3000}})));
  sleep();
  run(fans.setManual(1, 4000));
  wake();
  smc().refuseForEver("F0Md=1", 0x82);
  heartbeat();
  pass(1);
  run(fans.automatic());
  smc().acceptAll();
  pass(30);
  EXPECT_EQ(held(), Held());
  EXPECT_TRUE(isIdle());
}

TEST_F(FansThroughSleepTest, SleepWhileAFanIsBeingTakenIsNoReasonToForgetThePlan) {
  smc().refuseForEver("F0Md=1", 0x82);
  const auto claim = begin(fans.applyPlan(fixed({{0, 3000}})));
  pass(1);
  sleep();
  EXPECT_EQ(*claim, ControlResult::acquiring);
  EXPECT_TRUE(isIdle());
  smc().acceptAll();
  wake();
  heartbeat();
  EXPECT_EQ(held(), (Held{{0, 3000}}));
}

TEST_F(FansThroughSleepTest, SleepWhileAFullBlastCountsTheFansIsNoReasonToForgetIt) {
  hanging.turnsPerRead = 20;
  std::optional<ControlResult> blast;
  const auto blow = [&]() -> Async<void> { blast = co_await fans.fullBlast(); };
  runtime::start(time.executor(), "full blast", blow());
  runtime::start(time.executor(), "sleep", fans.willSleep());
  pass(1);
  EXPECT_EQ(blast, ControlResult::acquiring);
  EXPECT_TRUE(isIdle());
  wake();
  heartbeat();
  EXPECT_EQ(held(), (Held{{0, 8000}, {1, 8000}}));
}

TEST_F(FansThroughSleepTest, AnotherSleepBeforeTheHeartbeatKeepsThePlan) {
  run(fans.applyPlan(fixed({{0, 3000}})));
  sleep();
  wake();
  pass(10);
  sleep();
  pass(100);
  wake();
  pass(10);
  heartbeat();
  EXPECT_EQ(held(), (Held{{0, 3000}}));
}

TEST_F(FansThroughSleepTest, AFanThatRefusesHoldsUpSleepForFourSecondsAndThatIsSaid) {
  run(fans.applyPlan(fixed({{0, 3000}})));
  smc().refuseForEver("F0Md=0", 5);
  const auto start = time.clock.now();
  sleep();
  EXPECT_LE(time.clock.now() - start, std::chrono::milliseconds(4500));
  EXPECT_GE(time.clock.now() - start, FansThroughSleep::mostDelayOfSleep);
  ASSERT_EQ(log.warnings.size(), 1U);
  EXPECT_NE(log.warnings[0].find("F0Md=0 rejected (SMC 0x5)"), std::string::npos) << log.warnings[0];
}

TEST_F(FansThroughSleepTest, AFanThatGivesInWithinThatTimeIsBackBeforeSleep) {
  run(fans.applyPlan(fixed({{0, 3000}})));
  smc().refuse("F0Md=0", {5});
  sleep();
  EXPECT_TRUE(engine.isAtRest());
  EXPECT_TRUE(log.warnings.empty());
}

TEST_F(FansThroughSleepTest, AFailureToBringThePlanBackIsSaid) {
  run(fans.applyPlan(fixed({{0, 3000}})));
  sleep();
  wake();
  smc().refuseForEver("F0Md=1", 5);
  heartbeat();
  pass(2);
  EXPECT_EQ(log.warnings, Lines{"after sleep: rejected(code: 5)"});
}

TEST_F(FansThroughSleepTest, TooManyCommandsDuringSleepFail) {
  sleep();
  for (FanID fan = 0; fan < static_cast<FanID>(RememberedCommands::most); ++fan)
    EXPECT_EQ(run(fans.setManual(fan, 3000)), ControlResult::acquiring);
  EXPECT_EQ(run(fans.setManual(-1, 3000)), ControlResult::failed("too many commands wait for the fans"));
  EXPECT_EQ(run(fans.setManual(0, 4000)), ControlResult::acquiring); // In place of the one before.
}

TEST_F(FansThroughSleepTest, AHelperThatEndsForgetsThePlan) {
  run(fans.applyPlan(fixed({{0, 3000}})));
  sleep();
  wake();
  EXPECT_EQ(run(fans.giveEveryFanBack()), std::nullopt);
  heartbeat();
  EXPECT_EQ(held(), Held());
}

} // namespace ventolith::helper
