#include "helper/engine/EngineFixture.h"

#include <limits>

namespace ventolith::helper {
namespace {

using CommandTest = EngineTest;

TEST_F(CommandTest, FullBlastHoldsEveryFanAtItsMaximum) {
  EXPECT_EQ(run(controller->fullBlast()), ControlResult::applied);
  EXPECT_EQ(state().targets, (std::map<FanID, std::int64_t>{{0, 8000}, {1, 8000}}));
  EXPECT_EQ(state().perFanMode.at(0), ControlMode::fullBlast);
}

TEST_F(CommandTest, FullBlastWithoutAFanCountFails) {
  smc.values.erase("FNum");
  EXPECT_EQ(run(controller->fullBlast()), ControlResult::failed("could not read FNum"));
  EXPECT_TRUE(smc.writes().empty());
}

TEST_F(CommandTest, FullBlastWithARawFanCountFails) {
  smc.values.insert_or_assign("FNum", hardware::SMCValue{hardware::SMCValue::Raw{}});
  EXPECT_EQ(run(controller->fullBlast()), ControlResult::failed("could not read FNum"));
}

TEST_F(CommandTest, FullBlastOnAMachineWithoutFansAppliesAPlanWithoutFans) {
  smc.setNumber("FNum", 0);
  EXPECT_EQ(run(controller->fullBlast()), ControlResult::applied);
  EXPECT_EQ(smc.writes(), (std::vector<std::string>{"Ftst=1", "Ftst=0"}));
}

TEST_F(CommandTest, FullBlastKeepsRulesAndTuning) {
  FanControlPlan plan = fixed({{0, 3000}});
  plan.rules.push_back(rule(40, 30, 0));
  run(controller->applyPlan(plan));
  run(controller->fullBlast());
  EXPECT_EQ(state().targets.at(0), 2000); // The rule has fired and still overrides.
}

TEST_F(CommandTest, SetManualLeavesTheOtherFansAsTheyAre) {
  run(controller->applyPlan(fixed({{0, 3000}, {1, 4000}})));
  EXPECT_EQ(run(controller->setManual(0, 3500)), ControlResult::applied);
  EXPECT_EQ(state().targets, (std::map<FanID, std::int64_t>{{0, 3500}, {1, 4000}}));
}

TEST_F(CommandTest, SetManualIsLimitedByTheFansRangeWhenItIsEvaluated) {
  run(controller->setManual(0, 99'999));
  EXPECT_EQ(state().targets.at(0), 8000);
}

TEST_F(CommandTest, SetPercentScalesToTheFansRange) {
  EXPECT_EQ(run(controller->setPercent(1, 50)), ControlResult::applied);
  EXPECT_EQ(state().targets, (std::map<FanID, std::int64_t>{{1, 5000}}));
}

TEST_F(CommandTest, APercentageThatIsNotFiniteIsRefused) {
  for (const double percent :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
    EXPECT_EQ(run(controller->setPercent(0, percent)),
              ControlResult::failed("the percentage is not a finite number"));
  }
  EXPECT_TRUE(smc.log.empty());
}

TEST_F(CommandTest, WithoutPrivilegeCommandsChangeNothing) {
  privileges.isRoot = false;
  EXPECT_EQ(run(controller->applyPlan(fixed({{0, 3000}}))), ControlResult::notPrivileged);
  EXPECT_EQ(run(controller->setManual(0, 3000)), ControlResult::notPrivileged);
  EXPECT_EQ(run(controller->automatic()), ControlResult::notPrivileged);
  EXPECT_TRUE(smc.log.empty());
  EXPECT_EQ(state(), ControlState::idle);
}

TEST_F(CommandTest, RestoreAutoGoesAheadWithoutPrivilege) {
  privileges.isRoot = false;
  run(controller->restoreAuto());
  EXPECT_EQ(smc.writes(), (std::vector<std::string>{"Ftst=1", "Ftst=0"}));
}

TEST_F(CommandTest, StartupRecoveryGivesEveryFanBack) {
  privileges.isRoot = false; // It does not test privilege.
  smc.values.erase("F1Md");
  smc.setNumber("F1md", 1);
  EXPECT_EQ(run(controller->restoreAllFansToAutomatic()), std::nullopt);
  EXPECT_EQ(smc.writes(), (std::vector<std::string>{"Ftst=1", "F0Md=0", "F1md=0", "Ftst=0"}));
}

TEST_F(CommandTest, StartupRecoveryWithoutAFanCountSaysSo) {
  smc.values.erase("FNum");
  EXPECT_EQ(run(controller->restoreAllFansToAutomatic()), "could not read FNum during startup recovery");
}

TEST_F(CommandTest, StartupRecoveryTellsOfAFanWhoseModeKeyDoesNotReadAndGivesTheOthersBack) {
  smc.unreadable = {"F0Md"};
  EXPECT_EQ(run(controller->restoreAllFansToAutomatic()),
            "F0Md does not read (IOConnectCallStructMethod failed: kern_return_t=0xe00002bc)");
  EXPECT_EQ(smc.writes(), (std::vector<std::string>{"Ftst=1", "F1Md=0", "Ftst=0"}));
}

TEST_F(CommandTest, StartupRecoveryTakesAFanWithoutAModeKeyForOneThatCannotBeHeld) {
  smc.values.erase("F0Md");
  EXPECT_EQ(run(controller->restoreAllFansToAutomatic()), std::nullopt);
}

TEST_F(CommandTest, ARecoveryWhileAPlanIsInForceLeavesItsFansAlone) {
  run(controller->applyPlan(fixed({{0, 3000}})));
  smc.log.clear();
  EXPECT_EQ(run(controller->restoreAllFansToAutomatic()), std::nullopt);
  EXPECT_EQ(smc.writes(), (std::vector<std::string>{"Ftst=1", "F1Md=0"}));
  passAlive(5);
  EXPECT_TRUE(state().isHolding);
}

TEST_F(CommandTest, ARecoveryBesideAPlanThatHoldsNothingClearsTheLatch) {
  FanControlPlan plan;
  plan.rules.push_back(rule(60, 55, 100));
  run(controller->applyPlan(plan));
  run(controller->restoreAllFansToAutomatic());
  EXPECT_EQ(smc.writes().back(), "Ftst=0");
}

TEST_F(CommandTest, APlanThatComesDuringARecoveryBesideAnotherKeepsItsFans) {
  run(controller->applyPlan(fixed({{0, 3000}})));
  smc.setNumber("FNum", 3);
  smc.setNumber("F2Md", 1);
  sensors.next.fans.push_back({2, "Fan 2", 2000, 2000, 8000, 0});
  bool comes = false;
  smc.beforeWrite = [&](const std::string& write) {
    if (write != "F1Md=0" || std::exchange(comes, true)) return;
    begin(controller->applyPlan(fixed({{0, 3000}, {2, 5000}})));
  };
  run(controller->restoreAllFansToAutomatic());
  passAlive(5);
  ASSERT_TRUE(comes);
  EXPECT_EQ(smc.count("F2Md=0"), 0);
  EXPECT_EQ(state().targets, (std::map<FanID, std::int64_t>{{0, 3000}, {2, 5000}}));
}

TEST_F(CommandTest, StartupRecoveryReportsWhatFailed) {
  smc.refuseForEver("F1Md=0", 0x85);
  EXPECT_EQ(run(controller->restoreAllFansToAutomatic()),
            "failed to restore Auto: F1Md=0 rejected (SMC 0x85)");
}

TEST_F(CommandTest, EveryPublishedStateReachesAReaderThatStartsLate) {
  run(controller->applyPlan(fixed({{0, 3000}})));
  run(controller->automatic());
  std::vector<bool> holding;
  while (const auto published = controller->stateStream().tryNext())
    holding.push_back(published->isHolding);
  EXPECT_EQ(holding, (std::vector<bool>{true, false}));
}

TEST_F(CommandTest, TargetsAreReportedRoundedHalvesAwayFromZero) {
  run(controller->applyPlan(fixed({{0, 2500.5}, {1, 2500.4}})));
  EXPECT_EQ(state().targets, (std::map<FanID, std::int64_t>{{0, 2501}, {1, 2500}}));
}

} // namespace
} // namespace ventolith::helper
