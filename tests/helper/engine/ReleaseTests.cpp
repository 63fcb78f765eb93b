#include "helper/engine/EngineFixture.h"

namespace ventolith::helper {
namespace {

using Log = std::vector<std::string>;

class ReleaseTest : public EngineTest {
protected:
  void holdBoth() {
    ASSERT_EQ(run(controller->applyPlan(fixed({{0, 3000}, {1, 4000}}))), ControlResult::applied);
    smc.log.clear();
  }
};

TEST_F(ReleaseTest, WithoutKnownModeKeysOnlyTheLatchIsWritten) {
  EXPECT_EQ(run(controller->automatic()), ControlResult::applied);
  EXPECT_EQ(smc.log, (Log{"Ftst=1", "Ftst=0"}));
}

TEST_F(ReleaseTest, AutomaticGivesEveryFanBackAndClearsTheLatchLast) {
  holdBoth();
  EXPECT_EQ(run(controller->automatic()), ControlResult::applied);
  EXPECT_EQ(smc.log, (Log{"Ftst=1", "F0Md=0", "F1Md=0", "Ftst=0"}));
  EXPECT_EQ(state(), ControlState::idle);
}

TEST_F(ReleaseTest, AKnownFanIsGivenBackThoughItIsNotClaimed) {
  holdBoth();
  run(controller->automatic());
  smc.log.clear();
  run(controller->automatic());
  EXPECT_EQ(smc.log, (Log{"Ftst=1", "F0Md=0", "F1Md=0", "Ftst=0"}));
}

TEST_F(ReleaseTest, ARefusalOfOneFanReleasesTheOther) {
  holdBoth();
  smc.refuseForEver("F0Md=0", 0x85);
  EXPECT_EQ(run(controller->automatic()),
            ControlResult::failed("failed to restore Auto: F0Md=0 rejected (SMC 0x85)"));
  EXPECT_EQ(smc.log, (Log{"Ftst=1", "F0Md=0", "F1Md=0"})); // The latch stays set for the retry.
  EXPECT_EQ(state().perFanMode, (std::map<FanID, ControlMode>{{0, ControlMode::manual}}));
  EXPECT_EQ(state().targets, (std::map<FanID, std::int64_t>{{0, 3000}}));
  EXPECT_TRUE(state().isHolding);
}

TEST_F(ReleaseTest, HexadecimalHasNoLeadingZeros) {
  holdBoth();
  smc.refuseForEver("F0Md=0", 5);
  EXPECT_EQ(run(controller->automatic()),
            ControlResult::failed("failed to restore Auto: F0Md=0 rejected (SMC 0x5)"));
}

TEST_F(ReleaseTest, ADriverFailureCarriesTheErrorsText) {
  holdBoth();
  smc.failForEver("F0Md=0");
  EXPECT_EQ(run(controller->automatic()),
            ControlResult::failed("failed to restore Auto: F0Md=0 failed (IOConnectCallStructMethod failed: "
                                  "kern_return_t=0xe00002bc)"));
}

TEST_F(ReleaseTest, SeveralFailuresAreJoinedInTheOrderTheyHappened) {
  holdBoth();
  smc.answer = [](const std::string& write) {
    if (write == "F0Md=0") return Written(std::uint8_t{5});
    return write == "F1Md=0" ? Written(driverError) : Written(std::uint8_t{0});
  };
  EXPECT_EQ(run(controller->automatic()),
            ControlResult::failed("failed to restore Auto: F0Md=0 rejected (SMC 0x5); F1Md=0 failed "
                                  "(IOConnectCallStructMethod failed: kern_return_t=0xe00002bc)"));
}

TEST_F(ReleaseTest, ALatchThatRefusesIsAFailureWithoutPendingFans) {
  holdBoth();
  smc.refuseForEver("Ftst=0", 0x10);
  EXPECT_EQ(run(controller->automatic()),
            ControlResult::failed("failed to restore Auto: Ftst=0 rejected (SMC 0x10)"));
  EXPECT_FALSE(state().isHolding);
  EXPECT_TRUE(state().perFanMode.empty());
}

TEST_F(ReleaseTest, AMachineWithoutALatchHasNoneToClear) {
  smc.haveNoLatch();
  holdBoth();
  EXPECT_EQ(run(controller->automatic()), ControlResult::applied);
  EXPECT_EQ(state(), ControlState::idle);
  EXPECT_TRUE(controller->isAtRest());
}

TEST_F(ReleaseTest, ACommandOnAMachineWithoutFansLeavesNothingToRetry) {
  smc.values.clear();
  smc.haveNoLatch();
  sensors.next = {};
  EXPECT_EQ(run(controller->setManual(0, 3000)),
            ControlResult::failed("neither F<n>Md nor F<n>md exists on this machine"));
  pass(10);
  EXPECT_TRUE(controller->isAtRest());
  EXPECT_EQ(clock.sleeperCount(), 0U);
}

TEST_F(ReleaseTest, ALatchThatRefusedIsRetriedWithEverything) {
  holdBoth();
  smc.refuse("Ftst=0", {0x10});
  run(controller->automatic());
  smc.log.clear();
  pass(1.99);
  EXPECT_TRUE(smc.log.empty());
  pass(0.01);
  EXPECT_EQ(smc.log, (Log{"Ftst=1", "F0Md=0", "F1Md=0", "Ftst=0"}));
  EXPECT_EQ(state(), ControlState::idle); // The error is gone from the report.
  pass(60);
  EXPECT_EQ(smc.count("Ftst=0"), 1);
}

TEST_F(ReleaseTest, AFanThatRefusesIsRetriedEveryTwoSecondsWithoutLimit) {
  holdBoth();
  smc.refuseForEver("F0Md=0", 5);
  run(controller->automatic());
  smc.log.clear();
  pass(3600);
  EXPECT_EQ(smc.count("F0Md=0"), 1800);
  EXPECT_EQ(smc.count("F1Md=0"), 0); // Only what failed.
  EXPECT_EQ(smc.count("Ftst=0"), 0);
}

TEST_F(ReleaseTest, ARetryThatSucceedsEndsTheLoopSilently) {
  holdBoth();
  smc.refuse("F0Md=0", {5, 5});
  run(controller->automatic());
  while (controller->stateStream().tryNext())
    continue;
  pass(2);
  EXPECT_EQ(smc.count("F0Md=0"), 2);
  pass(2);
  EXPECT_EQ(smc.count("F0Md=0"), 3);
  pass(60);
  EXPECT_EQ(smc.count("F0Md=0"), 3);
  EXPECT_FALSE(controller->stateStream().tryNext());
  EXPECT_EQ(clock.sleeperCount(), 0U);
}

TEST_F(ReleaseTest, APlanDuringARetryStandsItDown) {
  holdBoth();
  smc.refuseForEver("F0Md=0", 5);
  run(controller->automatic());
  pass(1);
  run(controller->applyPlan(fixed({{0, 5000}})));
  smc.log.clear();
  pass(1.2); // The retry would have been due.
  EXPECT_EQ(smc.count("F0Md=0"), 0);
  passAlive(20);
  EXPECT_EQ(smc.count("F0Md=0"), 0);
  EXPECT_EQ(state().targets, (std::map<FanID, std::int64_t>{{0, 5000}}));
}

TEST_F(ReleaseTest, APlanDuringARetriesWritesStopsIt) {
  holdBoth();
  smc.answer = [](const std::string& write) {
    return Written(write == "F0Md=0" || write == "F1Md=0" ? std::uint8_t{5} : std::uint8_t{0});
  };
  run(controller->automatic());
  smc.log.clear();
  bool applied = false;
  smc.beforeWrite = [&](const std::string& write) {
    if (write != "F0Md=0" || std::exchange(applied, true)) return;
    smc.acceptAll();
    boost::asio::co_spawn(context, controller->applyPlan(fixed({{0, 5000}, {1, 5000}})),
                          [](const std::exception_ptr&, const ControlResult&) {});
  };
  pass(2);
  ASSERT_TRUE(applied);
  EXPECT_EQ(smc.count("F1Md=0"), 0);
  passAlive(5);
  EXPECT_EQ(state().targets, (std::map<FanID, std::int64_t>{{0, 5000}, {1, 5000}}));
}

TEST_F(ReleaseTest, AStaleRetryLeavesTheFieldsToTheNewerCommand) {
  holdBoth();
  smc.refuse("Ftst=0", {0x10});
  run(controller->automatic());
  bool applied = false;
  smc.beforeWrite = [&](const std::string& write) { // In the retry, after the fans were written.
    if (write != "Ftst=0" || std::exchange(applied, true)) return;
    boost::asio::co_spawn(context, controller->applyPlan(fixed({{0, 5000}})),
                          [](const std::exception_ptr&, const ControlResult&) {});
  };
  pass(2);
  ASSERT_TRUE(applied);
  passAlive(10);
  EXPECT_TRUE(state().isHolding);
  EXPECT_EQ(state().targets, (std::map<FanID, std::int64_t>{{0, 5000}}));
}

TEST_F(ReleaseTest, FansThatFellOutOfAPlanLeaveTheLatchSet) {
  holdBoth();
  run(controller->applyPlan(fixed({{1, 4000}})));
  EXPECT_EQ(smc.count("F0Md=0"), 1);
  EXPECT_EQ(smc.count("Ftst=0"), 0);
}

TEST_F(ReleaseTest, AFanThatFellOutOfAPlanIsRetriedWhileOthersAreHeld) {
  holdBoth();
  smc.refuse("F0Md=0", {5, 5, 5});
  run(controller->applyPlan(fixed({{1, 4000}})));
  passAlive(6);
  EXPECT_EQ(state().perFanMode, (std::map<FanID, ControlMode>{{1, ControlMode::manual}}));
  EXPECT_TRUE(state().isHolding);
}

TEST_F(ReleaseTest, RestoreAutoStandsARetryDownAndStartsAnew) {
  holdBoth();
  smc.refuseForEver("F0Md=0", 5);
  run(controller->automatic());
  smc.acceptAll();
  smc.log.clear();
  run(controller->restoreAuto());
  EXPECT_EQ(smc.log, (Log{"Ftst=1", "F0Md=0", "F1Md=0", "Ftst=0"}));
  pass(60);
  EXPECT_EQ(smc.count("F0Md=0"), 1);
}

TEST_F(ReleaseTest, AReleaseResetsTheEvaluator) {
  FanControlPlan plan;
  plan.fans = {{0, FanControlModePlan::fixedPercent(0)}};
  run(controller->applyPlan(plan));
  pass(12);
  ASSERT_EQ(state().stoppedFans, (std::vector<FanID>{0}));
  run(controller->automatic());
  run(controller->applyPlan(plan));
  EXPECT_EQ(state().targets.at(0), 2000); // Falls silent anew.
  EXPECT_EQ(state().stoppedFans, std::nullopt);
}

} // namespace
} // namespace ventolith::helper
