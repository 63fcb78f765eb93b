// What becomes of messages between a connection and the service. The system's threads are this one here: that
// posting is safe from others is shown at the end.
#include "platform/macos/service/HelperIntake.h"
#include "runtime/Event.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace ventolith;
using helper::HelperAnswer;
using helper::HelperCaller;
using helper::HelperMessage;
using helper::HelperReply;
using platform::HelperIntake;
using runtime::Async;
namespace messages = helper::messages;
namespace replies = helper::replies;

/// Answers an RPM with itself, once it is let.
struct Service final : helper::HelperService {
  explicit Service(const runtime::Executor& executor) : isLet(executor) {}

  Async<HelperAnswer> answer(HelperCaller caller, HelperMessage message) override {
    const auto* const command = std::get_if<messages::SetManualRPM>(&message);
    log.push_back(caller.name + " " +
                  (command ? std::to_string(command->rpm) : helper::nameOf(message).data()));
    if (isHeld) co_await isLet.wait();
    if (refuses) co_return helper::Refusal{helper::Refusal::Reason::tooManyCalls, "too many"};
    if (std::holds_alternative<messages::Heartbeat>(message)) co_return std::nullopt;
    co_return HelperReply(replies::Code{command ? command->rpm : 0});
  }
  void callerIsGone(const HelperCaller& caller) override { log.push_back(caller.name + " is gone"); }

  bool isHeld = false;
  bool refuses = false;
  runtime::Event isLet;
  std::vector<std::string> log;
};

struct HelperIntakeTest : testing::Test {
  using Answer = std::optional<HelperReply>;

  HelperIntakeTest() { intake->serve(service); }
  ~HelperIntakeTest() override {
    if (intake) intake->stop(); // Answers what a test has left over.
    service.isLet.happen();
    settle();
  }

  void command(const HelperIntake::Caller& caller, std::int64_t rpm) {
    caller.take(messages::SetManualRPM{.fan = 0, .rpm = rpm},
                [this, rpm](Answer answer) { answers[rpm].push_back(std::move(answer)); });
  }
  std::shared_ptr<HelperIntake::Caller> admit(uid_t user = 501) {
    return intake->admit(77, user, [this] { ++closed; });
  }
  void settle() { time.clock.settle(); }
  bool mayControlFans(helper::CallerAuthorizer& authorizer, const std::string& caller) {
    bool result = false;
    time.start([](helper::CallerAuthorizer& its, std::string name, bool& answer) -> Async<void> {
      answer = co_await its.mayControlFans({std::move(name)}, runtime::StopToken());
    }(authorizer, caller, result));
    return result;
  }
  static Answer code(std::int64_t value) { return HelperReply(replies::Code{value}); }

  support::VirtualTime time;
  Service service{time.executor()};
  std::shared_ptr<platform::PresentCallers> callers = std::make_shared<platform::PresentCallers>();
  std::shared_ptr<HelperIntake> intake = std::make_shared<HelperIntake>(time.executor(), callers);
  std::map<std::int64_t, std::vector<Answer>> answers;
  int closed = 0;
};

using Answers = std::vector<std::optional<HelperReply>>;

constexpr const char* first = "connection 1 of process 77";
constexpr const char* second = "connection 2 of process 77";

TEST_F(HelperIntakeTest, HandsMessagesOverInTheOrderOfArrivalAndAnswersEachOnce) {
  const auto caller = admit();
  command(*caller, 1000);
  command(*caller, 2000);
  EXPECT_TRUE(service.log.empty()); // Nothing happens where XPC calls.
  settle();
  EXPECT_EQ(service.log,
            (std::vector<std::string>{std::string(first) + " 1000", std::string(first) + " 2000"}));
  EXPECT_EQ(answers[1000], Answers{code(1000)});
  EXPECT_EQ(answers[2000], Answers{code(2000)});
}

TEST_F(HelperIntakeTest, DoesNotHoldAMessageBackForTheAnswerToAnother) {
  const auto caller = admit();
  service.isHeld = true;
  command(*caller, 1000);
  command(*caller, 2000);
  settle();
  EXPECT_EQ(service.log.size(), 2U);
  EXPECT_TRUE(answers.empty());
  service.isLet.happen();
  settle();
  EXPECT_EQ(answers.size(), 2U);
}

TEST_F(HelperIntakeTest, NamesEachConnectionDifferently) {
  const auto one = admit();
  const auto other = admit();
  command(*one, 1);
  command(*other, 2);
  settle();
  EXPECT_EQ(service.log, (std::vector<std::string>{std::string(first) + " 1", std::string(second) + " 2"}));
}

