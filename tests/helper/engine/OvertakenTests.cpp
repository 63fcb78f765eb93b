// Commands, rounds and releases that overtake each other.
#include "helper/engine/OvertakingFixture.h"

namespace ventolith::helper {
namespace {

class OvertakenTest : public OvertakingFixture {};

TEST_F(OvertakenTest, AClaimThatStandsDownTakesNoFurtherFanOfItsPlan) {
  smc.refuseForEver("F0Md=1", 0x82);
  const auto claiming = begin(controller->applyPlan(fixed({{0, 3000}, {1, 4000}})));
  pass(2.05);
  run(controller->automatic());
  const auto newer = begin(controller->applyPlan(fixed({{0, 5000}})));
  smc.acceptAll();
  passAlive(30);
  EXPECT_EQ(smc.count("F1Md=1"), 0);
  EXPECT_EQ(**claiming, ControlResult::reclaimed);
  EXPECT_EQ(state().targets, (std::map<FanID, std::int64_t>{{0, 5000}}));
}

TEST_F(OvertakenTest, APlanDuringAReleaseKeepsItsHeartbeatWatchdog) {
  run(controller->applyPlan(fixed({{0, 3000}, {1, 3000}})));
  at("F0Md=0", [this] { return apply(fixed({{0, 5000}})); });
  run(controller->automatic());
  pass(10);
  EXPECT_EQ(state().targets, (std::map<FanID, std::int64_t>{{0, 5000}}));
  pass(10); // Without a heartbeat.
  EXPECT_FALSE(state().isHolding);
  EXPECT_EQ(lastWriteTo("F0Md"), "F0Md=0");
}

TEST_F(OvertakenTest, APlanDuringAReleaseHoldsEvenIfItsFirstClaimFails) {
  run(controller->applyPlan(fixed({{0, 3000}, {1, 3000}})));
  at("F0Md=0", [this] {
    smc.refuseForEver("F0Md=1", 5);
    return apply(fixed({{0, 5000}}));
  });
  run(controller->automatic());
  passAlive(5);
  smc.acceptAll();
  passAlive(5);
  EXPECT_TRUE(state().isHolding);
  EXPECT_EQ(state().targets, (std::map<FanID, std::int64_t>{{0, 5000}}));
}

TEST_F(OvertakenTest, AReleaseThatIsOvertakenLeavesTheLatchToTheNewerPlan) {
  run(controller->applyPlan(fixed({{0, 3000}})));
  at("F0Md=0", [this] { return apply(fixed({{0, 5000}})); });
  run(controller->automatic());
  passAlive(5);
  const auto writes = writesSince();
  EXPECT_EQ(std::count(writes.begin(), writes.end(), "Ftst=0"), 0);
}

TEST_F(OvertakenTest, AReleaseWhileAPlanLetsItsOldFansGoKeepsItFromClaimingNewOnes) {
  run(controller->applyPlan(fixed({{0, 3000}})));
  at("F0Md=0", [this] { return controller->restoreAuto(); });
  EXPECT_EQ(run(controller->applyPlan(fixed({{1, 4000}}))), ControlResult::reclaimed);
  pass(10);
  EXPECT_EQ(smc.count("F1Md=1"), 0);
  EXPECT_EQ(state(), ControlState::idle);
}

TEST_F(OvertakenTest, AFanThatRefusesToGoBackInAnOvertakenReleaseIsRetried) {
  run(controller->applyPlan(fixed({{0, 3000}, {1, 3000}})));
  smc.refuseForEver("F1Md=0", 5);
  at("F1Md=0", [this] { return apply(fixed({{0, 5000}})); });
  run(controller->automatic());
  passAlive(5);
  smc.acceptAll();
  passAlive(5);
  EXPECT_EQ(lastWriteTo("F1Md"), "F1Md=0");
  EXPECT_EQ(state().targets, (std::map<FanID, std::int64_t>{{0, 5000}}));
}

// Where a pass suspends: before each of these of its writes a release takes over, and from the release's
// own latch on the pass writes nothing more.
class ReleaseInMidPass : public OvertakenTest, public testing::WithParamInterface<const char*> {};

TEST_P(ReleaseInMidPass, HasTheLastWord) {
  run(controller->applyPlan(fixed({{0, 3000}, {1, 4000}})));
  at(GetParam(), [this] { return controller->restoreAuto(); });
  pass(1.5);
  // The write under way and then the release alone; a write that was on its way may slip in between.
  const auto writes = writesSince();
  const auto latch = std::find(writes.begin() + 1, writes.end(), "Ftst=1");
  ASSERT_NE(latch, writes.end());
  EXPECT_EQ(Log(latch, writes.end()), (Log{"Ftst=1", "F0Md=0", "F1Md=0", "Ftst=0"}));
  EXPECT_EQ(state(), ControlState::idle);
}

INSTANTIATE_TEST_SUITE_P(Writes, ReleaseInMidPass,
                         testing::Values("F0Md=1", "F0Tg=3000", "F1Md=1", "F1Tg=4000"));

TEST_F(OvertakenTest, AReleaseWhileAPassReleasesKeepsItFromClearingTheLatch) {
  run(controller->applyPlan(fixed({{0, 3000}})));
  sensors.next.fans.clear(); // The pass gives fan 0 back.
  at("F0Md=0", [this] { return controller->restoreAuto(); });
  pass(1.5);
  const auto writes = writesSince();
  EXPECT_EQ(std::count(writes.begin(), writes.end(), "Ftst=0"), 1); // The release's own, at its end.
  EXPECT_EQ(writes.back(), "Ftst=0");
}

TEST_F(OvertakenTest, APassWithNothingClaimedClearsTheLatch) {
  run(controller->applyPlan(fixed({{0, 3000}})));
  sensors.next.fans.clear();
  smc.log.clear();
  pass(1.5);
  EXPECT_EQ(smc.log, (Log{"F0Md=0", "Ftst=0"}));
  EXPECT_FALSE(state().isHolding);
}

TEST_F(OvertakenTest, APassThatStillWantsAFanLeavesTheLatchSet) {
  smc.refuseForEver("F0Md=1", 5);
  run(controller->applyPlan(fixed({{0, 3000}})));
  smc.log.clear();
  pass(1.5);
  EXPECT_EQ(smc.count("Ftst=0"), 0);
}

TEST_F(OvertakenTest, ARetryThatIsStaleAfterItsWritesPublishesNothing) {
  run(controller->applyPlan(fixed({{0, 3000}})));
  smc.refuse("Ftst=0", {0x10});
  run(controller->automatic());
  at("Ftst=0", [this] { return apply(fixed({{0, 5000}})); });
  pass(1.9);
  while (controller->stateStream().tryNext())
    continue;
  pass(0.1);
  // The plan's report alone: the retry has none.
  const auto published = controller->stateStream().tryNext();
  ASSERT_TRUE(published);
  EXPECT_EQ(published->targets, (std::map<FanID, std::int64_t>{{0, 5000}}));
  EXPECT_FALSE(controller->stateStream().tryNext());
}

TEST_F(OvertakenTest, ARetryThatIsStaleBetweenItsFansWritesNoFurtherOne) {
  run(controller->applyPlan(fixed({{0, 3000}, {1, 4000}})));
  smc.refuse("Ftst=0", {0x10});
  run(controller->automatic());
  at("F0Md=0", [this] { return apply(fixed({{0, 5000}, {1, 5000}})); });
  pass(2);
  const auto writes = writesSince();
  EXPECT_EQ(std::count(writes.begin(), writes.end(), "F1Md=0"), 0);
  EXPECT_EQ(std::count(writes.begin(), writes.end(), "Ftst=0"), 0);
}

TEST_F(OvertakenTest, RestoreAutoWithoutPrivilegeReportsWhyItFailed) {
  run(controller->applyPlan(fixed({{0, 3000}})));
  privileges.isRoot = false;
  smc.answer = [](const std::string& write) {
    return write.ends_with("Md=0") ? Written(hardware::SMCError::notPrivileged()) : Written(std::uint8_t{0});
  };
  run(controller->restoreAuto());
  EXPECT_EQ(lastError(),
            "failed to restore Auto: F0Md=0 failed (not privileged (root required) for this SMC call)");
}

TEST_F(OvertakenTest, AFanListedTwiceIsReportedByTheEntryThatClaimedIt) {
  FanControlPlan plan;
  plan.fans = {{0, FanControlModePlan::automatic()}, {0, FanControlModePlan::fixedRPM(3000)}};
  run(controller->applyPlan(plan));
  EXPECT_EQ(state().perFanMode.at(0), ControlMode::manual);
}

TEST_F(OvertakenTest, AControllerThatIsGoneBeforeItsLoopFirstRunsEndsIt) {
  auto other = std::make_shared<LocalFanController>(context.get_executor(), clock, smc, sensors, privileges);
  const std::weak_ptr<LocalFanController> weak = other;
  const auto result = begin(other->applyPlan(fixed({{0, 3000}})));
  other.reset(); // The plan's application alone has kept it, and is done.
  clock.settle();
  EXPECT_TRUE(result->has_value());
  // Its loop has begun by now and holds it until there is nothing left to hold.
  pass(20);
  EXPECT_TRUE(weak.expired());
  EXPECT_EQ(lastWriteTo("F0Md"), "F0Md=0");
}

// Sensors that take as long as a hub does.
struct SlowSensors final : hardware::SensorReading {
  SlowSensors(ScriptedSensors& given, runtime::Clock& time) : sensors(given), clock(time) {}

