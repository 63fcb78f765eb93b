// Plans of which a newer one comes while an older one is under way, and passes of theirs that overlap.
#include "helper/engine/OvertakingFixture.h"

namespace ventolith::helper {
namespace {

using Targets = std::map<FanID, std::int64_t>;

class OverlappingPlansTest : public OvertakingFixture {
protected:
  /// What was published since the last call.
  std::vector<ControlState> published() {
    std::vector<ControlState> states;
    while (auto next = controller->stateStream().tryNext())
      states.push_back(std::move(*next));
    return states;
  }
  static FanControlPlan onCurve(FanID fan) {
    core::FanCurve curve;
    curve.points = {{.celsius = 40, .percent = 20}, {.celsius = 80, .percent = 100}};
    FanControlPlan plan;
    plan.fans.push_back({fan, FanControlModePlan::curve(curve)});
    return plan;
  }
};

TEST_F(OverlappingPlansTest, TheOlderOneTakesNoFurtherFanThatTheNewerLeavesAlone) {
  smc.refuseForEver("F0Md=1", 0x82);
  const auto older = begin(controller->applyPlan(fixed({{0, 3000}, {1, 4000}})));
  pass(1);
  const auto newer = begin(controller->applyPlan(fixed({{0, 5000}})));
  smc.acceptAll();
  passAlive(5);
  EXPECT_EQ(smc.count("F1Md=1"), 0);
  EXPECT_EQ(**newer, ControlResult::applied);
  EXPECT_EQ(**older, ControlResult::applied); // Nothing has refused it.
  EXPECT_EQ(state().targets, (Targets{{0, 5000}}));
}

TEST_F(OverlappingPlansTest, TheOlderOneTriesAFanNoLongerThatTheNewerLeavesAlone) {
  smc.refuseForEver("F1Md=1", 0x82);
  const auto older = begin(controller->applyPlan(fixed({{0, 3000}, {1, 4000}})));
  pass(1);
  run(controller->applyPlan(fixed({{0, 5000}})));
  smc.log.clear();
  passAlive(12);
  EXPECT_EQ(smc.count("F1Md=1"), 0);
  EXPECT_EQ(**older, ControlResult::applied);
  EXPECT_EQ(lastError(), "none");
}

TEST_F(OverlappingPlansTest, AFanThatIsTakenJustAsTheNewerOneComesGoesBack) {
  run(controller->applyPlan(fixed({{0, 3000}})));
  at("F1Md=1", [this] { return apply(fixed({{0, 5000}})); });
  run(controller->applyPlan(fixed({{0, 3000}, {1, 4000}})));
  passAlive(3);
  EXPECT_EQ(lastWriteTo("F1Md"), "F1Md=0");
  EXPECT_EQ(state().targets, (Targets{{0, 5000}}));
  EXPECT_EQ(state().perFanMode, (std::map<FanID, ControlMode>{{0, ControlMode::manual}}));
}

TEST_F(OverlappingPlansTest, TheOlderOneDoesNotKeepTheLatchSetWhenNothingIsHeldAnyMore) {
  smc.refuseForEver("F1Md=1", 0x82);
  const auto older = begin(controller->applyPlan(fixed({{0, 3000}, {1, 4000}})));
  pass(1);
  run(controller->applyPlan(FanControlPlan::allAutomatic));
  smc.acceptAll();
  pass(20);
  EXPECT_EQ(smc.writes().back(), "Ftst=0");
  EXPECT_EQ(lastWriteTo("F0Md"), "F0Md=0");
  EXPECT_NE(lastWriteTo("F1Md"), "F1Md=1");
  EXPECT_TRUE(controller->isAtRest());
}

TEST_F(OverlappingPlansTest, TheModeOfTheNewerOneIsReportedThoughTheOlderClaimSucceedsLast) {
  smc.refuseForEver("F0Md=1", 0x82);
  const auto older = begin(controller->applyPlan(onCurve(0)));
  pass(0.25);
  const auto newer = begin(controller->applyPlan(fixed({{0, 5000}})));
  pass(0.07);
  smc.acceptAll(); // The newer one tries at 0.35 s, the older at 0.4 s.
  pass(0.06);
  ASSERT_TRUE(newer->has_value());
  ASSERT_FALSE(older->has_value());
  passAlive(2);
  EXPECT_EQ(state().perFanMode.at(0), ControlMode::manual);
}

TEST_F(OverlappingPlansTest, TheFailureOfTheOlderOneIsNotReportedOverTheNewer) {
  smc.answer = [](const std::string& write) {
    if (write == "F0Md=1") return Written(std::uint8_t{5});
    return Written(write == "F1Md=1" ? std::uint8_t{0x82} : std::uint8_t{0});
  };
  const auto older = begin(controller->applyPlan(fixed({{0, 3000}, {1, 4000}})));
  pass(0.95); // Fan 0 has refused by now.
  const auto newer = begin(controller->applyPlan(fixed({{1, 5000}})));
  smc.acceptAll();
  published();
  passAlive(3);
  EXPECT_EQ(**older, ControlResult::rejected(5));
  EXPECT_EQ(**newer, ControlResult::applied);
  for (const ControlState& seen : published())
    EXPECT_EQ(seen.lastError, std::nullopt);
}

TEST_F(OverlappingPlansTest, APassOfTheOlderOneWritesNoTargetAnyMore) {
  smc.refuseForEver("F1Md=1", 0x82);
  const auto older = begin(controller->applyPlan(fixed({{0, 3000}, {1, 4000}})));
  passAlive(12); // The command has given up, and a pass tries on.
  run(controller->applyPlan(fixed({{0, 5000}})));
  smc.log.clear();
  smc.acceptAll();
  passAlive(3);
  EXPECT_EQ(smc.count("F0Tg=3000"), 0);
  EXPECT_EQ(smc.count("F1Md=1"), 0);
  EXPECT_EQ(state().targets, (Targets{{0, 5000}}));
}

// Where a pass of the older plan suspends when the newer one comes, which leaves fan 1 alone.
class PlanInMidPass : public OverlappingPlansTest, public testing::WithParamInterface<const char*> {};

TEST_P(PlanInMidPass, LeavesNoFanInManualThatNobodyHolds) {
  run(controller->applyPlan(fixed({{0, 3000}, {1, 4000}})));
  at(GetParam(), [this] { return apply(fixed({{0, 5000}})); });
  pass(1.5);
  const Log speeds = writesTo("F1Tg");
  passAlive(5);
  EXPECT_EQ(lastWriteTo("F1Md"), "F1Md=0");
  EXPECT_EQ(writesTo("F1Tg"), speeds);
  EXPECT_EQ(state().targets, (Targets{{0, 5000}}));
}

INSTANTIATE_TEST_SUITE_P(Writes, PlanInMidPass,
                         testing::Values("Ftst=1", "F0Md=1", "F0Tg=3000", "F1Md=1", "F1Tg=4000"));

// The same where the newer pass no longer finds fan 1 among the fans that the sensors know.
class PassInMidPass : public OverlappingPlansTest, public testing::WithParamInterface<const char*> {};

TEST_P(PassInMidPass, TakesNoFanAnewThatTheNewerOneGivesBack) {
  run(controller->applyPlan(fixed({{0, 3000}, {1, 4000}})));
  at(GetParam(), [this] {
    sensors.next.fans.pop_back();
    return apply(fixed({{0, 5000}, {1, 5000}}));
  });
  pass(1.5);
  passAlive(5);
  EXPECT_EQ(lastWriteTo("F1Md"), "F1Md=0");
  EXPECT_EQ(state().targets, (Targets{{0, 5000}}));
}

INSTANTIATE_TEST_SUITE_P(Writes, PassInMidPass,
                         testing::Values("Ftst=1", "F0Md=1", "F0Tg=3000", "F1Md=1", "F1Tg=4000"));

// Where an older plan or release is when the newer plan comes, which wants fan 1 that it gives back.
class PlanInMidRelease : public OverlappingPlansTest, public testing::WithParamInterface<const char*> {
protected:
  void expectBothHeld() {
    passAlive(4);
    EXPECT_EQ(state().targets, (Targets{{0, 5000}, {1, 5000}}));
    EXPECT_EQ(state().perFanMode.size(), 2U);
    EXPECT_TRUE(state().isHolding);
    EXPECT_EQ(lastWriteTo("F1Md"), "F1Md=1");
    EXPECT_EQ(lastWriteTo("Ftst"), "Ftst=1");
  }
};

TEST_P(PlanInMidRelease, OfAnOlderPlanHasItsFans) {
  run(controller->applyPlan(fixed({{0, 3000}, {1, 4000}})));
  at(GetParam(), [this] { return apply(fixed({{0, 5000}, {1, 5000}})); });
  run(controller->applyPlan(fixed({{0, 3000}})));
  expectBothHeld();
}

TEST_P(PlanInMidRelease, OfAllFansHasItsFans) {
  run(controller->applyPlan(fixed({{0, 3000}, {1, 4000}})));
  at(GetParam(), [this] { return apply(fixed({{0, 5000}, {1, 5000}})); });
  run(controller->automatic());
  expectBothHeld();
}

INSTANTIATE_TEST_SUITE_P(Writes, PlanInMidRelease, testing::Values("Ftst=1", "F1Md=0"));

TEST_F(OverlappingPlansTest, AWatchdogsReportDoesNotHideTheNewerOne) {
  constexpr std::uint32_t fanCount = 8; // All of them are given back, known from the start.
  smc.setNumber("FNum", fanCount);
  for (std::uint32_t fan = 0; fan < fanCount; ++fan)
    smc.setNumber(fmt::format("F{}Md", fan), 0);
  run(controller->restoreAllFansToAutomatic());
  run(controller->applyPlan(fixed({{0, 3000}})));
  sensors.setCelsius(96);
  at("F0Md=0", [this] {
    sensors.setCelsius(50);
    return apply(fixed({{0, 5000}}));
  });
  pass(1.5);
  EXPECT_EQ(lastError(), "none");
  EXPECT_TRUE(state().isHolding);
}

/// Takes a while to say how many fans there are.
class SlowlyCountingSMC final : public hardware::SMCWriting {
public:
  SlowlyCountingSMC(ScriptedSMC& smc, runtime::Clock& clock) : smc_(smc), clock_(clock) {}