TEST_F(HelperIntakeTest, AnswersARefusalByNone) {
  const auto caller = admit();
  service.refuses = true;
  command(*caller, 1000);
  settle();
  EXPECT_EQ(answers[1000], Answers{std::nullopt});
}

TEST_F(HelperIntakeTest, AnswersNoHeartbeat) {
  const auto caller = admit();
  caller->take(messages::Heartbeat(), nullptr);
  settle();
  EXPECT_EQ(service.log, std::vector<std::string>{std::string(first) + " Heartbeat"});
}

TEST_F(HelperIntakeTest, RefusesACallBeyondTheBoundAtOnce) {
  const auto caller = admit();
  service.isHeld = true;
  constexpr auto most = static_cast<std::int64_t>(HelperIntake::mostCalls);
  for (std::int64_t rpm = 1; rpm <= most + 1; ++rpm)
    command(*caller, rpm);
  EXPECT_EQ(answers, (std::map<std::int64_t, Answers>{{most + 1, {std::nullopt}}}));
  settle();
  EXPECT_EQ(service.log.size(), HelperIntake::mostCalls);
}

TEST_F(HelperIntakeTest, TakesCallsAgainOnceOthersAreAnswered) {
  const auto caller = admit();
  constexpr auto most = static_cast<std::int64_t>(HelperIntake::mostCalls);
  for (std::int64_t rpm = 1; rpm <= most; ++rpm)
    command(*caller, rpm);
  for (std::int64_t beats = 0; beats < most; ++beats)
    caller->take(messages::Heartbeat(), nullptr); // Count too, and are dropped here.
  settle();
  EXPECT_EQ(service.log.size(), HelperIntake::mostCalls);
  command(*caller, 5000);
  settle();
  EXPECT_EQ(answers[5000], Answers{code(5000)});
}

TEST_F(HelperIntakeTest, BoundsEachConnectionByItself) {
  const auto greedy = admit();
  const auto modest = admit();
  service.isHeld = true;
  for (std::size_t call = 0; call <= HelperIntake::mostCalls; ++call)
    command(*greedy, 1);
  command(*modest, 2);
  settle();
  EXPECT_EQ(service.log.back(), std::string(second) + " 2");
}

TEST_F(HelperIntakeTest, LetsInNoConnectionBeyondTheBoundUntilAnotherGoes) {
  std::vector<std::shared_ptr<HelperIntake::Caller>> here;
  for (std::size_t connection = 0; connection < HelperIntake::mostConnections; ++connection)
    here.push_back(admit());
  EXPECT_EQ(admit(), nullptr);
  settle();
  here.front()->gone();
  EXPECT_EQ(admit(), nullptr); // Nobody knows yet that it went.
  settle();
  EXPECT_NE(admit(), nullptr);
  EXPECT_EQ(admit(), nullptr);
}

TEST_F(HelperIntakeTest, AConnectionThatIsNotLetInIsNotClosed) {
  std::vector<std::shared_ptr<HelperIntake::Caller>> here;
  for (std::size_t connection = 0; connection <= HelperIntake::mostConnections; ++connection)
    here.push_back(admit());
  settle();
  EXPECT_EQ(intake->stop(), HelperIntake::mostConnections);
  EXPECT_EQ(closed, static_cast<int>(HelperIntake::mostConnections));
}

TEST_F(HelperIntakeTest, TellsOnceOfAWatchedCallerThatGoes) {
  const auto caller = admit();
  settle();
  intake->watch({first});
  caller->gone();
  caller->gone();
  settle();
  EXPECT_EQ(service.log, std::vector<std::string>{std::string(first) + " is gone"});
}

TEST_F(HelperIntakeTest, TellsOfACallerThatGoesAfterItsMessages) {
  const auto caller = admit();
  settle();
  intake->watch({first});
  command(*caller, 1000);
  caller->gone();
  settle();
  EXPECT_EQ(service.log,
            (std::vector<std::string>{std::string(first) + " 1000", std::string(first) + " is gone"}));
}

TEST_F(HelperIntakeTest, TellsNothingOfACallerThatIsNotWatchedAnyMore) {
  const auto caller = admit();
  settle();
  intake->watch({first});
  intake->unwatch({first});
  caller->gone();
  settle();
  EXPECT_TRUE(service.log.empty());
}

TEST_F(HelperIntakeTest, DoesNotWatchACallerThatIsGone) {
  const auto caller = admit();
  caller->gone();
  settle();
  intake->watch({first});
  caller->gone();
  settle();
  EXPECT_TRUE(service.log.empty());
}

