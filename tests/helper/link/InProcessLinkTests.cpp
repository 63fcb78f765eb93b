#include "helper/link/LinkFixture.h"

namespace ventolith::helper {
namespace {

class InProcessLinkTest : public LinkTest {
protected:
  struct Told {
    int interruptions = 0;
    int invalidations = 0;
  };

  std::unique_ptr<HelperChannel> open() { return open(told); }
  std::unique_ptr<HelperChannel> open(Told& record) {
    auto channel = link.channels()();
    channel->resume({.interrupted = [&record] { ++record.interruptions; },
                     .invalidated = [&record] { ++record.invalidations; }});
    return channel;
  }
  using Reply = std::optional<HelperReply>;
  inline static const std::optional<Reply> endedWithoutReply = std::make_optional(Reply());

  Told told;
};

TEST_F(InProcessLinkTest, ACallIsAnswered) {
  bringUp();
  const auto channel = open();
  EXPECT_EQ(run(channel->call(messages::HelperVersion{})), Reply(replies::Version{ownBuild}));
}

TEST_F(InProcessLinkTest, ARefusalArrivesAsNoReply) {
  bringUp();
  helper.answers["FullBlast"] = Refusal{Refusal::Reason::tooManyCalls, "enough"};
  EXPECT_EQ(run(open()->call(messages::FullBlast{})), std::nullopt);
}

TEST_F(InProcessLinkTest, WithoutAHelperThereIsNoReply) {
  EXPECT_EQ(run(open()->call(messages::FullBlast{})), std::nullopt);
}

TEST_F(InProcessLinkTest, MessagesOfAChannelArriveInOrderWithoutWaitingForAnswers) {
  bringUp();
  helper.hold("FullBlast");
  const auto channel = open();
  const auto first = begin(channel->call(messages::FullBlast{}));
  channel->send(messages::Heartbeat{});
  const auto second = begin(channel->call(messages::Automatic{}));
  EXPECT_EQ(helper.log(), (Log{"FullBlast", "Heartbeat", "Automatic"}));
  EXPECT_TRUE(second->has_value());
  EXPECT_FALSE(first->has_value());
}

TEST_F(InProcessLinkTest, EveryChannelIsACallerOfItsOwn) {
  bringUp();
  const auto one = open();
  const auto other = open();
  run(one->call(messages::Automatic{}));
  run(other->call(messages::Automatic{}));
  run(one->call(messages::Automatic{}));
  ASSERT_EQ(helper.callers.size(), 3U);
  EXPECT_NE(helper.callers[0], helper.callers[1]);
  EXPECT_EQ(helper.callers[0], helper.callers[2]);
}

TEST_F(InProcessLinkTest, MessagesWaitForTheListenerToBeResumed) {
  listener = link.claimListener();
  const auto reply = begin(open(told)->call(messages::Automatic{}));
  const auto channel = open();
  const auto waiting = begin(channel->call(messages::Automatic{}));
  EXPECT_FALSE(waiting->has_value());
  listener->resume(helper, [](const std::string&) {});
  time.clock.settle();
  EXPECT_EQ(*waiting, Reply(replies::Code{0}));
  EXPECT_EQ(helper.count("Automatic"), 1); // The first channel has gone with its message.
  EXPECT_EQ(*reply, endedWithoutReply);
}

TEST_F(InProcessLinkTest, ThereIsOneHelperAtATime) {
  bringUp();
  EXPECT_THROW((void)link.claimListener(), std::logic_error);
  kill();
  EXPECT_NO_THROW(bringUp());
}

TEST_F(InProcessLinkTest, AHelperThatIsKilledInterruptsAndAnswersNothing) {
  bringUp();
  helper.hold("FullBlast");
  const auto channel = open();
  const auto reply = begin(channel->call(messages::FullBlast{}));
  kill();
  EXPECT_EQ(*reply, endedWithoutReply);
  EXPECT_EQ(told.interruptions, 1);
  EXPECT_EQ(told.invalidations, 0);
}

TEST_F(InProcessLinkTest, TheChannelReachesTheNextHelper) {
  bringUp();
  const auto channel = open();
  kill();
  EXPECT_EQ(run(channel->call(messages::Automatic{})), std::nullopt);
  bringUp();
  EXPECT_EQ(run(channel->call(messages::Automatic{})), Reply(replies::Code{0}));
}

TEST_F(InProcessLinkTest, AListenerThatIsInvalidatedGivesNoAnswersAnyMore) {
  bringUp();
  helper.hold("FullBlast");
  const auto channel = open();
  const auto reply = begin(channel->call(messages::FullBlast{}));
  listener->invalidate();
  time.clock.settle();
  EXPECT_EQ(*reply, endedWithoutReply);
  EXPECT_EQ(told.interruptions, 1);
}

TEST_F(InProcessLinkTest, AListenerThatIsCutOffLearnsIt) {
  std::string reason;
  listener = link.claimListener();
  listener->resume(helper, [&](std::string text) { reason = std::move(text); });
  link.loseHelper("the line was cut");
  time.clock.settle();
  EXPECT_EQ(reason, "the line was cut");
}

TEST_F(InProcessLinkTest, AListenerThatIsKilledOrInvalidatedIsToldNothing) {
  bool isTold = false;
  listener = link.claimListener();
  listener->resume(helper, [&](const std::string&) { isTold = true; });
  kill();
  listener = link.claimListener();
  listener->resume(helper, [&](const std::string&) { isTold = true; });
  link.loseHelper("cut");
  listener->invalidate(); // Before it could be told.
  time.clock.settle();
  EXPECT_FALSE(isTold);
}

TEST_F(InProcessLinkTest, AChannelThatBreaksIsGoneForGood) {
  bringUp();
  helper.hold("FullBlast");
  const auto channel = open();
  const auto reply = begin(channel->call(messages::FullBlast{}));
  link.breakChannels();
  time.clock.settle();
  EXPECT_EQ(*reply, endedWithoutReply);
  EXPECT_EQ(told.invalidations, 1);
  EXPECT_EQ(run(channel->call(messages::Automatic{})), std::nullopt);
  EXPECT_EQ(told.invalidations, 1);
  EXPECT_EQ(run(open()->call(messages::Automatic{})), Reply(replies::Code{0}));
}

TEST_F(InProcessLinkTest, AChannelThatCannotBeOpenedSaysSoAfterItsFirstUse) {
  link.setReachable(false);
  const auto channel = open();
  time.clock.settle();
  EXPECT_EQ(told.invalidations, 0);
  EXPECT_EQ(run(channel->call(messages::Automatic{})), std::nullopt);
  EXPECT_EQ(told.invalidations, 1);
}

TEST_F(InProcessLinkTest, OneWayMessagesBreakAChannelThatCannotBeOpenedToo) {
  link.setReachable(false);
  const auto channel = open();
  channel->send(messages::Heartbeat{});
  EXPECT_EQ(told.invalidations, 1);
}

TEST_F(InProcessLinkTest, InvalidatingAChannelEndsItsCallsAndCallsNoHandler) {
  bringUp();
  helper.hold("FullBlast");
  Told others;
  const auto other = open(others);
  const auto channel = open();
  const auto reply = begin(channel->call(messages::FullBlast{}));
  const auto untouched = begin(other->call(messages::FullBlast{}));
  channel->invalidate();
  kill();
  EXPECT_EQ(*reply, endedWithoutReply);
  EXPECT_EQ(told.interruptions, 0);
  EXPECT_EQ(told.invalidations, 0);
  EXPECT_EQ(others.interruptions, 1);
}

TEST_F(InProcessLinkTest, TheEndOfAChannelTouchesNoOtherCall) {
  bringUp();
  helper.hold("FullBlast");
  const auto other = open();
  const auto untouched = begin(other->call(messages::FullBlast{}));
  open()->invalidate();
  time.clock.settle();
  EXPECT_FALSE(untouched->has_value());
  helper.letGo();
  time.clock.settle();
  EXPECT_EQ(*untouched, Reply(replies::Code{0}));
}

TEST_F(InProcessLinkTest, OnlyAWatchedCallerIsSeenToGo) {
  bringUp();
  auto watched = open();
  auto unwatched = open();
  auto noLonger = open();
  for (const auto* const channel : {&watched, &unwatched, &noLonger})
    run((*channel)->call(messages::Automatic{}));
  listener->watch(helper.callers[0]);
  listener->watch(helper.callers[2]);
  listener->unwatch(helper.callers[2]);
  unwatched.reset();
  noLonger.reset();
  time.clock.settle();
  EXPECT_TRUE(helper.gone.empty());
  watched.reset();
  EXPECT_TRUE(helper.gone.empty()); // Not in the middle of what the caller does.
  time.clock.settle();
  EXPECT_EQ(helper.gone, std::vector{helper.callers[0]});
}

TEST_F(InProcessLinkTest, ACallerWhoseChannelBreaksIsSeenToGo) {
  bringUp();
  const auto channel = open();
  run(channel->call(messages::Automatic{}));
  listener->watch(helper.callers[0]);
  link.breakChannels();
  time.clock.settle();
  EXPECT_EQ(helper.gone, std::vector{helper.callers[0]});
}

TEST_F(InProcessLinkTest, ItsEndsMayOutliveTheLink) {
  auto shortLived = std::make_unique<InProcessLink>(time.executor());
  const auto channel = shortLived->channels()();
  channel->resume({});
  listener = shortLived->claimListener();
  listener->resume(helper, [](const std::string&) {});
  shortLived.reset();
  EXPECT_EQ(run(channel->call(messages::Automatic{})), Reply(replies::Code{0}));
}

} // namespace
} // namespace ventolith::helper