  Async<Written> writeUInt8(std::string key, std::uint8_t value) override {
    return smc_.writeUInt8(std::move(key), value);
  }
  Async<Written> writeFloat(std::string key, double value) override {
    return smc_.writeFloat(std::move(key), value);
  }
  Async<hardware::SMCResult<hardware::SMCValue>> readValue(std::string key) override {
    return smc_.readValue(std::move(key));
  }
  Async<std::optional<hardware::SMCValue>> tryReadValue(std::string key) override {
    if (key == "FNum") co_await clock_.sleep(std::chrono::milliseconds(10), runtime::StopToken());
    co_return co_await smc_.tryReadValue(std::move(key));
  }

private:
  ScriptedSMC& smc_;
  runtime::Clock& clock_;
};

/// A full blast that has still to learn how many fans there are when something else comes.
class OvertakenFullBlastTest : public OverlappingPlansTest {
protected:
  OvertakenFullBlastTest() {
    controller =
        std::make_shared<LocalFanController>(context.get_executor(), clock, counting, sensors, privileges);
    blast = begin(controller->fullBlast());
  }
  // The controller works on what stands here.
  ~OvertakenFullBlastTest() override {
    run(controller->restoreAuto());
    controller =
        std::make_shared<LocalFanController>(context.get_executor(), clock, smc, sensors, privileges);
  }

