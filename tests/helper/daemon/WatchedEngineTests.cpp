// When the helper is watched, what counts as a sign of life, and how fans go back for good.
#include "helper/daemon/EngineHouse.h"

namespace ventolith::helper {

using WatchedEngineTest = EngineHouse;

TEST_F(WatchedEngineTest, IsNotWatchedAndWaitsForNothingWhileNothingIsHeld) {
  EXPECT_EQ(run(engine.recover()), std::nullopt);
  EXPECT_TRUE(isIdle());
}

TEST_F(WatchedEngineTest, IsWatchedWhileAPlanIsHeldAndEachRoundIsASignOfLife) {
  run(engine.applyPlan(fixed({{0, 3000}})));
  EXPECT_TRUE(supervisor.isWatched);
  passAlive(15);
  EXPECT_EQ(supervisor.signs, 10);
  EXPECT_EQ(supervisor.timesWatched, 1);
}

TEST_F(WatchedEngineTest, AReleaseEndsTheWatch) {
  run(engine.applyPlan(fixed({{0, 3000}})));
  passAlive(5);
  run(engine.automatic());
  pass(0);
  EXPECT_TRUE(isIdle());
}

TEST_F(WatchedEngineTest, AReleaseByAWatchdogEndsTheWatch) {
  run(engine.applyPlan(fixed({{0, 3000}})));
  pass(20);
  EXPECT_FALSE(engine.currentState().isHolding);
  EXPECT_TRUE(isIdle());
}

TEST_F(WatchedEngineTest, AClaimThatHangsGivesNoFurtherSign) {
  hanging.hangs = true;
  begin(engine.applyPlan(fixed({{0, 3000}})));
  pass(2); // The first round beside it begins, and goes nowhere.
  const int signs = supervisor.signs;
  pass(60);
  EXPECT_TRUE(supervisor.isWatched);
  EXPECT_EQ(supervisor.signs, signs);
}

TEST_F(WatchedEngineTest, AReleaseThatHangsGivesNoSignOfLife) {
  run(engine.recover());
  hanging.hangs = true;
  begin(engine.automatic());
  pass(60);
  EXPECT_TRUE(supervisor.isWatched);
  EXPECT_EQ(supervisor.signs, 0);
}

TEST_F(WatchedEngineTest, AHoldLoopThatHangsGivesNoFurtherSign) {
  run(engine.applyPlan(fixed({{0, 3000}})));
  passAlive(10);
  hanging.hangs = true;
  passAlive(2); // One more round begins, and goes nowhere.
  const int signs = supervisor.signs;
  passAlive(60);
  EXPECT_EQ(supervisor.signs, signs);
  EXPECT_TRUE(supervisor.isWatched);
}

TEST_F(WatchedEngineTest, AClaimThatGoesOnGivesASignOncePerSecond) {
  smc().refuseForEver("F0Md=1", 0x82);
  begin(engine.applyPlan(fixed({{0, 3000}})));
  pass(9.95);
  EXPECT_EQ(supervisor.signs, 9);
}

TEST_F(WatchedEngineTest, IsWatchedUntilAFanThatRefusesIsBack) {
  run(engine.applyPlan(fixed({{0, 3000}})));
  smc().refuseForEver("F0Md=0", 5);
  run(engine.automatic());
  pass(60);
  EXPECT_TRUE(supervisor.isWatched);
  EXPECT_GE(supervisor.signs, 29);
  smc().acceptAll();
  pass(4);
  EXPECT_TRUE(isIdle());
}

TEST_F(WatchedEngineTest, AFanThatWentBackAtLastIsReportedSoAndTheLatchIsCleared) {
  run(engine.applyPlan(fixed({{0, 3000}})));
  smc().refuseForEver("F0Md=0", 5);
  run(engine.automatic());
  EXPECT_FALSE(engine.currentState().perFanMode.empty());
  smc().acceptAll();
  pass(6);
  EXPECT_TRUE(engine.currentState().perFanMode.empty());
  EXPECT_FALSE(engine.currentState().isHolding);
  EXPECT_EQ(engine.currentState().lastError, std::nullopt);
  EXPECT_EQ(smc().writes().back(), "Ftst=0");
  EXPECT_TRUE(isIdle());
}

TEST_F(WatchedEngineTest, IsWatchedUntilAFanThatFellOutOfAPlanIsBack) {
  run(engine.applyPlan(fixed({{0, 3000}})));
  smc().refuseForEver("F0Md=0", 5);
  run(engine.applyPlan(FanControlPlan()));
  EXPECT_TRUE(supervisor.isWatched);
  smc().acceptAll();
  pass(6);
  EXPECT_TRUE(isIdle());
}

TEST_F(WatchedEngineTest, APlanOfRulesAloneIsNotWatched) {
  FanControlPlan plan;
  plan.rules.emplace_back();
  run(engine.applyPlan(plan));
  EXPECT_TRUE(isIdle());
}

TEST_F(WatchedEngineTest, AnotherPlanRightAfterAReleaseIsWatchedAgain) {
  run(engine.applyPlan(fixed({{0, 3000}})));
  begin(engine.automatic());
  begin(engine.applyPlan(fixed({{1, 3000}})));
  passAlive(5);
  EXPECT_TRUE(supervisor.isWatched);
  pass(20);
  EXPECT_TRUE(isIdle());
}

TEST_F(WatchedEngineTest, ARecoveryThatFailsIsTriedEveryTwoSecondsUntilItSucceeds) {
  smc().unreadable = {"FNum"};
  EXPECT_EQ(run(engine.recover()), "could not read FNum during startup recovery");
  EXPECT_FALSE(engine.isAtRest());
  pass(60);
  EXPECT_TRUE(supervisor.isWatched);
  EXPECT_EQ(supervisor.signs, 30);
  EXPECT_TRUE(smc().writes().empty());
  smc().unreadable.clear();
  pass(2);
  EXPECT_EQ(smc().writes(), (std::vector<std::string>{"Ftst=1", "F0Md=0", "F1Md=0", "Ftst=0"}));
  EXPECT_TRUE(isIdle());
}

TEST_F(WatchedEngineTest, AFanWhoseModeKeyDidNotReadIsGivenBackWhenItDoes) {
  smc().unreadable = {"F1Md"};
  EXPECT_NE(run(engine.recover()), std::nullopt);
  smc().log.clear();
  smc().unreadable.clear();
  pass(2);
  EXPECT_EQ(smc().count("F1Md=0"), 1);
  EXPECT_TRUE(isIdle());
}

TEST_F(WatchedEngineTest, ARecoveryThatIsTriedAgainLeavesThePlanOfAClientAlone) {
  smc().unreadable = {"F1Md"};
  run(engine.recover());
  run(engine.applyPlan(fixed({{0, 3000}})));
  smc().log.clear();
  smc().unreadable.clear();
  passAlive(5);
  EXPECT_EQ(smc().count("F1Md=0"), 1);
  EXPECT_EQ(smc().count("F0Md=0"), 0);
  EXPECT_EQ(engine.currentState().targets, (std::map<FanID, std::int64_t>{{0, 3000}}));
}

TEST_F(WatchedEngineTest, AMachineWithoutFansIsRecovered) {
  smc().values.clear();
  EXPECT_EQ(run(engine.recover()), std::nullopt);
  EXPECT_TRUE(smc().writes().empty());
  EXPECT_TRUE(isIdle());
}

TEST_F(WatchedEngineTest, GivingEveryFanBackIncludesARecoveryThatHasNotSucceeded) {
  smc().unreadable = {"FNum"};
  run(engine.recover());
  smc().unreadable.clear();
  EXPECT_EQ(run(engine.giveEveryFanBack()), std::nullopt);
  EXPECT_EQ(smc().count("F0Md=0"), 1);
  EXPECT_TRUE(engine.isAtRest());
}

TEST_F(WatchedEngineTest, ARecoveryThatNeverSucceedsIsToldAtTheEnd) {
  smc().unreadable = {"FNum"};
  run(engine.recover());
  EXPECT_EQ(run(engine.giveEveryFanBack()), "could not read FNum during startup recovery");
}

TEST_F(WatchedEngineTest, KeepsTheStreamOfStatesShort) {
  run(engine.applyPlan(fixed({{0, 3000}})));
  passAlive(150);
  EXPECT_EQ(engine.stateStream().tryNext(), std::nullopt);
  EXPECT_TRUE(engine.currentState().isHolding);
}

TEST_F(WatchedEngineTest, GivesEveryFanBackAndIsAtRestThen) {
  run(engine.applyPlan(fixed({{0, 3000}, {1, 4000}})));
  EXPECT_EQ(run(engine.giveEveryFanBack()), std::nullopt);
  EXPECT_TRUE(engine.isAtRest());
  EXPECT_TRUE(log.warnings.empty());
}

TEST_F(WatchedEngineTest, WhereNothingIsHeldNothingIsWritten) {
  EXPECT_EQ(run(engine.giveEveryFanBack()), std::nullopt);
  EXPECT_TRUE(smc().writes().empty());
}

TEST_F(WatchedEngineTest, TriesFiveTimesTwoSecondsApartToGiveAFanBack) {
  run(engine.applyPlan(fixed({{0, 3000}})));
  smc().refuseForEver("F0Md=0", 5);
  const auto start = time.clock.now();
  EXPECT_EQ(run(engine.giveEveryFanBack()), "failed to restore Auto: F0Md=0 rejected (SMC 0x5)");
  EXPECT_EQ(time.clock.now() - start, 4 * WatchedEngine::giveBackInterval);
  EXPECT_EQ(log.warnings.size(), 4U);
}

TEST_F(WatchedEngineTest, AFanThatGivesInIsBack) {
  run(engine.applyPlan(fixed({{0, 3000}})));
  smc().refuse("F0Md=0", {5, 5});
  EXPECT_EQ(run(engine.giveEveryFanBack()), std::nullopt);
}

TEST_F(WatchedEngineTest, AClaimHasStoodDownWhenEveryFanIsBack) {
  smc().refuseForEver("F0Md=1", 0x82);
  const auto claim = begin(engine.applyPlan(fixed({{0, 3000}})));
  pass(3);
  EXPECT_EQ(run(engine.giveEveryFanBack()), std::nullopt);
  EXPECT_EQ(*claim, ControlResult::reclaimed);
}

TEST_F(WatchedEngineTest, AFullBlastThatIsOvertakenHoldsNothingInTheEnd) {
  begin(engine.setManual(0, 3000));
  boost::asio::co_spawn(time.executor(), engine.fullBlast(), [](const std::exception_ptr&, ControlResult) {});
  EXPECT_EQ(run(engine.giveEveryFanBack()), std::nullopt);
  EXPECT_TRUE(engine.isAtRest());
  smc().log.clear();
  pass(30);
  EXPECT_TRUE(smc().writes().empty());
}

TEST_F(WatchedEngineTest, WithoutPrivilegeNothingWasTakenAndNothingHasToGoBack) {
  privileges.isRoot = false;
  EXPECT_EQ(run(engine.giveEveryFanBack()), std::nullopt);
  EXPECT_TRUE(smc().writes().empty());
}

TEST_F(WatchedEngineTest, FansAreTriedToBeGivenBackThoughThePrivilegeWasLost) {
  run(engine.applyPlan(fixed({{0, 3000}})));
  privileges.isRoot = false;
  EXPECT_EQ(run(engine.giveEveryFanBack()), std::nullopt);
  EXPECT_EQ(smc().log.back(), "Ftst=0");
}

TEST_F(WatchedEngineTest, WhatKeepsAFanFromGoingBackWithoutThePrivilegeIsTold) {
  run(engine.applyPlan(fixed({{0, 3000}})));
  privileges.isRoot = false;
  smc().refuseForEver("F0Md=0", 5);
  EXPECT_EQ(run(engine.giveEveryFanBack()), "failed to restore Auto: F0Md=0 rejected (SMC 0x5)");
}

class UnsupervisedEngineTest : public EngineHouse {
protected:
  WatchedEngine unsupervised{time.executor(), time.clock, hanging, sensors, privileges, supervisor, log};

  ~UnsupervisedEngineTest() override {
    smc().acceptAll();
    run(unsupervised.restoreAuto());
  }
};

TEST_F(UnsupervisedEngineTest, WhatTheStartHasLeftIsWatchedFromWhenSupervisionBegins) {
  smc().refuseForEver("F0Md=0", 5);
  run(unsupervised.recover());
  EXPECT_FALSE(supervisor.isWatched);
  unsupervised.beginSupervision();
  EXPECT_TRUE(supervisor.isWatched);
}

} // namespace ventolith::helper
