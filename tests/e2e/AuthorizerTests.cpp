// Who may control the fans: polkit's word, and a user's own helper.
#include "e2e/FullStandardError.h"
#include "e2e/MockPeer.h"
#include "e2e/PrivateBus.h"
#include "e2e/ServiceLoop.h"
#include "platform/linux/service/PolkitAuthorizer.h"
#include "platform/linux/service/SameUserAuthorizer.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>

namespace ventolith::e2e {

namespace {

using helper::HelperCaller;
using namespace std::chrono_literals;

const MockedObject polkitObject{.name = "org.freedesktop.PolicyKit1",
                                .path = "/org/freedesktop/PolicyKit1/Authority",
                                .interface = "org.freedesktop.PolicyKit1.Authority"};

bool isRoot() {
  return ::geteuid() == 0;
}

/// Somebody on the bus who is not root.
std::unique_ptr<sdbus::IConnection> connectNotAsRoot(const PrivateBus& bus) {
  const NotAsRoot another;
  return connectTo(bus);
}

struct Authorization : testing::Test {
  PrivateBus privateBus;
  ServiceLoop loop;
  platform::Bus bus{loop.executor(), privateBus.address()};
  std::unique_ptr<sdbus::IConnection> ownClient = connectTo(privateBus);
  std::unique_ptr<sdbus::IConnection> client = connectNotAsRoot(privateBus);
  HelperCaller thisUser{ownClient->getUniqueName()};
  HelperCaller caller{client->getUniqueName()}; // Not root.
  HelperCaller callerThatIsGone{connectTo(privateBus)->getUniqueName()};
};

struct PolkitAuthorization : Authorization {
  platform::PolkitAuthorizer authorizer{bus, loop.clock()};