  SlowlyCountingSMC counting{smc, clock};
  std::shared_ptr<std::optional<ControlResult>> blast;
};

TEST_F(OvertakenFullBlastTest, DoesNotUndoANewerRelease) {
  run(controller->automatic());
  passAlive(2);
  EXPECT_EQ(*blast, ControlResult::reclaimed);
  EXPECT_TRUE(controller->isAtRest());
}

TEST_F(OvertakenFullBlastTest, DoesNotUndoANewerSpeed) {
  run(controller->setManual(0, 3000));
  passAlive(2);
  EXPECT_EQ(state().targets, (Targets{{0, 3000}, {1, 8000}}));
}

TEST_F(OvertakenFullBlastTest, DoesNotUndoANewerPlan) {
  run(controller->applyPlan(fixed({{1, 3000}})));
  passAlive(2);
  EXPECT_EQ(state().targets, (Targets{{1, 3000}}));
}

TEST_F(OvertakenFullBlastTest, KeepsNoCommandThatWaitedForItFromBeingOvertakenAsWell) {
  const auto speed = begin(controller->setManual(0, 3000));
  run(controller->automatic());
  passAlive(2);
  EXPECT_EQ(*speed, ControlResult::reclaimed);
  EXPECT_TRUE(controller->isAtRest());
}

TEST_F(OvertakenFullBlastTest, IsThePlanInForceForWhoAsksAfterIt) {
  EXPECT_EQ(run(controller->activePlan()).fans.size(), 2U);
}

} // namespace
} // namespace ventolith::helper
