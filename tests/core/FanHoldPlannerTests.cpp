#include "core/FanHoldPlanner.h"
#include "support/Plans.h"

#include <gtest/gtest.h>

namespace ventolith::core {
namespace {

const FanDecision released = FanDecision::releaseToAuto();
const FanDecision stopped = FanDecision::idleStopped();
FanDecision target(double rpm) {
  return FanDecision::target(rpm);
}
using IDs = std::vector<FanID>;

TEST(FanHoldPlanner, NothingDecidedAndNothingClaimedGivesTheEmptyValue) {
  const FanHoldActions actions = FanHoldPlanner::actions({}, {});
  EXPECT_EQ(actions, FanHoldActions());
  EXPECT_FALSE(actions.forceTestEnabled);
  EXPECT_FALSE(actions.isGlobalIdle);
}

TEST(FanHoldPlanner, ClaimedFanWithoutDecisionIsReleased) {
  EXPECT_EQ(FanHoldPlanner::actions({}, {0, 1}), (FanHoldActions{.toRelease = {0, 1}}));
}

TEST(FanHoldPlanner, RunningAndParkedFansAreBothHeld) {
  EXPECT_EQ(FanHoldPlanner::actions({{0, target(3000)}, {1, stopped}}, {1}),
            (FanHoldActions{.toClaim = {0},
                            .toRelease = {},
                            .targets = {{0, 3000}, {1, 0}},
                            .forceTestEnabled = true,
                            .stoppedFans = {1},
                            .isGlobalIdle = false}));
}

TEST(FanHoldPlanner, ParkedFanAloneIsGlobalIdleAndHeldAtZero) {
  EXPECT_EQ(FanHoldPlanner::actions({{1, stopped}}, {}), (FanHoldActions{.toClaim = {1},
                                                                         .targets = {{1, 0}},
                                                                         .forceTestEnabled = true,
                                                                         .stoppedFans = {1},
                                                                         .isGlobalIdle = true}));
}

TEST(FanHoldPlanner, ReleasedFanHasNoTarget) {
  EXPECT_EQ(FanHoldPlanner::actions({{0, released}}, {0}), (FanHoldActions{.toRelease = {0}}));
}

TEST(FanHoldPlanner, ReleasedFanThatIsNotClaimedNeedsNothing) {
  EXPECT_EQ(FanHoldPlanner::actions({{0, released}}, {}), FanHoldActions());
}

TEST(FanHoldPlanner, ReleasedFanBesideAParkedOneLeavesGlobalIdle) {
  const FanHoldActions actions = FanHoldPlanner::actions({{0, released}, {1, stopped}}, {0, 1});
  EXPECT_TRUE(actions.isGlobalIdle);
  EXPECT_EQ(actions.toRelease, IDs{0});
}

TEST(FanHoldPlanner, TargetOfZeroIsARunningFan) {
  const FanHoldActions actions = FanHoldPlanner::actions({{0, target(0)}}, {});
  EXPECT_FALSE(actions.isGlobalIdle);
  EXPECT_TRUE(actions.stoppedFans.empty());
  EXPECT_TRUE(actions.forceTestEnabled);
}

TEST(FanHoldPlanner, ClaimedFanThatGoesOnIsNeitherClaimedNorReleased) {
  const FanHoldActions actions = FanHoldPlanner::actions({{0, target(2500.5)}, {1, stopped}}, {0, 1});
  EXPECT_TRUE(actions.toClaim.empty());
  EXPECT_TRUE(actions.toRelease.empty());
  EXPECT_EQ(actions.targets, (std::map<FanID, double>{{0, 2500.5}, {1, 0}}));
}

TEST(FanHoldPlanner, ListsAscend) {
  const FanHoldActions actions = FanHoldPlanner::actions(
      {{10, stopped}, {2, target(1)}, {7, stopped}, {-1, stopped}, {30, released}, {4, target(1)}},
      {50, 20, 30, -5});
  EXPECT_EQ(actions.toClaim, (IDs{-1, 2, 4, 7, 10}));
  EXPECT_EQ(actions.toRelease, (IDs{-5, 20, 30, 50}));
  EXPECT_EQ(actions.stoppedFans, (IDs{-1, 7, 10}));
}

} // namespace
} // namespace ventolith::core
