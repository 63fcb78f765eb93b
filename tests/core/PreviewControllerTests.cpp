// What each call of the preview controller logs, yields and leaves behind.
#include "core/PreviewController.h"
#include "support/Plans.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ventolith::core {
namespace {

using namespace std::chrono_literals;

class PreviewControllerTest : public testing::Test {
protected:
  ControlResult run(runtime::Async<ControlResult> call) { return time.clock.run(std::move(call)); }

  std::vector<ControlState> yielded() {
    std::vector<ControlState> states;
    while (auto state = controller.stateStream().tryNext())
      states.push_back(std::move(*state));
    return states;
  }

  support::VirtualTime time;
  std::vector<std::string> printed;
  PreviewController controller{time.executor(), time.clock,
                               [this](const std::string& line) { printed.push_back(line); }};
};
using States = std::vector<ControlState>;
using Lines = std::vector<std::string>;

TEST_F(PreviewControllerTest, NewOneIsAutomaticAndSilent) {
  EXPECT_EQ(controller.mode(), ControlMode::automatic);
  EXPECT_TRUE(controller.log().empty());
  EXPECT_TRUE(yielded().empty());
}

TEST_F(PreviewControllerTest, SetManualYieldsAcquiringAndThenHeld) {
  EXPECT_EQ(run(controller.setManual(1, 3800)), ControlResult::applied);
  EXPECT_EQ(controller.log(), Lines{"setManual(fan: 1, rpm: 3800)"});
  EXPECT_EQ(controller.mode(), ControlMode::manual);
  EXPECT_EQ(yielded(),
            (States{ControlState::idle,
                    {.perFanMode = {{1, ControlMode::manual}}, .targets = {{1, 3800}}, .isHolding = true}}));
}

TEST_F(PreviewControllerTest, SetPercentKnowsNoTarget) {
  EXPECT_EQ(run(controller.setPercent(0, 50)), ControlResult::applied);
  EXPECT_EQ(controller.log(), Lines{"setPercent(fan: 0, percent: 50.0)"});
  EXPECT_EQ(controller.mode(), ControlMode::manual);
  EXPECT_EQ(yielded(),
            (States{ControlState::idle, {.perFanMode = {{0, ControlMode::manual}}, .isHolding = true}}));
}

TEST_F(PreviewControllerTest, SetPercentKeepsTheTargetOfBefore) {
  run(controller.setManual(0, 3800));
  run(controller.setPercent(0, 12.5));
  EXPECT_EQ(yielded().back().targets, (std::map<FanID, std::int64_t>{{0, 3800}}));
  EXPECT_EQ(controller.log().back(), "setPercent(fan: 0, percent: 12.5)");
}

TEST_F(PreviewControllerTest, FullBlastChangesNoFan) {
  EXPECT_EQ(run(controller.fullBlast()), ControlResult::applied);
  EXPECT_EQ(controller.log(), Lines{"fullBlast()"});
  EXPECT_EQ(controller.mode(), ControlMode::fullBlast);
  EXPECT_EQ(yielded(), (States{ControlState::idle, {.isHolding = true}}));
}

TEST_F(PreviewControllerTest, FullBlastKeepsTheFansOfBefore) {
  run(controller.setManual(2, 4000));
  run(controller.fullBlast());
  const ControlState held = yielded().back();
  EXPECT_EQ(held.perFanMode, (std::map<FanID, ControlMode>{{2, ControlMode::manual}}));
  EXPECT_EQ(held.targets, (std::map<FanID, std::int64_t>{{2, 4000}}));
}

TEST_F(PreviewControllerTest, AcquiringStateDiffersInIsHoldingAlone) {
  run(controller.setManual(2, 4000));
  ControlState expected = yielded().back();
  run(controller.fullBlast());
  expected.isHolding = false;
  EXPECT_EQ(yielded().front(), expected);
}

TEST_F(PreviewControllerTest, ApplyPlanOfNothingHoldsNothing) {
  EXPECT_EQ(run(controller.applyPlan(FanControlPlan::allAutomatic)), ControlResult::applied);
  EXPECT_EQ(controller.log(), Lines{"applyPlan(fans: 0, controlled: 0, rules: 0)"});
  EXPECT_EQ(yielded(), (States{ControlState::idle, ControlState::idle}));
}

TEST_F(PreviewControllerTest, ApplyPlanOfAutomaticFansListsThemAndHoldsNothing) {
  const auto automatic = FanControlModePlan::automatic();
  run(controller.applyPlan(support::plan({{0, automatic}, {1, automatic}}, {support::rule()})));
  EXPECT_EQ(controller.log(), Lines{"applyPlan(fans: 2, controlled: 0, rules: 1)"});
  EXPECT_EQ(yielded().back(),
            (ControlState{.perFanMode = {{0, ControlMode::automatic}, {1, ControlMode::automatic}}}));
}

TEST_F(PreviewControllerTest, ApplyPlanShowsEachModeOfAPlan) {
  run(controller.applyPlan(support::plan({{0, FanControlModePlan::automatic()},
                                          {1, FanControlModePlan::fixedPercent(100)},
                                          {2, FanControlModePlan::fixedPercent(99.9)},
                                          {3, FanControlModePlan::fixedRPM(9000)},
                                          {4, support::percentAsCelsius()},
                                          {5, FanControlModePlan::fixedPercent(120)}})));
  EXPECT_EQ(controller.log(), Lines{"applyPlan(fans: 6, controlled: 5, rules: 0)"});
  EXPECT_EQ(yielded().back(), (ControlState{.perFanMode = {{0, ControlMode::automatic},
                                                           {1, ControlMode::fullBlast},
                                                           {2, ControlMode::manual},
                                                           {3, ControlMode::manual},
                                                           {4, ControlMode::manual},
                                                           {5, ControlMode::fullBlast}},
                                            .isHolding = true}));
}

TEST_F(PreviewControllerTest, ApplyPlanLeavesTheModeAlone) {
  run(controller.applyPlan(support::planOf(FanControlModePlan::fixedPercent(100))));
  EXPECT_EQ(controller.mode(), ControlMode::automatic);
  run(controller.fullBlast());
  run(controller.applyPlan(support::planOf(FanControlModePlan::fixedRPM(3000))));
  EXPECT_EQ(controller.mode(), ControlMode::fullBlast);
}

TEST_F(PreviewControllerTest, ApplyPlanKeepsTheFansThatItDoesNotList) {
  run(controller.setManual(7, 3000));
  run(controller.applyPlan(support::planOf(FanControlModePlan::automatic())));
  EXPECT_EQ(yielded().back(),
            (ControlState{.perFanMode = {{0, ControlMode::automatic}, {7, ControlMode::manual}},
                          .targets = {{7, 3000}}}));
}

TEST_F(PreviewControllerTest, LastEntryOfAFanThatIsListedTwiceStands) {
  run(controller.applyPlan(
      support::plan({{0, FanControlModePlan::fixedPercent(100)}, {0, FanControlModePlan::automatic()}})));
  EXPECT_EQ(yielded().back().perFanMode, (std::map<FanID, ControlMode>{{0, ControlMode::automatic}}));
}

TEST_F(PreviewControllerTest, AutomaticYieldsIdleOnce) {
  run(controller.setManual(0, 3000));
  yielded();
  EXPECT_EQ(run(controller.automatic()), ControlResult::applied);
  EXPECT_EQ(controller.log().back(), "automatic()");
  EXPECT_EQ(controller.mode(), ControlMode::automatic);
  EXPECT_EQ(yielded(), States{ControlState::idle});
}

TEST_F(PreviewControllerTest, RestoreAutoYieldsIdleOnce) {
  run(controller.fullBlast());
  yielded();
  time.clock.run(controller.restoreAuto());
  EXPECT_EQ(controller.log().back(), "restoreAuto()");
  EXPECT_EQ(controller.mode(), ControlMode::automatic);
  EXPECT_EQ(yielded(), States{ControlState::idle});
}

TEST_F(PreviewControllerTest, HeartbeatIsLoggedAlone) {
  time.clock.run(controller.heartbeat());
  EXPECT_EQ(controller.log(), Lines{"heartbeat()"});
  EXPECT_TRUE(yielded().empty());
}

TEST_F(PreviewControllerTest, LimitedLogLosesItsOldestEntries) {
  PreviewController limited(
      time.executor(), time.clock, [](const std::string&) {}, PreviewController::defaultAcquireDelay, 2);
  time.clock.run(limited.heartbeat());
  time.clock.run(limited.restoreAuto());
  time.clock.run(limited.heartbeat());
  EXPECT_EQ(limited.log(), (Lines{"restoreAuto()", "heartbeat()"}));
}

TEST_F(PreviewControllerTest, EachEntryIsPrintedUnderItsTag) {
  run(controller.setManual(0, -1));
  time.clock.run(controller.heartbeat());
  EXPECT_EQ(printed,
            (Lines{"[PreviewController] setManual(fan: 0, rpm: -1)", "[PreviewController] heartbeat()"}));
}

} // namespace
} // namespace ventolith::core
