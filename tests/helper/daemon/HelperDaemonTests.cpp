// The helper's life, and what its clients see of it.
#include "helper/daemon/DaemonFixture.h"

#include <limits>

namespace ventolith::helper {

using End = HelperDaemon::End;

namespace {

const std::vector<int> automatic = {0, 0};

TEST_F(HelperDaemonTest, GivesEveryFanBackBeforeItServesAndBeforeItIsReady) {
  leaveHeld("F1Md");
  events.clear();
  start();
  EXPECT_EQ(events, (Lines{"Ftst", "F0Md", "F1Md", "Ftst", "resume", "ready"}));
  EXPECT_EQ(modes(), automatic);
  EXPECT_EQ(log.notes, Lines{"every fan is with the firmware"});
}

TEST_F(HelperDaemonTest, AStartThatLeavesAFanIsSaidAndServesAllTheSame) {
  mac->refuseWrites("F0Md", 5);
  start();
  EXPECT_EQ(log.warnings, Lines{"at the start: failed to restore Auto: F0Md=0 rejected (SMC 0x5)"});
  EXPECT_EQ(events.back(), "ready");
  EXPECT_TRUE(supervisor.isWatched); // It goes on trying.
}

TEST_F(HelperDaemonTest, AStartThatCannotCountTheFansIsMadeGoodWhileItServes) {
  leaveHeld("F1Md");
  mac->failDriver("FNum", simulated::DriverFailure::all);
  start();
  EXPECT_EQ(log.warnings, Lines{"at the start: could not read FNum during startup recovery"});
  EXPECT_TRUE(supervisor.isWatched);
  mac->failDriver("FNum", simulated::DriverFailure::none);
  pass(2);
  EXPECT_EQ(modes(), automatic);
  EXPECT_EQ(time.clock.sleeperCount(), 0U);
}

TEST_F(HelperDaemonTest, ToldToEndBeforeTheFansCouldBeCountedItSaysThatTheyAreNotBack) {
  mac->failDriver("FNum", simulated::DriverFailure::all);
  start();
  stop.requestStop();
  pass(9);
  ASSERT_TRUE(outcome);
  EXPECT_FALSE(outcome->areFansBack);
}

TEST_F(HelperDaemonTest, IdleItWaitsForNoTime) {
  start();
  const auto client = connect();
  state(*client);
  EXPECT_EQ(time.clock.sleeperCount(), 0U);
  EXPECT_FALSE(supervisor.isWatched);
}

TEST_F(HelperDaemonTest, IsIdleAgainAfterAPlanWasHeld) {
  start();
  const auto client = connect();
  EXPECT_EQ(command(*client, plan({{0, 3000}})), ControlResult::applied);
  EXPECT_TRUE(supervisor.isWatched);
  passWithHeartbeats(*client, 10);
  EXPECT_EQ(command(*client, messages::Automatic()), ControlResult::applied);
  time.clock.settle();
  EXPECT_EQ(time.clock.sleeperCount(), 0U);
  EXPECT_FALSE(supervisor.isWatched);
}

TEST_F(HelperDaemonTest, OfTwoClientsTheLastPlanWinsAndTheOtherSeesIt) {
  start();
  const auto anna = connect();
  const auto bert = connect();
  EXPECT_EQ(command(*anna, plan({{0, 3000}})), ControlResult::applied);
  EXPECT_EQ(command(*bert, plan({{1, 4000}})), ControlResult::applied);
  EXPECT_EQ(state(*anna).targets, (std::map<FanID, std::int64_t>{{1, 4000}}));
  EXPECT_EQ(modes(), (std::vector<int>{0, 1}));
}

TEST_F(HelperDaemonTest, HeartbeatsOfAnAdmittedClientKeepThePlan) {
  start();
  const auto client = connect();
  command(*client, plan({{0, 3000}}));
  passWithHeartbeats(*client, 60);
  EXPECT_TRUE(state(*client).isHolding);
}

TEST_F(HelperDaemonTest, AStrangersHeartbeatsDoNotKeepThePlanOfAClientThatIsGone) {
  start();
  const auto stranger = connect();
  auto client = connect();
  command(*client, plan({{0, 3000}}));
  client.reset();
  passWithHeartbeats(*stranger, 18);
  EXPECT_EQ(modes(), automatic);
  EXPECT_EQ(state(*stranger).lastError, "no heartbeat for >15s — released to Auto");
}

TEST_F(HelperDaemonTest, AReleaseOvertakesAClaimThatTakesLong) {
  start();
  const auto client = connect();
  mac->refuseWrites("F0Md", 0x82);
  const Reply claim = begin(*client, plan({{0, 3000}}));
  pass(1);
  mac->refuseWrites("F0Md", std::nullopt);
  EXPECT_EQ(command(*client, messages::Automatic()), ControlResult::applied);
  pass(1);
  EXPECT_EQ(**claim, HelperReply(replies::Code{ControlResult::reclaimed.xpcCode()}));
  EXPECT_EQ(modes(), automatic);
}

TEST_F(HelperDaemonTest, NumbersOfAnySizeAreSafe) {
  start();
  const auto client = connect();
  using Limits = std::numeric_limits<std::int64_t>;
  for (const FanID fan : {Limits::min(), FanID{-1}, FanID{0}, FanID{9}, FanID{10}, Limits::max()}) {
    for (const std::int64_t rpm : {Limits::min(), std::int64_t{-1}, std::int64_t{0}, Limits::max()}) {
      begin(*client, messages::SetManualRPM{fan, rpm});
      pass(2);
    }
    for (const double percent : {std::numeric_limits<double>::quiet_NaN(),
                                 std::numeric_limits<double>::infinity(), -1e308, 1e308, 0.0}) {
      begin(*client, messages::SetPercent{fan, percent});
      pass(2);
    }
  }
  for (const auto& [fan, rpm] : state(*client).targets) {
    EXPECT_EQ(fan, 0);
    EXPECT_GE(rpm, 0);
    EXPECT_LE(rpm, 10000);
  }
  EXPECT_EQ(command(*client, messages::Automatic()), ControlResult::applied);
  EXPECT_EQ(modes(), automatic);
}

TEST_F(HelperDaemonTest, APercentageThatIsNoNumberIsAFailed) {
  start();
  const auto client = connect();
  const auto reply =
      time.clock.run(client->call(messages::SetPercent{0, std::numeric_limits<double>::quiet_NaN()}));
  EXPECT_EQ(reply, HelperReply(replies::Code{7}));
}

TEST_F(HelperDaemonTest, WithoutPrivilegeItSaysSoAndAnswersNotPrivileged) {
  privileges.isRoot = false;
  start();
  const auto client = connect();
  EXPECT_EQ(command(*client, plan({{0, 3000}})), ControlResult::notPrivileged);
  EXPECT_EQ(log.warnings,
            Lines{"this process may not control the fans: it can tell their state, and refuses commands"});
}

TEST_F(HelperDaemonTest, EndsForAnUpgradeWhenTheFansAreBackAndTheAnswerIsGiven) {
  start();
  const auto client = connect();
  command(*client, plan({{0, 3000}}));
  const Reply reply = begin(*client, messages::ShutdownForUpgrade());
  pass(1);
  EXPECT_EQ(**reply, HelperReply(replies::Done()));
  ASSERT_TRUE(outcome);
  EXPECT_EQ(outcome->end, End::upgrade);
  EXPECT_TRUE(outcome->areFansBack);
  EXPECT_EQ(modes(), automatic);
  EXPECT_EQ(events.back(), "invalidate");
}

TEST_F(HelperDaemonTest, EndsForAnUpgradeThoughAFanRefusesToGoBack) {
  start();
  const auto client = connect();
  command(*client, plan({{0, 3000}}));
  mac->refuseWrites("F0Md", 5);
  const Reply reply = begin(*client, messages::ShutdownForUpgrade());
  pass(7.9);
  EXPECT_FALSE(*reply);
  EXPECT_FALSE(outcome);
  pass(1);
  EXPECT_EQ(**reply, HelperReply(replies::Done()));
  ASSERT_TRUE(outcome);
  EXPECT_EQ(outcome->end, End::upgrade);
  EXPECT_FALSE(outcome->areFansBack);
  EXPECT_EQ(log.warnings.back(),
            "ending though not every fan is back: failed to restore Auto: F0Md=0 rejected (SMC 0x5)");
}

TEST_F(HelperDaemonTest, ToldToEndItGivesTheFansBackBeforeItLeavesTheLine) {
  start();
  const auto client = connect();
  command(*client, plan({{0, 3000}}));
  events.clear();
  stop.requestStop();
  pass(1);
  EXPECT_EQ(events, (Lines{"stopping", "Ftst", "F0Md", "F1Md", "Ftst", "invalidate"}));
  ASSERT_TRUE(outcome);
  EXPECT_EQ(outcome->end, End::asked);
  EXPECT_TRUE(outcome->areFansBack);
  EXPECT_EQ(modes(), automatic);
}

TEST_F(HelperDaemonTest, ToldToEndInTheMiddleOfAClaimItHoldsNothing) {
  start();
  const auto client = connect();
  mac->refuseWrites("F0Md", 0x82);
  begin(*client, plan({{0, 3000}}));
  pass(1);
  mac->refuseWrites("F0Md", std::nullopt);
  stop.requestStop();
  pass(1);
  ASSERT_TRUE(outcome);
  EXPECT_TRUE(outcome->areFansBack);
  EXPECT_EQ(modes(), automatic);
}

TEST_F(HelperDaemonTest, ToldToEndItTriesAFanThatRefusesForEightSecondsAndSaysSo) {
  start();
  const auto client = connect();
  command(*client, plan({{0, 3000}}));
  mac->refuseWrites("F0Md", 5);
  stop.requestStop();
  pass(7.9);
  EXPECT_FALSE(outcome);
  pass(1);
  ASSERT_TRUE(outcome);
  EXPECT_FALSE(outcome->areFansBack);
}

TEST_F(HelperDaemonTest, ToldToEndItTakesNoFanAnyMore) {
  start();
  const auto client = connect();
  command(*client, plan({{0, 3000}}));
  mac->refuseWrites("F0Md", 5);
  stop.requestStop();
  pass(1);
  const Reply reply = begin(*client, plan({{1, 4000}}));
  EXPECT_EQ(**reply, std::nullopt);
  EXPECT_EQ(modes(), (std::vector<int>{1, 0}));
}

TEST_F(HelperDaemonTest, ToldToEndBeforeItServesItEnds) {
  stop.requestStop();
  start();
  pass(1);
  ASSERT_TRUE(outcome);
  EXPECT_EQ(outcome->end, End::asked);
  EXPECT_TRUE(outcome->areFansBack);
}

TEST_F(HelperDaemonTest, CutOffFromItsClientsItGivesTheFansBackAndEnds) {
  start();
  const auto client = connect();
  command(*client, plan({{0, 3000}}));
  link.loseHelper("the bus is gone");
  pass(1);
  ASSERT_TRUE(outcome);
  EXPECT_EQ(outcome->end, End::lost);
  EXPECT_EQ(modes(), automatic);
  EXPECT_EQ(log.warnings, Lines{"nobody can reach this helper any more: the bus is gone"});
}

TEST_F(HelperDaemonTest, SleepGivesTheFansBackAndTheClientsHeartbeatTakesThemAgain) {
  start();
  const auto client = connect();
  command(*client, plan({{0, 3000}}));
  time.clock.run(sleepEvents.handlers.willSleep());
  EXPECT_EQ(modes(), automatic);
  sleepEvents.handlers.didWake();
  passWithHeartbeats(*client, 20);
  EXPECT_EQ(modes(), (std::vector<int>{1, 0}));
  EXPECT_TRUE(state(*client).isHolding);
}

TEST_F(HelperDaemonTest, AStrangersHeartbeatAfterSleepTakesNoFan) {
  start();
  const auto client = connect();
  const auto stranger = connect();
  command(*client, plan({{0, 3000}}));
  time.clock.run(sleepEvents.handlers.willSleep());
  sleepEvents.handlers.didWake();
  passWithHeartbeats(*stranger, 20);
  EXPECT_EQ(modes(), automatic);
}

} // namespace

} // namespace ventolith::helper