  void answer(MockPeer& polkit, const std::string& code) const {
    polkit.answer("CheckAuthorization", "(sa{sv})sa{ss}us", "(bba{ss})", code);
  }
  /// A polkit that takes a question and never answers it.
  std::unique_ptr<MockPeer> hangingPolkit() const {
    auto polkit = std::make_unique<MockPeer>(privateBus, polkitObject, "polkitd");
    polkit->control("SimulateHang", true);
    return polkit;
  }
  void untilAsked(const MockPeer& polkit) {
    loop.until("the question", [&] {
      bool isAsked = false;
      polkit.proxy()
          .callMethod("HaveHangingCalls")
          .onInterface("org.freedesktop.DBus.Mock")
          .storeResultsTo(isAsked);
      return isAsked;
    });
  }
  bool mayControl() { return loop.await(authorizer.mayControlFans(caller, {})); }
};

struct SameUserAuthorization : Authorization {
  platform::SameUserAuthorizer authorizer{bus};
};

struct PolkitAnswer {
  std::string name;
  std::string python;
  bool isAdmission = false;
};

struct EachPolkitAnswer : PolkitAuthorization, testing::WithParamInterface<PolkitAnswer> {};

TEST_P(EachPolkitAnswer, DecidesAlone) {
  MockPeer polkit(privateBus, polkitObject);
  answer(polkit, "ret = " + GetParam().python);
  EXPECT_EQ(mayControl(), GetParam().isAdmission);
}

INSTANTIATE_TEST_SUITE_P(
    Authorization, EachPolkitAnswer,
    testing::Values(PolkitAnswer{"Yes", "(True, False, {})", true}, PolkitAnswer{"No", "(False, False, {})"},
                    PolkitAnswer{"YesAfterAChallenge",
                                 "(True, False, {'polkit.retains_authorization_after_challenge': '1'})",
                                 true},
                    PolkitAnswer{"ChallengeThatNobodyAnswers", "(False, True, {})"},
                    PolkitAnswer{"Dismissed", "(False, False, {'polkit.dismissed': 'true'})"}),
    [](const auto& answer) { return answer.param.name; });

TEST_F(PolkitAuthorization, AsksAboutTheCallerWithoutAPerson) {
  MockPeer polkit(privateBus, polkitObject);
  answer(polkit, "ret = (args == [('system-bus-name', {'name': '" + caller.name +
                     "'}), 'com.ventolith.helper.control-fans', {}, 0, ''], False, {})");
  EXPECT_TRUE(mayControl()) << polkit.calls().back();
}

TEST_F(PolkitAuthorization, AChallengeIsPutToAPerson) {
  MockPeer polkit(privateBus, polkitObject);
  answer(polkit, "ret = (args == [('system-bus-name', {'name': '" + caller.name +
                     "'}), 'com.ventolith.helper.control-fans', {}, 1, ''], args[3] == 0, {})");
  EXPECT_TRUE(mayControl()) << polkit.calls().back();
  EXPECT_EQ(polkit.count("CheckAuthorization"), 2U);
}

TEST_F(PolkitAuthorization, NoPersonIsAskedWhatPolkitRefusesAnyway) {
  MockPeer polkit(privateBus, polkitObject);
  answer(polkit, "ret = (args[3] == 1, False, {})");
  EXPECT_FALSE(mayControl());
}

TEST_F(PolkitAuthorization, NobodyIsAskedForACallerThatDoesNotWaitForIt) {
  MockPeer polkit(privateBus, polkitObject);
  answer(polkit, "ret = (args[3] == 1, True, {})");
  EXPECT_FALSE(loop.await(authorizer.mayControlFans({caller.name, false}, {})));
  EXPECT_TRUE(mayControl());
}

TEST_F(PolkitAuthorization, EachCallIsAskedAbout) {
  MockPeer polkit(privateBus, polkitObject);
  answer(polkit, "ret = (True, False, {})");
  EXPECT_TRUE(mayControl());
  answer(polkit, "ret = (False, False, {})");
  EXPECT_FALSE(mayControl());
}

TEST_F(PolkitAuthorization, OthersGoOnWhilePolkitThinks) {
  const auto polkit = hangingPolkit();
  polkit->control("AllowUnknown", true);
  platform::SameUserAuthorizer other(bus);

  const auto slow = loop.begin(authorizer.mayControlFans(caller, {}));
  EXPECT_TRUE(loop.await(other.mayControlFans(thisUser, {})));
  untilAsked(*polkit);
  EXPECT_FALSE(slow->has_value());

  polkit->control("ReleaseHangingCalls");
  EXPECT_TRUE(loop.end(slow));
  EXPECT_EQ(loop.clock().sleeperCount(), 0U); // Nor does the limit outlive the question.
}

TEST_F(PolkitAuthorization, PolkitThatHangsAdmitsNobodyAfterFiveSeconds) {
  const auto polkit = hangingPolkit();
  const auto asked = loop.begin(authorizer.mayControlFans(caller, {}));
  untilAsked(*polkit);
  loop.clock().advance(4999ms);
  loop.runFor(20ms);
  EXPECT_FALSE(asked->has_value());
  loop.clock().advance(1ms);
  EXPECT_FALSE(loop.end(asked));
}

TEST_F(PolkitAuthorization, RootIsAdmittedWithoutPolkitsWord) {
  if (!isRoot()) GTEST_SKIP() << "only root can play root";
  const auto polkit = hangingPolkit();
  EXPECT_TRUE(loop.await(authorizer.mayControlFans(thisUser, {})));
}

TEST_F(PolkitAuthorization, APersonMayTakeAsLongAsItTakes) {
  MockPeer polkit(privateBus, polkitObject);
  answer(polkit, "import time\n"
                 "if args[3] == 1: time.sleep(0.5)\n"
                 "ret = (args[3] == 1, True, {})");
  const auto asked = loop.begin(authorizer.mayControlFans(caller, {}));
  loop.until("the person's question", [&] { return polkit.calls().size() == 2; });
  loop.clock().advance(1h);
  EXPECT_TRUE(loop.end(asked));
}

TEST_F(PolkitAuthorization, AQuestionIsGivenUpWithItsCaller) {
  const auto polkit = hangingPolkit();
  runtime::StopSource gone;
  const auto asked = loop.begin(authorizer.mayControlFans(caller, gone.token()));
  untilAsked(*polkit);
  testing::internal::CaptureStderr();
  gone.requestStop();
  EXPECT_FALSE(loop.end(asked));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), ""); // It is no failure of polkit's.
  EXPECT_EQ(loop.clock().sleeperCount(), 0U);
}