TEST_F(HelperIntakeTest, StoppingRefusesWhatIsUnderWayAndClosesTheConnections) {
  const auto caller = admit();
  const auto other = admit();
  service.isHeld = true;
  command(*caller, 1000);
  settle();
  EXPECT_EQ(intake->stop(), 2U);
  EXPECT_EQ(answers[1000], Answers{std::nullopt});
  EXPECT_EQ(closed, 2);
  service.isLet.happen();
  settle();
  EXPECT_EQ(answers[1000].size(), 1U);
}

TEST_F(HelperIntakeTest, RefusesWhatComesAfterItsStop) {
  const auto caller = admit();
  settle();
  intake->stop();
  command(*caller, 1000);
  EXPECT_EQ(answers[1000], Answers{std::nullopt});
  settle();
  EXPECT_TRUE(service.log.empty());
}

TEST_F(HelperIntakeTest, RefusesWhatItsStopFindsOnTheWay) {
  const auto caller = admit();
  settle();
  command(*caller, 1000);
  intake->stop();
  settle();
  EXPECT_EQ(answers[1000], Answers{std::nullopt});
  EXPECT_TRUE(service.log.empty());
}

TEST_F(HelperIntakeTest, RefusesWhatOutlivesIt) {
  const auto caller = admit();
  service.isHeld = true;
  command(*caller, 1000);
  settle();
  intake.reset();
  EXPECT_EQ(answers[1000], Answers{std::nullopt});
  command(*caller, 2000);
  settle();
  EXPECT_EQ(answers[2000], Answers{std::nullopt});
}

TEST_F(HelperIntakeTest, ClosesNoConnectionThatIsGone) {
  const auto caller = admit();
  caller->gone();
  settle();
  EXPECT_EQ(intake->stop(), 0U);
  EXPECT_EQ(closed, 0);
}

TEST_F(HelperIntakeTest, TheAdmittedMayControlFansAsLongAsTheyAreHere) {
  platform::AdmittedAuthorizer authorizer(callers);
  EXPECT_FALSE(mayControlFans(authorizer, first));
  const auto caller = admit();
  settle();
  EXPECT_TRUE(mayControlFans(authorizer, first));
  caller->gone();
  settle();
  EXPECT_FALSE(mayControlFans(authorizer, first));
}

TEST_F(HelperIntakeTest, OfTheAdmittedOnlyTheSameUserMayWhereThatIsTheRule) {
  platform::SameUserAuthorizer authorizer(callers, 501);
  const auto own = admit(501);
  const auto others = admit(502);
  settle();
  EXPECT_TRUE(mayControlFans(authorizer, first));
  EXPECT_FALSE(mayControlFans(authorizer, second));
  EXPECT_FALSE(mayControlFans(authorizer, "nobody"));
}

TEST_F(HelperIntakeTest, NobodyMayOnceTheQuestionIsWithdrawn) {
  platform::AdmittedAuthorizer admitted(callers);
  platform::SameUserAuthorizer sameUser(callers, 501);
  const auto caller = admit(501);
  settle();
  runtime::StopSource stop;
  stop.requestStop();
  bool answer = true;
  bool other = true;
  time.start([](auto& one, auto& two, runtime::StopToken token, bool& a, bool& b) -> Async<void> {
    a = co_await one.mayControlFans({first}, token);
    b = co_await two.mayControlFans({first}, token);
  }(admitted, sameUser, stop.token(), answer, other));
  EXPECT_FALSE(answer);
  EXPECT_FALSE(other);
}

TEST_F(HelperIntakeTest, TakesMessagesOfManyThreadsEachInItsOrder) {
  constexpr int threads = 4;
  constexpr std::int64_t calls = 50;
  std::vector<std::thread> running;
  for (int thread = 0; thread < threads; ++thread) {
    running.emplace_back([caller = admit()] {
      for (std::int64_t rpm = 1; rpm <= calls; ++rpm)
        caller->take(messages::SetManualRPM{.fan = 0, .rpm = rpm}, nullptr);
    });
  }
  for (auto& thread : running)
    thread.join();
  settle();
  for (int thread = 1; thread <= threads; ++thread) {
    std::int64_t next = 1;
    const std::string name = "connection " + std::to_string(thread) + " of process 77 ";
    for (const auto& line : service.log) {
      if (line.starts_with(name)) EXPECT_EQ(line, name + std::to_string(next++));
    }
    EXPECT_EQ(next, calls + 1);
  }
}

} // namespace
