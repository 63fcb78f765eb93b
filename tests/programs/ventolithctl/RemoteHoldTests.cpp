// `apply --hold`: a plan in the helper, kept alive from here.
#include "programs/ventolithctl/RemoteFixture.h"

namespace ventolith::ctl {
namespace {

using core::ControlResult;
using std::chrono::seconds;
using Names = std::vector<std::string>;
using Times = std::vector<double>;
namespace messages = helper::messages;

class RemoteHold : public RemoteTest {
protected:
  RemoteHold() {
    // A helper that does as it is told.
    helper.onMessage = [this](const helper::HelperMessage& message) {
      if (helper.result != ControlResult::applied) return;
      if (std::holds_alternative<messages::ApplyConfig>(message)) helper.state = holding(0, 3000);
      if (std::holds_alternative<messages::Automatic>(message)) helper.state = core::ControlState::idle;
    };
  }

  ExitStatus hold() { return run({"apply", planFile(), "--hold"}); }

  void pressCtrlCAfter(runtime::Duration time) {
    at(time, [this] { stop.requestStop(); });
  }
};

TEST_F(RemoteHold, ShowsStatesAndGivesTheFansBackAtCtrlC) {
  pressCtrlCAfter(seconds(9));
  at(seconds(5), [this] { helper.state = holding(0, 3100); });
  EXPECT_EQ(hold(), ExitStatus::done);
  EXPECT_EQ(helper.commands(), (Names{"ApplyConfig", "Automatic"}));
  EXPECT_EQ(linesOf(out.text).back(), "every fan is back with the firmware");
  EXPECT_NE(out.text.find("holding; Fan 0: Manual, 3000 RPM\nholding; Fan 0: Manual, 3100 RPM\n"),
            std::string::npos)
      << out.text;
  EXPECT_EQ(err.text, "");
  EXPECT_EQ(secondsPassed(), 9);
}

TEST_F(RemoteHold, SendsAHeartbeatAtOnceAndEvery5Seconds) {
  pressCtrlCAfter(seconds(21));
  EXPECT_EQ(hold(), ExitStatus::done);
  EXPECT_EQ(helper.timesOf("Heartbeat"), (Times{0, 5, 10, 15, 20}));
}

TEST_F(RemoteHold, SendsHeartbeatsWhileFansAreTakenOver) {
  helper.unanswered = {"ApplyConfig"};
  pressCtrlCAfter(seconds(11));
  EXPECT_EQ(hold(), ExitStatus::done);
  EXPECT_EQ(helper.countOf("Heartbeat"), 3U);
  EXPECT_EQ(helper.commands(), (Names{"ApplyConfig", "Automatic"})); // The release overtakes the claim.
  EXPECT_EQ(secondsPassed(), 11);
}

TEST_F(RemoteHold, InsistsOnFinishing) {
  bool insists = false;
  context.insistOnFinishing = [&] { insists = true; };
  pressCtrlCAfter(seconds(1));
  EXPECT_EQ(hold(), ExitStatus::done);
  EXPECT_TRUE(insists);
}

TEST_F(RemoteHold, EndsWhenAWatchdogLetTheFansGo) {
  at(seconds(7), [this] {
    helper.state = core::ControlState::idle;
    helper.state.lastError = "thermal ceiling 96°C exceeded — released to Auto";
  });
  EXPECT_EQ(hold(), ExitStatus::failed);
  EXPECT_EQ(err.text,
            complaint("the helper let go of the fans: thermal ceiling 96°C exceeded — released to Auto"));
  EXPECT_LE(secondsPassed(), 9); // The next state.
}

TEST_F(RemoteHold, GoesOnWhileAFanThatSlippedAwayIsTakenAgain) {
  at(seconds(3), [this] {
    helper.state = holding(0, 3000);
    helper.state.isHolding = false;
    helper.state.lastError = "reclaimed: fan(s) [0] reverted to mode 3";
  });
  at(seconds(6), [this] { helper.state = holding(0, 3000); });
  pressCtrlCAfter(seconds(20));
  EXPECT_EQ(hold(), ExitStatus::done);
  EXPECT_EQ(secondsPassed(), 20);
}

TEST_F(RemoteHold, TakesNoErrorOfAPlanBeforeForItsOwn) {
  helper.state.lastError = "no heartbeat for >15s — released to Auto";
  pressCtrlCAfter(seconds(10));
  EXPECT_EQ(hold(), ExitStatus::done);
  EXPECT_EQ(secondsPassed(), 10);
}

TEST_F(RemoteHold, APlanThatCannotBeHeldEndsItAsTheCommandEnds) {
  struct Row {
    ControlResult result;
    ExitStatus status;
    bool isReleased;
  };
  const Row rows[] = {
      {ControlResult::timedOut, ExitStatus::timedOut, true},
      {ControlResult::reclaimed, ExitStatus::reclaimed, true},
      {ControlResult::rejected(0), ExitStatus::rejected, true},
      {ControlResult::failed(""), ExitStatus::commandFailed, true},
      {ControlResult::notPrivileged, ExitStatus::notPrivileged, false},
  };
  for (const Row& row : rows) {
    helper.arrivals.clear();
    helper.result = row.result;
    EXPECT_EQ(hold(), row.status) << row.result.text();
    EXPECT_EQ(helper.countOf("Automatic") > 0, row.isReleased) << row.result.text();
  }
}

TEST_F(RemoteHold, HoldsTheFansThatWereTakenWhenOneWasNot) {
  helper.result = ControlResult::timedOut;
  helper.state = holding(1, 2500);
  helper.state.lastError = "applyPlan: timedOut";
  pressCtrlCAfter(seconds(30));
  at(seconds(29), [this] { helper.result = ControlResult::applied; });
  EXPECT_EQ(hold(), ExitStatus::done);
  EXPECT_EQ(err.text, complaint("a fan did not come under control in time; the helper's last error: "
                                "applyPlan: timedOut"));
  EXPECT_EQ(secondsPassed(), 30);
}

TEST_F(RemoteHold, GoesOnWhenTheHelperTakesThePlanForLater) {
  helper.result = ControlResult::acquiring;
  pressCtrlCAfter(seconds(30));
  at(seconds(29), [this] { helper.result = ControlResult::applied; });
  EXPECT_EQ(hold(), ExitStatus::done);
  EXPECT_EQ(secondsPassed(), 30);
}

TEST_F(RemoteHold, AHelperThatWasRestartedGetsThePlanAgain) {
  at(seconds(7), [this] { restartHelper(seconds(3)); });
  pressCtrlCAfter(seconds(30));
  EXPECT_EQ(hold(), ExitStatus::done);
  EXPECT_EQ(helper.commands(), (Names{"ApplyConfig", "ApplyConfig", "Automatic"}));
  EXPECT_EQ(helper.timesOf("ApplyConfig"), (Times{0, 10}));
  EXPECT_NE(out.text.find("the helper was restarted, and has the plan again\n"), std::string::npos)
      << out.text;
  EXPECT_EQ(err.text, complaint("the helper went away; waiting for it"));
}

TEST_F(RemoteHold, AHelperThatIsReplacedAtOnceGetsThePlanAgainOnce) {
  at(seconds(7), [this] { restartHelper(seconds(0)); });
  pressCtrlCAfter(seconds(30));
  EXPECT_EQ(hold(), ExitStatus::done);
  EXPECT_EQ(helper.countOf("ApplyConfig"), 2U);
  EXPECT_EQ(helper.countOf("Heartbeat"), 6U);
}

TEST_F(RemoteHold, AHelperThatDiesWhileItTakesTheFansGetsThePlanAgain) {
  helper.unanswered = {"ApplyConfig"};
  at(seconds(4), [this] {
    helper.unanswered.clear();
    restartHelper(seconds(2));
  });
  pressCtrlCAfter(seconds(30));
  EXPECT_EQ(hold(), ExitStatus::done);
  EXPECT_EQ(helper.commands(), (Names{"ApplyConfig", "ApplyConfig", "Automatic"}));
}

TEST_F(RemoteHold, ABusThatComesBackIsTakenForARestart) {
  at(seconds(7), [this] {
    link.setReachable(false);
    helper.state = core::ControlState::idle;
  });
  at(seconds(12), [this] { link.setReachable(true); });
  pressCtrlCAfter(seconds(30));
  EXPECT_EQ(hold(), ExitStatus::done);
  EXPECT_EQ(helper.countOf("ApplyConfig"), 2U);
}

TEST_F(RemoteHold, AHelperThatStaysAwayEndsItAfter30Seconds) {
  at(seconds(7), [this] { link.killHelper(); });
  EXPECT_EQ(hold(), ExitStatus::noHelper);
  EXPECT_EQ(secondsPassed(), 37);
}

TEST_F(RemoteHold, EndsAtCtrlCWhileTheHelperIsAway) {
  at(seconds(7), [this] { link.killHelper(); });
  pressCtrlCAfter(seconds(9));
  EXPECT_EQ(hold(), ExitStatus::noHelper);
  EXPECT_EQ(secondsPassed(), 9);
  EXPECT_NE(err.text.find("not every fan may be back: no helper can be reached"), std::string::npos)
      << err.text;
}

TEST_F(RemoteHold, OfAHelperThatStopsAnsweringEnds5SecondsAfterCtrlC) {
  at(seconds(7), [this] { helper.unanswered = {"*"}; });
  pressCtrlCAfter(seconds(9));
  EXPECT_EQ(hold(), ExitStatus::noHelper);
  EXPECT_EQ(secondsPassed(), 14);
  EXPECT_EQ(err.text, complaint("not every fan may be back: the helper does not answer"));
}

TEST_F(RemoteHold, TriesAFanThatRefusesToGoBackAFewTimes) {
  pressCtrlCAfter(seconds(3));
  at(seconds(2), [this] { helper.result = ControlResult::failed(""); });
  at(seconds(6), [this] { helper.result = ControlResult::applied; });
  EXPECT_EQ(hold(), ExitStatus::done);
  EXPECT_EQ(helper.timesOf("Automatic"), (Times{3, 5, 7}));
}

TEST_F(RemoteHold, WhoseFansNeverGoBackFails) {
  pressCtrlCAfter(seconds(3));
  at(seconds(2), [this] { helper.result = ControlResult::failed(""); });
  EXPECT_EQ(hold(), ExitStatus::commandFailed);
  EXPECT_EQ(helper.countOf("Automatic"), 5U);
  EXPECT_EQ(linesOf(err.text).back(), "ventolithctl: not every fan may be back: the command failed");
}

TEST_F(RemoteHold, GivesTheFansBackWhenItsReaderGoesAway) {
  out.onFlush = [this] {
    if (secondsPassed() > 0) throw OutputError("standard output: Broken pipe");
  };
  at(seconds(5), [this] { helper.state = holding(0, 3100); });
  EXPECT_EQ(hold(), ExitStatus::failed);
  EXPECT_EQ(helper.commands(), (Names{"ApplyConfig", "Automatic"}));
  EXPECT_EQ(err.text, complaint("standard output: Broken pipe"));
}

TEST_F(RemoteHold, OfAHelperThatStaysStaleSaysSoOnce) {
  helper.build = "1.0.2+5";
  pressCtrlCAfter(seconds(20));
  EXPECT_EQ(hold(), ExitStatus::done);
  EXPECT_EQ(linesOf(err.text).size(), 1U) << err.text;
  EXPECT_NE(err.text.find("the helper is build 1.0.2+5"), std::string::npos) << err.text;
}

TEST_F(RemoteHold, WithoutAHelperSaysWhatToDo) {
  link.killHelper();
  EXPECT_EQ(hold(), ExitStatus::noHelper);
  EXPECT_EQ(err.text,
            complaint("no helper can be reached; \"ventolithctl helper install\" installs and starts it"));
}

TEST_F(RemoteHold, LeavesNothingBehindThatWaits) {
  pressCtrlCAfter(seconds(3));
  EXPECT_EQ(hold(), ExitStatus::done);
  clock.settle();
  EXPECT_EQ(clock.sleeperCount(), 0U);
}

} // namespace
} // namespace ventolith::ctl
