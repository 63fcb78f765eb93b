#include "helper/engine/EngineFixture.h"

namespace ventolith::helper {
namespace {

using FanClaimTest = EngineTest;
using Log = std::vector<std::string>;

TEST_F(FanClaimTest, AMachineThatAcceptsTheModeKeyAtOnceNeverSeesTheLatchFromTheClaim) {
  run(controller->applyPlan(fixed({{0, 3000}})));
  // The latch that follows is the pass's own.
  EXPECT_EQ(smc.log, (Log{"F0Md?", "F0Md=1", "Ftst=1", "F0Md=1", "F0Tg=3000", "F0Md?"}));
}

TEST_F(FanClaimTest, ARefusedFirstAttemptSetsTheLatchAndTriesAgain) {
  smc.refuse("F0Md=1", {0x82});
  EXPECT_EQ(run(controller->applyPlan(fixed({{0, 3000}}))), ControlResult::applied);
  EXPECT_EQ(smc.writes(), (Log{"F0Md=1", "Ftst=1", "F0Md=1", "Ftst=1", "F0Md=1", "F0Tg=3000"}));
}

TEST_F(FanClaimTest, FifthIdenticalRefusalEndsTheClaim) {
  smc.refuseForEver("F0Md=1", 5);
  sensors.next.fans.clear(); // So that the first pass does not claim anew.
  const auto start = clock.now();
  const auto result = begin(controller->applyPlan(fixed({{0, 3000}})));
  pass(0.35);
  EXPECT_EQ(smc.count("F0Md=1"), 1 + 4);
  EXPECT_FALSE(result->has_value());
  pass(0.05);
  ASSERT_TRUE(result->has_value());
  EXPECT_EQ(**result, ControlResult::rejected(5));
  EXPECT_EQ(clock.now() - start, std::chrono::milliseconds(400));
}

TEST_F(FanClaimTest, TheFirstAttemptIsNotRemembered) {
  smc.refuse("F0Md=1", {5, 5, 5, 5, 5}); // One before the latch, four after it: one too few.
  EXPECT_EQ(run(controller->applyPlan(fixed({{0, 3000}}))), ControlResult::applied);
}

TEST_F(FanClaimTest, AnotherCodeInBetweenStartsTheCountAnew) {
  smc.refuse("F0Md=1", {1, 5, 5, 6, 5, 5, 5, 5, 5, 0});
  EXPECT_EQ(run(controller->applyPlan(fixed({{0, 3000}}))), ControlResult::rejected(5));
  // The attempt before the latch, and eight after it; then the pass claims anew and is accepted.
  const auto firstAccepted = std::find(smc.log.begin(), smc.log.end(), "F0Tg=3000");
  EXPECT_EQ(std::count(smc.log.begin(), firstAccepted, "F0Md=1"), 1 + 8 + 1 + 1);
}

TEST_F(FanClaimTest, NotYetAloneRunsUntilTheBudgetAndTimesOut) {
  smc.refuseForEver("F0Md=1", 0x82);
  const auto start = clock.now();
  sensors.next.fans.clear();
  const auto result = begin(controller->applyPlan(fixed({{0, 3000}})));
  pass(9.95);
  EXPECT_FALSE(result->has_value());
  EXPECT_EQ(smc.count("F0Md=1"), 1 + 100);
  pass(0.05);
  ASSERT_TRUE(result->has_value());
  EXPECT_EQ(**result, ControlResult::timedOut);
  EXPECT_EQ(clock.now() - start, std::chrono::seconds(10));
  EXPECT_EQ(lastError(), "applyPlan: timedOut");
}

TEST_F(FanClaimTest, TheLatchIsRewrittenWithEveryTwentiethAttempt) {
  smc.refuseForEver("F0Md=1", 0x82);
  sensors.next.fans.clear();
  const auto result = begin(controller->applyPlan(fixed({{0, 3000}})));
  pass(1.85); // Attempts at 0.0 to 1.8: nineteen.
  EXPECT_EQ(smc.count("Ftst=1"), 1);
  pass(0.05);
  EXPECT_EQ(smc.count("Ftst=1"), 2);
  EXPECT_EQ(smc.log.back(), "F0Md=1"); // The latch first, then the attempt.
  EXPECT_EQ(smc.log[smc.log.size() - 2], "Ftst=1");
  pass(8.1);
  EXPECT_EQ(smc.count("Ftst=1"), 1 + 5); // With attempts 20, 40, 60, 80 and 100.
  EXPECT_TRUE(result->has_value());
}

TEST_F(FanClaimTest, NotYetStartsTheCountAnew) {
  smc.refuse("F0Md=1", {1, 5, 5, 5, 5, 0x82, 5, 5, 5, 5});
  EXPECT_EQ(run(controller->applyPlan(fixed({{0, 3000}}))), ControlResult::applied);
}

TEST_F(FanClaimTest, ADriverFailureFiveTimesRunningIsRejectedWith255) {
  smc.failForEver("F0Md=1");
  EXPECT_EQ(run(controller->applyPlan(fixed({{0, 3000}}))), ControlResult::rejected(255));
}

TEST_F(FanClaimTest, AKeyThatReadsAsRawStillResolves) {
  smc.values.insert_or_assign("F0Md", hardware::SMCValue{hardware::SMCValue::Raw{}});
  EXPECT_EQ(run(controller->applyPlan(fixed({{0, 3000}}))), ControlResult::applied);
}

TEST_F(FanClaimTest, TheLowerCaseKeyIsTheSecondChoice) {
  smc.values.erase("F0Md");
  smc.setNumber("F0md", 0);
  run(controller->applyPlan(fixed({{0, 3000}})));
  EXPECT_EQ(smc.log, (Log{"F0Md?", "F0md?", "F0md=1", "Ftst=1", "F0md=1", "F0Tg=3000", "F0md?"}));
}

TEST_F(FanClaimTest, AResolvedKeyIsNotAskedForAgain) {
  run(controller->applyPlan(fixed({{0, 3000}})));
  run(controller->automatic());
  smc.log.clear();
  run(controller->applyPlan(fixed({{0, 3000}})));
  EXPECT_EQ(smc.log.front(), "F0Md=1");
}

TEST_F(FanClaimTest, AnUnresolvedKeyIsAskedForAgain) {
  smc.values.erase("F0Md");
  EXPECT_EQ(run(controller->applyPlan(fixed({{0, 3000}}))),
            ControlResult::failed("neither F<n>Md nor F<n>md exists on this machine"));
  smc.setNumber("F0Md", 0);
  EXPECT_EQ(run(controller->applyPlan(fixed({{0, 3000}}))), ControlResult::applied);
}

TEST_F(FanClaimTest, AFanThatNoKeyCanNameHasNoModeKey) {
  for (const FanID fan : {FanID{-1}, FanID{10}, FanID{1'000'000}}) {
    EXPECT_EQ(run(controller->applyPlan(fixed({{fan, 3000}}))),
              ControlResult::failed("neither F<n>Md nor F<n>md exists on this machine"));
  }
}

TEST_F(FanClaimTest, OtherOperationsGetThroughDuringAClaim) {
  smc.refuseForEver("F0Md=1", 0x82);
  const auto claiming = begin(controller->applyPlan(fixed({{0, 3000}})));
  pass(5);
  const auto before = clock.now();
  run(controller->heartbeat());
  EXPECT_EQ(run(controller->applyPlan(fixed({{1, 2500}}))), ControlResult::applied);
  EXPECT_EQ(clock.now(), before);
  EXPECT_FALSE(claiming->has_value());
}

} // namespace
} // namespace ventolith::helper
