// Who may control the fans: polkit's word, and a user's own helper.
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
#include <optional>
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

/// Somebody on the bus who is another user. Only root can play one.
class AnotherUser {
public:
  explicit AnotherUser(const PrivateBus& bus)
      : program_("/usr/bin/setpriv",
                 {"--reuid=65534", "--regid=65534", "--clear-groups", "/usr/bin/python3", "-c",
                  "import dbus, time, sys\n"
                  "print(dbus.bus.BusConnection(sys.argv[1]).get_unique_name(), flush=True)\n"
                  "time.sleep(60)",
                  bus.address()},
                 Environment()) {
    waitUntil("another user", [&] {
      if (!program_.isRunning()) throw std::runtime_error("another user cannot be played: " + program_.err());
      return !program_.outLines().empty();
    });
  }

  [[nodiscard]] HelperCaller caller() const { return {program_.outLines().front()}; }

private:
  Program program_;
};

struct Authorization : testing::Test {
  PrivateBus privateBus;
  ServiceLoop loop;
  platform::Bus bus{loop.executor(), privateBus.address()};
  std::unique_ptr<sdbus::IConnection> client = connectTo(privateBus);
  HelperCaller caller{client->getUniqueName()};
  HelperCaller callerThatIsGone{connectTo(privateBus)->getUniqueName()};
};

struct PolkitAuthorization : Authorization {
  platform::PolkitAuthorizer authorizer{bus};

  void answer(MockPeer& polkit, const std::string& code) const {
    polkit.answer("CheckAuthorization", "(sa{sv})sa{ss}us", "(bba{ss})", code);
  }
  bool mayControl() { return loop.await(authorizer.mayControlFans(caller)); }
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

TEST_F(PolkitAuthorization, AsksAboutTheCallerAndLetsAPersonBeAsked) {
  MockPeer polkit(privateBus, polkitObject);
  answer(polkit, "ret = (args == [('system-bus-name', {'name': '" + caller.name +
                     "'}), 'com.ventolith.helper.control-fans', {}, 1, ''], False, {})");
  EXPECT_TRUE(mayControl()) << polkit.calls().back();
}

TEST_F(PolkitAuthorization, NobodyIsAskedForACallerThatDoesNotWaitForIt) {
  MockPeer polkit(privateBus, polkitObject);
  answer(polkit, "ret = (args[3] == 0, False, {})");
  EXPECT_FALSE(mayControl());
  EXPECT_TRUE(loop.await(authorizer.mayControlFans({caller.name, false})));
}

TEST_F(PolkitAuthorization, EachCallIsAskedAbout) {
  MockPeer polkit(privateBus, polkitObject);
  answer(polkit, "ret = (True, False, {})");
  EXPECT_TRUE(mayControl());
  answer(polkit, "ret = (False, False, {})");
  EXPECT_FALSE(mayControl());
}

TEST_F(PolkitAuthorization, OthersGoOnWhilePolkitThinks) {
  MockPeer polkit(privateBus, polkitObject, "polkitd");
  polkit.control("AllowUnknown", true);
  polkit.control("SimulateHang", true);
  platform::SameUserAuthorizer other(bus);

  const auto slow = loop.begin(authorizer.mayControlFans(caller));
  EXPECT_TRUE(loop.await(other.mayControlFans(caller)));
  loop.clock().advance(1h);
  loop.runFor(50ms);
  EXPECT_FALSE(slow->has_value());

  polkit.control("ReleaseHangingCalls");
  EXPECT_TRUE(loop.end(slow));
}

TEST_F(PolkitAuthorization, PolkitThatGoesWithoutAnAnswerAdmitsRootAlone) {
  MockPeer polkit(privateBus, polkitObject, "polkitd");
  polkit.control("SimulateHang", true);
  const auto asked = loop.begin(authorizer.mayControlFans(caller));
  loop.until("the question", [&] {
    bool isAsked = false;
    polkit.proxy()
        .callMethod("HaveHangingCalls")
        .onInterface("org.freedesktop.DBus.Mock")
        .storeResultsTo(isAsked);
    return isAsked;
  });
  polkit.kill();
  EXPECT_EQ(loop.end(asked), isRoot());
}

TEST_F(PolkitAuthorization, WithoutPolkitRootAloneIsAdmitted) {
  EXPECT_EQ(mayControl(), isRoot());
}

TEST_F(PolkitAuthorization, WithoutPolkitAnotherUserIsNotAdmitted) {
  if (!isRoot()) GTEST_SKIP() << "only root can play another user; WithoutPolkitRootAloneIsAdmitted saw this";
  const AnotherUser another(privateBus);
  EXPECT_FALSE(loop.await(authorizer.mayControlFans(another.caller())));
}

TEST_F(PolkitAuthorization, AnErrorOfPolkitAdmitsNobodyElse) {
  MockPeer polkit(privateBus, polkitObject);
  answer(polkit, "raise dbus.exceptions.DBusException('no such action', "
                 "name='org.freedesktop.PolicyKit1.Error.Failed')");
  EXPECT_EQ(mayControl(), isRoot());
}

TEST_F(PolkitAuthorization, AnAnswerOfAnotherFormAdmitsNobodyElse) {
  MockPeer polkit(privateBus, polkitObject);
  polkit.answer("CheckAuthorization", "(sa{sv})sa{ss}us", "b", "ret = True");
  EXPECT_EQ(mayControl(), isRoot());
}

TEST_F(PolkitAuthorization, ACallerThatIsGoneIsNotAdmitted) {
  EXPECT_FALSE(loop.await(authorizer.mayControlFans(callerThatIsGone)));
}

TEST_F(PolkitAuthorization, WithoutABusNobodyIsAdmitted) {
  privateBus.kill();
  EXPECT_FALSE(mayControl());
}

TEST_F(PolkitAuthorization, TheFirstFailureInARowIsReported) {
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
  EXPECT_EQ(linesOf(3), 1);
}

TEST_F(SameUserAuthorization, TheSameUserIsAdmitted) {
  EXPECT_TRUE(loop.await(authorizer.mayControlFans(caller)));
}

TEST_F(SameUserAuthorization, AnotherUserIsNotAdmitted) {
  if (!isRoot()) GTEST_SKIP() << "only root can play another user";
  const AnotherUser another(privateBus);
  EXPECT_FALSE(loop.await(authorizer.mayControlFans(another.caller())));
}

TEST_F(SameUserAuthorization, ACallerThatIsGoneIsNotAdmitted) {
  EXPECT_FALSE(loop.await(authorizer.mayControlFans(callerThatIsGone)));
}

} // namespace

} // namespace ventolith::e2e
