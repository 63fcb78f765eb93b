#include "helper/engine/EngineFixture.h"

namespace ventolith::helper {
namespace {

using PlanAssertionTest = EngineTest;
using Log = std::vector<std::string>;

core::FanCurve steepCurve() {
  return {.sourceSensorID = std::nullopt,
          .points = {{.celsius = 30, .percent = 0}, {.celsius = 80, .percent = 100}},
          .interpolation = core::CurveInterpolation::linear};
}

TEST_F(PlanAssertionTest, APlanThatLeavesEveryFanAutomaticStartsNoLoop) {
  FanControlPlan plan;
  plan.fans = {{0, FanControlModePlan::automatic()}, {1, FanControlModePlan::automatic()}};
  EXPECT_EQ(run(controller->applyPlan(plan)), ControlResult::applied);
  EXPECT_EQ(smc.writes(), (Log{"Ftst=1", "Ftst=0"}));
  EXPECT_EQ(clock.sleeperCount(), 0U);
}

TEST_F(PlanAssertionTest, AFailedReleaseOfAnAutomaticPlanIsTheResult) {
  run(controller->restoreAllFansToAutomatic()); // So that the mode keys are known.
  smc.refuseForEver("F0Md=0", 0x85);
  EXPECT_EQ(run(controller->applyPlan(FanControlPlan::allAutomatic)),
            ControlResult::failed("failed to restore Auto: F0Md=0 rejected (SMC 0x85)"));
}

TEST_F(PlanAssertionTest, AFanWithoutAModeKeyFailsThePlanButNotTheOthers) {
  smc.values.erase("F0Md");
  EXPECT_EQ(run(controller->applyPlan(fixed({{0, 3000}, {1, 4000}}))),
            ControlResult::failed("neither F<n>Md nor F<n>md exists on this machine"));
  EXPECT_EQ(state().targets, (std::map<FanID, std::int64_t>{{1, 4000}}));
  EXPECT_TRUE(state().isHolding);
  EXPECT_EQ(lastError(), "applyPlan: failed(\"neither F<n>Md nor F<n>md exists on this machine\")");
  EXPECT_EQ(clock.sleeperCount(), 1U);
}

TEST_F(PlanAssertionTest, TheLastFailureWinsAndClaimedFansStayClaimed) {
  smc.values.erase("F0Md");
  smc.setNumber("F2Md", 0);
  smc.answer = [](const std::string& write) {
    return Written(write == "F2Md=1" ? std::uint8_t{7} : std::uint8_t{0});
  };
  EXPECT_EQ(run(controller->applyPlan(fixed({{0, 3000}, {1, 4000}, {2, 4000}}))), ControlResult::rejected(7));
  EXPECT_EQ(lastError(), "applyPlan: rejected(code: 7)");
  EXPECT_EQ(state().perFanMode, (std::map<FanID, ControlMode>{{1, ControlMode::manual}}));
}

TEST_F(PlanAssertionTest, AFanThatLeftThePlanGoesBackBeforeANewOneIsClaimed) {
  run(controller->applyPlan(fixed({{0, 3000}})));
  smc.log.clear();
  run(controller->applyPlan(fixed({{1, 4000}})));
  EXPECT_EQ(smc.log, (Log{"Ftst=1", "F0Md=0", "F1Md?", "F1Md=1", "Ftst=1", "F1Md=1", "F1Tg=4000", "F1Md?"}));
  EXPECT_EQ(state().perFanMode, (std::map<FanID, ControlMode>{{1, ControlMode::manual}}));
}

TEST_F(PlanAssertionTest, AFanThatCannotLeaveIsReportedAndThePlanGoesOn) {
  run(controller->applyPlan(fixed({{0, 3000}})));
  while (controller->stateStream().tryNext())
    continue;
  smc.refuseForEver("F0Md=0", 5);
  EXPECT_EQ(run(controller->applyPlan(fixed({{1, 4000}}))), ControlResult::applied);
  const auto published = controller->stateStream().tryNext();
  ASSERT_TRUE(published);
  EXPECT_TRUE(published->isHolding);
  EXPECT_EQ(published->lastError, "failed to restore Auto: F0Md=0 rejected (SMC 0x5)");
  EXPECT_EQ(state().targets.at(1), 4000);
}

TEST_F(PlanAssertionTest, ModesAreReportedByThePlansEntries) {
  FanControlPlan plan;
  plan.fans = {{0, FanControlModePlan::curve(steepCurve())}, {1, FanControlModePlan::fixedPercent(100)}};
  run(controller->applyPlan(plan));
  EXPECT_EQ(state().perFanMode,
            (std::map<FanID, ControlMode>{{0, ControlMode::curve}, {1, ControlMode::fullBlast}}));
}

TEST_F(PlanAssertionTest, AClaimedFanKeepsItsReportedModeWhenItsPlanChanges) {
  FanControlPlan plan;
  plan.fans = {{0, FanControlModePlan::curve(steepCurve())}};
  run(controller->applyPlan(plan));
  run(controller->setManual(0, 3000));
  EXPECT_EQ(state().perFanMode.at(0), ControlMode::curve);
  EXPECT_EQ(state().targets.at(0), 3000);
}

TEST_F(PlanAssertionTest, TheTargetIsRecordedEvenWhenItsWriteFailed) {
  smc.failForEver("F0Tg=3000");
  run(controller->applyPlan(fixed({{0, 3000}})));
  EXPECT_EQ(state().targets.at(0), 3000);
}

TEST_F(PlanAssertionTest, AFanThatReadsMode3RightAfterTheWriteStaysClaimed) {
  smc.setNumber("F0Md", 3);
  EXPECT_EQ(run(controller->applyPlan(fixed({{0, 3000}}))), ControlResult::applied);
  EXPECT_TRUE(state().isHolding); // The first pass's list is not reported.
  pass(1.5);
  EXPECT_EQ(lastError(), "reclaimed: fan(s) [0] reverted to mode 3");
  EXPECT_EQ(state().perFanMode.count(0), 1U);
}

TEST_F(PlanAssertionTest, ARuleClaimsAFanThatThePlanLeavesAutomatic) {
  FanControlPlan plan;
  plan.fans = {{0, FanControlModePlan::fixedRPM(3000)}, {1, FanControlModePlan::automatic()}};
  plan.rules.push_back(rule(60, 55, 100));
  run(controller->applyPlan(plan));
  EXPECT_EQ(state().targets, (std::map<FanID, std::int64_t>{{0, 3000}}));
  sensors.setCelsius(94); // Filtered: 63.2.
  pass(1.5);
  EXPECT_EQ(state().targets, (std::map<FanID, std::int64_t>{{0, 8000}, {1, 8000}}));
  EXPECT_EQ(state().perFanMode.at(1), ControlMode::automatic);
}

TEST_F(PlanAssertionTest, AStoppedFanIsHeldAtZeroAndReported) {
  FanControlPlan plan;
  plan.fans = {{0, FanControlModePlan::fixedPercent(0)}};
  run(controller->applyPlan(plan));
  pass(9);
  EXPECT_EQ(state().targets.at(0), 2000);
  EXPECT_EQ(state().stoppedFans, std::nullopt);
  pass(1.5); // Ten seconds have passed.
  EXPECT_EQ(state().targets.at(0), 0);
  EXPECT_EQ(state().stoppedFans, (std::vector<FanID>{0}));
  EXPECT_EQ(smc.count("F0Tg=0"), 1);
}

TEST_F(PlanAssertionTest, NoTargetIsWrittenAfterAReleaseInMidPass) {
  run(controller->applyPlan(fixed({{0, 3000}, {1, 4000}})));
  smc.log.clear();
  bool released = false;
  smc.beforeWrite = [&](const std::string& write) {
    if (write != "F0Md=1" || std::exchange(released, true)) return;
    runtime::start(context.get_executor(), "a release", controller->restoreAuto());
  };
  pass(1.5);
  ASSERT_TRUE(released);
  const auto handedBack = std::find(smc.log.begin(), smc.log.end(), "F0Md=0");
  ASSERT_NE(handedBack, smc.log.end());
  for (const std::string& target : {"F0Tg=3000", "F1Tg=4000", "F1Md=1"}) {
    EXPECT_EQ(std::count(handedBack, smc.log.end(), target), 0) << target;
  }
  EXPECT_EQ(state(), ControlState::idle);
  pass(60);
  EXPECT_EQ(smc.log.back(), "Ftst=0");
}

TEST_F(PlanAssertionTest, AClaimOfAPassStandsDownWhenTheFansAreHandedBack) {
  run(controller->applyPlan(fixed({{0, 3000}})));
  FanControlPlan plan = fixed({{0, 3000}, {1, 4000}});
  smc.refuseForEver("F1Md=1", 0x82);
  const auto applying = begin(controller->applyPlan(plan));
  pass(10.5); // The claim of the command has timed out; that of a pass goes on.
  ASSERT_TRUE(applying->has_value() || smc.count("F1Md=1") > 100);
  pass(1.5);
  smc.acceptAll();
  run(controller->restoreAuto());
  const auto log = smc.log;
  const auto handedBack = std::find(log.rbegin(), log.rend(), "F1Md=0");
  EXPECT_EQ(std::count(log.rbegin(), handedBack, "F1Md=1"), 0);
  smc.log.clear();
  pass(30);
  EXPECT_EQ(smc.count("F1Md=1"), 0);
  EXPECT_EQ(state().perFanMode.size(), 0U);
}

TEST_F(PlanAssertionTest, APlanThatOvertakesAClaimIsTheOneThatHolds) {
  smc.refuseForEver("F0Md=1", 0x82);
  const auto overtaken = begin(controller->applyPlan(fixed({{0, 3000}})));
  pass(2);
  smc.acceptAll();
  EXPECT_EQ(run(controller->applyPlan(fixed({{0, 5000}}))), ControlResult::applied);
  pass(3);
  ASSERT_TRUE(overtaken->has_value());
  EXPECT_EQ(state().targets.at(0), 5000);
}

TEST_F(PlanAssertionTest, AutomaticDuringAClaimMakesItStandDown) {
  smc.refuseForEver("F0Md=1", 0x82);
  const auto claiming = begin(controller->applyPlan(fixed({{0, 3000}})));
  pass(2);
  EXPECT_EQ(run(controller->automatic()), ControlResult::applied);
  const auto attempts = smc.count("F0Md=1");
  smc.acceptAll();
  pass(10);
  ASSERT_TRUE(claiming->has_value());
  EXPECT_EQ(**claiming, ControlResult::reclaimed);
  EXPECT_EQ(smc.count("F0Md=1"), attempts);
  const auto writes = smc.writes();
  const auto lastMode = std::find_if(writes.rbegin(), writes.rend(),
                                     [](const std::string& write) { return write.starts_with("F0Md="); });
  EXPECT_EQ(*lastMode, "F0Md=0");
  EXPECT_EQ(writes.back(), "Ftst=0");
  EXPECT_EQ(std::count_if(writes.begin(), writes.end(),
                          [](const auto& write) { return write.starts_with("F0Tg"); }),
            0);
  EXPECT_FALSE(state().isHolding);
}

} // namespace
} // namespace ventolith::helper