TEST_F(PolkitAuthorization, PolkitThatGoesWithoutAnAnswerAdmitsNobody) {
  const auto polkit = hangingPolkit();
  const auto asked = loop.begin(authorizer.mayControlFans(caller, {}));
  untilAsked(*polkit);
  polkit->kill();
  EXPECT_FALSE(loop.end(asked));
}

TEST_F(PolkitAuthorization, WithoutPolkitRootAloneIsAdmitted) {
  EXPECT_EQ(loop.await(authorizer.mayControlFans(thisUser, {})), isRoot());
}

TEST_F(PolkitAuthorization, WithoutPolkitAnotherUserIsNotAdmitted) {
  EXPECT_FALSE(mayControl());
}

TEST_F(PolkitAuthorization, AnErrorOfPolkitAdmitsNobodyElse) {
  MockPeer polkit(privateBus, polkitObject);
  answer(polkit, "raise dbus.exceptions.DBusException('no such action', "
                 "name='org.freedesktop.PolicyKit1.Error.Failed')");
  EXPECT_FALSE(mayControl());
}

TEST_F(PolkitAuthorization, AnAnswerOfAnotherFormAdmitsNobodyElse) {
  MockPeer polkit(privateBus, polkitObject);
  polkit.answer("CheckAuthorization", "(sa{sv})sa{ss}us", "b", "ret = True");
  EXPECT_FALSE(mayControl());
}

TEST_F(PolkitAuthorization, ACallerThatIsGoneIsNotAdmitted) {
  EXPECT_FALSE(loop.await(authorizer.mayControlFans(callerThatIsGone, {})));
}

TEST_F(PolkitAuthorization, WithoutABusNobodyIsAdmitted) {
  privateBus.kill();
  EXPECT_FALSE(mayControl());
}

TEST_F(PolkitAuthorization, AFailureIsReportedOnceAMinuteWhateverComesBetween) {
  const auto linesOf = [&](int calls) {
    testing::internal::CaptureStderr();
    for (int call = 0; call < calls; ++call)
      mayControl();
    const std::string said = testing::internal::GetCapturedStderr();
    return std::count(said.begin(), said.end(), '\n');
  };
  EXPECT_EQ(linesOf(3), 1);
  {
    MockPeer polkit(privateBus, polkitObject);
    answer(polkit, "ret = (False, False, {})");
    EXPECT_EQ(linesOf(1), 0);
  }
  waitUntilOwned(privateBus, polkitObject.name, false);
  EXPECT_EQ(linesOf(3), 0);
  loop.clock().advance(1min);
  EXPECT_EQ(linesOf(3), 1);
}

TEST_F(PolkitAuthorization, AFailureThatCannotBeReportedEndsNothing) {
  const FullStandardError full;
  EXPECT_FALSE(mayControl());
}

TEST_F(SameUserAuthorization, TheSameUserIsAdmitted) {
  EXPECT_TRUE(loop.await(authorizer.mayControlFans(thisUser, {})));
}

TEST_F(SameUserAuthorization, AnotherUserIsNotAdmitted) {
  if (!isRoot()) GTEST_SKIP() << "only root can play another user";
  EXPECT_FALSE(loop.await(authorizer.mayControlFans(caller, {})));
}

TEST_F(SameUserAuthorization, ACallerThatIsGoneIsNotAdmitted) {
  EXPECT_FALSE(loop.await(authorizer.mayControlFans(callerThatIsGone, {})));
}

} // namespace

} // namespace ventolith::e2e
