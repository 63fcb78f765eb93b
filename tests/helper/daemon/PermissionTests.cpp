// Who may change anything, in which order changes begin, and whose heartbeats count.
#include "helper/daemon/ServiceFixture.h"

namespace ventolith::helper {

using core::ControlResult;
using Lines = std::vector<std::string>;
using Reason = Refusal::Reason;

using PermissionTest = ServiceTest;

TEST_F(PermissionTest, EveryChangeAsksForIt) {
  const std::vector<HelperMessage> changes = {messages::SetManualRPM{0, 3000},
                                              messages::SetPercent{0, 50},
                                              messages::FullBlast(),
                                              messages::Automatic(),
                                              plan(1),
                                              messages::RestoreAuto(),
                                              messages::ShutdownForUpgrade()};
  for (const auto& change : changes)
    begin(anna, change);
  EXPECT_EQ(authorizer.asked, Lines(changes.size(), anna));
}

TEST_F(PermissionTest, AStrangersCommandIsAnsweredNotPrivileged) {
  authorizer.verdicts[anna] = false;
  for (const HelperMessage& change :
       {HelperMessage(messages::SetManualRPM{0, 3000}), HelperMessage(messages::SetPercent{0, 50}),
        HelperMessage(messages::FullBlast()), HelperMessage(messages::Automatic()), HelperMessage(plan(1))}) {
    EXPECT_EQ(answer(anna, change), code(ControlResult::notPrivileged.xpcCode())) << nameOf(change);
  }
  EXPECT_TRUE(fans.log.empty());
}

TEST_F(PermissionTest, AStrangersMessageWithoutACodeIsRefused) {
  authorizer.verdicts[anna] = false;
  EXPECT_EQ(reasonOf(answer(anna, messages::RestoreAuto())), Reason::notAuthorized);
  EXPECT_EQ(reasonOf(answer(anna, messages::ShutdownForUpgrade())), Reason::notAuthorized);
  EXPECT_TRUE(fans.log.empty());
  EXPECT_EQ(timesRoomWasMade, 0);
}

TEST_F(PermissionTest, OneLineIsLoggedForARefusedCallerHoweverOftenItCalls) {
  authorizer.verdicts = {{anna, false}, {bert, false}};
  for (int call = 0; call < 100; ++call)
    begin(anna, messages::FullBlast());
  begin(bert, messages::FullBlast());
  EXPECT_EQ(log.warnings, (Lines{":1.1 is refused: it may not control the fans",
                                 ":1.2 is refused: it may not control the fans"}));
}

TEST_F(PermissionTest, AChangeWaitsForItsPermission) {
  authorizer.holdsBack = true;
  const Call call = begin(anna, messages::FullBlast());
  EXPECT_TRUE(fans.log.empty());
  allow(0);
  EXPECT_EQ(fans.log, Lines{"fullBlast"});
  EXPECT_TRUE(*call);
}

TEST_F(PermissionTest, StateIsToldWhileAPermissionIsAwaited) {
  authorizer.holdsBack = true;
  begin(anna, messages::FullBlast());
  EXPECT_TRUE(*begin(anna, messages::ReadState()));
}

TEST_F(PermissionTest, ChangesOfOneCallerBeginInTheirOrderThoughPermissionsComeInAnother) {
  authorizer.holdsBack = true;
  begin(anna, messages::SetManualRPM{0, 1});
  begin(anna, messages::SetManualRPM{0, 2});
  begin(anna, messages::SetManualRPM{0, 3});
  allow(2);
  allow(1);
  EXPECT_TRUE(fans.log.empty());
  allow(0);
  EXPECT_EQ(fans.log, (Lines{"setManual 0 1", "setManual 0 2", "setManual 0 3"}));
}

TEST_F(PermissionTest, AChangeThatIsRefusedDoesNotKeepTheNextFromBeginning) {
  authorizer.holdsBack = true;
  const Call first = begin(anna, messages::SetManualRPM{0, 1});
  begin(anna, messages::SetManualRPM{0, 2});
  allow(1);
  decide(0, false);
  EXPECT_EQ(**first, code(ControlResult::notPrivileged.xpcCode()));
  EXPECT_EQ(fans.log, Lines{"setManual 0 2"});
}

TEST_F(PermissionTest, CallersDoNotWaitForOneAnother) {
  authorizer.holdsBack = true;
  begin(anna, messages::SetManualRPM{0, 1});
  begin(bert, messages::SetManualRPM{0, 2});
  allow(1);
  EXPECT_EQ(fans.log, Lines{"setManual 0 2"});
}

TEST_F(PermissionTest, AReleaseOvertakesAClaimOfTheSameCaller) {
  fans.holdBack("applyPlan");
  const Call claim = begin(anna, plan(1));
  const Call release = begin(anna, messages::Automatic());
  EXPECT_EQ(fans.log, (Lines{"applyPlan 1", "automatic"}));
  EXPECT_TRUE(*release);
  EXPECT_FALSE(*claim);
  fans.letGo("applyPlan");
}

TEST_F(PermissionTest, AHeartbeatOfAStrangerDoesNotCount) {
  authorizer.verdicts[anna] = false;
  begin(anna, messages::Heartbeat());
  begin(anna, messages::FullBlast());
  begin(anna, messages::Heartbeat());
  EXPECT_TRUE(fans.log.empty());
}

TEST_F(PermissionTest, AHeartbeatOfACallerThatWasAllowedAChangeCounts) {
  begin(anna, messages::Automatic());
  EXPECT_EQ(answer(anna, messages::Heartbeat()), std::nullopt);
  begin(bert, messages::Heartbeat());
  EXPECT_EQ(fans.log, (Lines{"automatic", "heartbeat"}));
}

TEST_F(PermissionTest, AHeartbeatDoesNotCountBeforeThePermissionIsThere) {
  authorizer.holdsBack = true;
  begin(anna, messages::FullBlast());
  begin(anna, messages::Heartbeat());
  EXPECT_TRUE(fans.log.empty());
}

TEST_F(PermissionTest, AHeartbeatDoesNotCountOnceTheCallerIsGone) {
  begin(anna, messages::Automatic());
  gone(anna);
  begin(anna, messages::Heartbeat());
  EXPECT_EQ(fans.log, Lines{"automatic"});
}

TEST_F(PermissionTest, AHeartbeatDoesNotCountAfterARefusal) {
  begin(anna, messages::Automatic());
  authorizer.verdicts[anna] = false;
  begin(anna, messages::FullBlast());
  begin(anna, messages::Heartbeat());
  EXPECT_EQ(fans.log, Lines{"automatic"});
}

TEST_F(PermissionTest, AHeartbeatCountsByTheLastChangeThatWasAskedForThoughPermissionsComeInAnotherOrder) {
  authorizer.holdsBack = true;
  begin(anna, messages::SetManualRPM{0, 1});
  begin(anna, messages::SetManualRPM{0, 2});
  allow(1);
  decide(0, false);
  begin(anna, messages::Heartbeat());
  EXPECT_EQ(fans.log, (Lines{"setManual 0 2", "heartbeat"}));
  begin(anna, messages::SetManualRPM{0, 3});
  begin(anna, messages::SetManualRPM{0, 4});
  decide(3, false);
  allow(2);
  begin(anna, messages::Heartbeat());
  EXPECT_EQ(fans.log, (Lines{"setManual 0 2", "heartbeat", "setManual 0 3"}));
}

TEST_F(PermissionTest, ACallerIsWatchedBeforeItsPermissionIsAskedFor) {
  authorizer.holdsBack = true;
  begin(anna, messages::FullBlast());
  EXPECT_EQ(listener.watched, Lines{anna});
}

TEST_F(PermissionTest, AnAdmittedCallerIsWatchedUntilItIsGone) {
  begin(anna, messages::FullBlast());
  begin(anna, messages::Automatic());
  EXPECT_EQ(listener.watched, Lines{anna});
  gone(anna);
  EXPECT_EQ(service.knownCallers(), 0U);
}

TEST_F(PermissionTest, StrangersLeaveNothingBehind) {
  for (int stranger = 0; stranger < 1000; ++stranger) {
    const std::string name = fmt::format(":2.{}", stranger);
    authorizer.verdicts[name] = false;
    begin(name, messages::HelperVersion());
    begin(name, messages::Heartbeat());
    begin(name, messages::FullBlast());
  }
  EXPECT_EQ(service.knownCallers(), 0U);
  EXPECT_TRUE(listener.watched.empty());
}

TEST_F(PermissionTest, AStrangerWithAnotherQuestionOpenStaysKnownUntilThatIsAnswered) {
  authorizer.holdsBack = true;
  begin(anna, messages::FullBlast());
  begin(anna, messages::FullBlast());
  decide(0, false);
  EXPECT_EQ(listener.watched, Lines{anna});
  decide(1, false);
  EXPECT_TRUE(listener.watched.empty());
}

} // namespace ventolith::helper