  Async<core::SensorSnapshot> snapshot() override {
    co_await clock.sleep(std::chrono::milliseconds(80), runtime::StopToken());
    co_return sensors.next;
  }

  ScriptedSensors& sensors;
  runtime::Clock& clock;
};

class OvertakenSnapshotTest : public OvertakenTest {
protected:
  OvertakenSnapshotTest() {
    controller = std::make_shared<LocalFanController>(context.get_executor(), clock, smc, slow, privileges);
    run(controller->applyPlan(fixed({{0, 3000}})));
  }
  // The first round begins 1.5 s after the loop, which is older by the first snapshot.
  void passIntoARoundsSnapshot() { pass(1.46); }

  SlowSensors slow{sensors, clock};
};

TEST_F(OvertakenSnapshotTest, WithoutTemperaturesSaysNothingAfterARelease) {
  sensors.setCelsius(std::nullopt);
  passIntoARoundsSnapshot();
  run(controller->automatic());
  pass(5);
  EXPECT_EQ(state(), ControlState::idle);
}

TEST_F(OvertakenSnapshotTest, ThatIsHotSaysNothingAfterARelease) {
  sensors.setCelsius(99);
  passIntoARoundsSnapshot();
  run(controller->automatic());
  pass(5);
  EXPECT_EQ(state(), ControlState::idle);
}

TEST_F(OvertakenSnapshotTest, DoesNotHideThatAReleaseFailed) {
  smc.refuseForEver("F0Md=0", 5);
  passIntoARoundsSnapshot();
  run(controller->automatic());
  pass(1);
  EXPECT_EQ(lastError(), "failed to restore Auto: F0Md=0 rejected (SMC 0x5)");
}

TEST_F(OvertakenSnapshotTest, LeavesNoSecondLoopBehind) {
  passIntoARoundsSnapshot();
  run(controller->automatic());
  run(controller->applyPlan(fixed({{0, 3000}})));
  pass(0.5);
  run(controller->applyPlan(fixed({{0, 4000}})));
  pass(0.5);
  EXPECT_EQ(clock.sleeperCount(), 1U);
  run(controller->automatic());
  pass(0.1);
  EXPECT_EQ(clock.sleeperCount(), 0U);
}

TEST_F(OvertakenSnapshotTest, OfANewPlanEndsInReclaimedWhenTheFansAreHandedBack) {
  const auto applying = begin(controller->applyPlan(fixed({{0, 5000}})));
  pass(0.01);
  run(controller->automatic());
  pass(1);
  EXPECT_EQ(**applying, ControlResult::reclaimed);
  EXPECT_EQ(state(), ControlState::idle);
}

} // namespace
} // namespace ventolith::helper
