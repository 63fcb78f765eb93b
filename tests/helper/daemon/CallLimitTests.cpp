// What one caller may have under way, and what becomes of the calls of one that goes.
#include "helper/daemon/ServiceFixture.h"

namespace ventolith::helper {

using Lines = std::vector<std::string>;
using Reason = Refusal::Reason;

class CallLimitTest : public ServiceTest {
protected:
  /// Fills the house with questions of strangers that nobody answers.
  void fillHouse() {
    authorizer.holdsBack = true;
    for (std::size_t call = 0; call < FanHelperService::mostUnansweredOfAll; ++call)
      EXPECT_FALSE(*begin(fmt::format(":2.{}", call), messages::FullBlast()));
  }
  static messages::ApplyConfig largestBody() { return {std::string(FanHelperService::mostBodyBytes, ' ')}; }
  std::vector<Call> beginMany(std::size_t count) {
    std::vector<Call> calls;
    for (std::size_t call = 0; call < count; ++call)
      calls.push_back(begin(anna, messages::FullBlast()));
    return calls;
  }
};

TEST_F(CallLimitTest, TheThirtyThirdUnansweredCallIsRefused) {
  authorizer.holdsBack = true;
  const auto calls = beginMany(32);
  EXPECT_EQ(std::count_if(calls.begin(), calls.end(), [](const Call& call) { return call->has_value(); }), 0);
  EXPECT_EQ(reasonOf(answer(anna, messages::FullBlast())), Reason::tooManyCalls);
}

TEST_F(CallLimitTest, ReadingIsRefusedTooWhileTooManyCallsAreUnanswered) {
  authorizer.holdsBack = true;
  beginMany(32);
  EXPECT_EQ(reasonOf(answer(anna, messages::ReadState())), Reason::tooManyCalls);
  EXPECT_EQ(reasonOf(answer(anna, messages::HelperVersion())), Reason::tooManyCalls);
}

TEST_F(CallLimitTest, AnotherCallerIsNotConcerned) {
  authorizer.holdsBack = true;
  beginMany(32);
  EXPECT_EQ(answer(bert, messages::HelperVersion()), HelperAnswer(replies::Version{"2.0.0+9"}));
}

TEST_F(CallLimitTest, AnAnswerMakesRoomForACall) {
  authorizer.holdsBack = true;
  beginMany(32);
  allow(0);
  EXPECT_FALSE(*begin(anna, messages::FullBlast()));
  EXPECT_EQ(reasonOf(answer(anna, messages::FullBlast())), Reason::tooManyCalls);
}

TEST_F(CallLimitTest, CallsThatHaveBegunCountUntilTheyAreAnswered) {
  fans.holdBack("fullBlast");
  beginMany(32);
  EXPECT_EQ(reasonOf(answer(anna, messages::Automatic())), Reason::tooManyCalls);
  fans.letGo("fullBlast");
  time.clock.settle();
  EXPECT_EQ(answer(anna, messages::Automatic()), code(0));
}

TEST_F(CallLimitTest, OneLineIsLoggedForABurstOfThem) {
  fans.holdBack("fullBlast");
  beginMany(100);
  EXPECT_EQ(log.warnings, Lines{":1.1 is refused: more than 32 calls at once"});
  fans.letGo("fullBlast");
  time.clock.settle();

  fans.holdBack("fullBlast");
  beginMany(100);
  EXPECT_EQ(log.warnings.size(), 2U);
  fans.letGo("fullBlast");
  time.clock.settle();
}

TEST_F(CallLimitTest, ABodyOverTheBoundIsRefusedBeforePermissionIsAskedFor) {
  const messages::ApplyConfig body{std::string(FanHelperService::mostBodyBytes + 1, ' ')};
  EXPECT_EQ(reasonOf(answer(anna, body)), Reason::bodyTooLarge);
  EXPECT_TRUE(authorizer.asked.empty());
  EXPECT_EQ(service.knownCallers(), 0U);
}

TEST_F(CallLimitTest, ABodyAtTheBoundIsRead) {
  std::string body = plan(2).plan;
  body.resize(FanHelperService::mostBodyBytes, ' ');
  EXPECT_EQ(answer(anna, messages::ApplyConfig{body}), code(0));
  EXPECT_EQ(fans.log, Lines{"applyPlan 2"});
}

TEST_F(CallLimitTest, OneLineIsLoggedForARowOfLargeBodies) {
  const messages::ApplyConfig body{std::string(FanHelperService::mostBodyBytes + 1, ' ')};
  for (int call = 0; call < 10; ++call)
    begin(anna, body);
  EXPECT_EQ(log.warnings, Lines{":1.1 is refused: a body of more than 1048576 bytes"});
  begin(anna, plan(1));
  begin(anna, body);
  EXPECT_EQ(log.warnings.size(), 2U);
}

TEST_F(CallLimitTest, CallsThatHaveNotBegunAreDroppedWhenTheirCallerGoes) {
  authorizer.holdsBack = true;
  const Call first = begin(anna, messages::FullBlast());
  const Call second = begin(anna, messages::Automatic());
  gone(anna);
  EXPECT_EQ(log.notes, Lines{":1.1 is gone: 2 of its calls dropped, 0 go on without an answer"});
  EXPECT_TRUE(fans.log.empty());
  EXPECT_EQ(**first, std::nullopt);
  EXPECT_EQ(**second, std::nullopt);
  EXPECT_EQ(service.knownCallers(), 0U);
}

TEST_F(CallLimitTest, AnAdmittedCallerThatGivesItsFansBackAsItLeavesIsHeard) {
  for (const HelperMessage& goodbye :
       {HelperMessage(messages::RestoreAuto()), HelperMessage(messages::Automatic())}) {
    fans.log.clear();
    authorizer.holdsBack = false;
    begin(anna, plan(1));
    authorizer.holdsBack = true;
    begin(anna, goodbye);
    gone(anna);
    EXPECT_EQ(fans.log.size(), 2U);
    EXPECT_NE(fans.log.back().find("uto"), std::string::npos);
  }
}

TEST_F(CallLimitTest, ACallThatHasBegunRunsOnWithoutAnAnswerWhenItsCallerGoes) {
  fans.holdBack("applyPlan");
  const Call call = begin(anna, plan(1));
  gone(anna);
  EXPECT_EQ(log.notes.size(), 1U);
  EXPECT_NE(log.notes.back().find("0 of its calls dropped, 1 go on"), std::string::npos) << log.notes.back();
  fans.letGo("applyPlan");
  time.clock.settle();
  EXPECT_EQ(**call, std::nullopt);
}

TEST_F(CallLimitTest, ACallOfACallerThatIsGoneAlreadyLeavesNothingBehind) {
  authorizer.verdicts[anna] = false; // Nobody admits who is gone.
  gone(anna);
  begin(anna, messages::FullBlast());
  EXPECT_EQ(service.knownCallers(), 0U);
  EXPECT_TRUE(fans.log.empty());
}

TEST_F(CallLimitTest, WhatACallerThatGoesHasAskedIsNoLongerWaitedFor) {
  authorizer.holdsBack = true;
  for (std::size_t caller = 0; caller < 1000; ++caller) {
    const std::string name = fmt::format(":2.{}", caller);
    const Call call = begin(name, largestBody());
    gone(name);
    ASSERT_TRUE(*call) << caller;
  }
  EXPECT_EQ(service.knownCallers(), 0U);
}

TEST_F(CallLimitTest, AllCallersTogetherHaveABound) {
  fillHouse();
  EXPECT_EQ(reasonOf(answer(anna, messages::FullBlast())), Reason::tooManyCalls);
  EXPECT_EQ(service.knownCallers(), FanHelperService::mostUnansweredOfAll);
  decide(0, false);
  EXPECT_FALSE(*begin(anna, messages::FullBlast()));
}

TEST_F(CallLimitTest, AFullHouseStillTellsItsState) {
  fillHouse();
  EXPECT_TRUE(*begin(anna, messages::ReadState()));
}

TEST_F(CallLimitTest, AFullHouseStillTakesTheCallsOfAnAdmittedCaller) {
  begin(anna, messages::FullBlast());
  fillHouse();
  EXPECT_FALSE(*begin(anna, messages::SetPercent{0, 50}));
  EXPECT_FALSE(*begin(anna, messages::Automatic()));
  allow(FanHelperService::mostUnansweredOfAll);
  allow(FanHelperService::mostUnansweredOfAll + 1);
  EXPECT_EQ(fans.log, (Lines{"fullBlast", "setPercent 0 50", "automatic"}));
}

TEST_F(CallLimitTest, TheBodiesOfAllCallersTogetherHaveABound) {
  authorizer.holdsBack = true;
  for (std::size_t caller = 0; caller < 8; ++caller)
    EXPECT_FALSE(*begin(fmt::format(":2.{}", caller), largestBody()));
  EXPECT_EQ(reasonOf(answer(anna, messages::ApplyConfig{" "})), Reason::tooManyCalls);
  EXPECT_FALSE(*begin(bert, messages::Automatic())); // Brings none.
  gone(":2.0");
  EXPECT_FALSE(*begin(anna, largestBody()));
}

TEST(Complaints, TheOldestIsForgottenFirst) {
  Complaints complaints;
  for (std::size_t caller = 0; caller <= Complaints::most; ++caller)
    EXPECT_TRUE(complaints.isNew(Reason::notAuthorized, {std::to_string(caller)}));
  EXPECT_FALSE(complaints.isNew(Reason::notAuthorized, {"1"}));
  EXPECT_TRUE(complaints.isNew(Reason::notAuthorized, {"0"}));
}

} // namespace ventolith::helper
