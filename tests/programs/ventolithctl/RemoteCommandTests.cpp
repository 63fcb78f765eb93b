// The commands that go to the helper and do not stay.
#include "core/FanControlPlan.h"
#include "programs/ventolithctl/RemoteFixture.h"

namespace ventolith::ctl {
namespace {

using core::ControlResult;
namespace messages = helper::messages;

const std::string lapseNote = "Without heartbeats the helper gives the fans back after 15 s: the application "
                              "sends them, and apply --hold.\n";
const std::string noHelperText =
    complaint("no helper can be reached; \"ventolithctl helper install\" installs and starts it");

class RemoteCommands : public RemoteTest {
protected:
  /// Each command that the helper carries out.
  [[nodiscard]] std::vector<std::vector<std::string>> everyCommand() const {
    return {{"set", "0", "2400"}, {"set", "1", "45%"}, {"full-blast"}, {"auto"}, {"apply", planFile()}};
  }

  [[nodiscard]] std::optional<helper::HelperMessage> lastCommand() const {
    for (auto arrival = helper.arrivals.rbegin(); arrival != helper.arrivals.rend(); ++arrival) {
      if (helper::changesAnything(arrival->message)) return arrival->message;
    }
    return std::nullopt;
  }
};

TEST_F(RemoteCommands, SetOfAnRPMIsSentAndTold) {
  EXPECT_EQ(run({"set", "0", "2400"}), ExitStatus::done);
  EXPECT_EQ(lastCommand(), helper::HelperMessage(messages::SetManualRPM{.fan = 0, .rpm = 2400}));
  EXPECT_EQ(out.text, "Fan 0 is held at 2400 RPM, or as near as its range allows.\n" + lapseNote);
  EXPECT_EQ(err.text, "");
}

TEST_F(RemoteCommands, SetOfAPercentageIsSentAndTold) {
  EXPECT_EQ(run({"set", "1", "45%"}), ExitStatus::done);
  EXPECT_EQ(lastCommand(), helper::HelperMessage(messages::SetPercent{.fan = 1, .percent = 45}));
  EXPECT_EQ(out.text, "Fan 1 is held at 45 %, or as near as its range allows.\n" + lapseNote);
}

TEST_F(RemoteCommands, FullBlastIsSentAndTold) {
  EXPECT_EQ(run({"full-blast"}), ExitStatus::done);
  EXPECT_EQ(lastCommand(), helper::HelperMessage(messages::FullBlast{}));
  EXPECT_EQ(out.text, "Every fan is held at its maximum.\n" + lapseNote);
}

TEST_F(RemoteCommands, AutoIsSentAndDoesNotLapse) {
  EXPECT_EQ(run({"auto"}), ExitStatus::done);
  EXPECT_EQ(lastCommand(), helper::HelperMessage(messages::Automatic{}));
  EXPECT_EQ(out.text, "Every fan is back with the firmware.\n");
}

TEST_F(RemoteCommands, ApplySendsThePlanOfTheFile) {
  const std::string plan = planFile();
  EXPECT_EQ(run({"apply", plan}), ExitStatus::done);
  const auto command = lastCommand();
  ASSERT_TRUE(command && std::holds_alternative<messages::ApplyConfig>(*command));
  EXPECT_EQ(core::decodeFanControlPlan(std::get<messages::ApplyConfig>(*command).plan),
            core::decodeFanControlPlan(contentOf(plan)));
  EXPECT_EQ(out.text, "The helper holds the plan.\n" + lapseNote);
}

TEST_F(RemoteCommands, ApplyOfAPlanThatHoldsNothingDoesNotLapse) {
  const std::string plan = file("plan.json", planText(R"({"fanID":0,"mode":{"automatic":{}}})"));
  EXPECT_EQ(run({"apply", plan}), ExitStatus::done);
  EXPECT_EQ(run({"apply", plan, "--hold"}), ExitStatus::done);
  EXPECT_EQ(out.text,
            "The plan leaves every fan to the firmware.\nThe plan leaves every fan to the firmware.\n");
  EXPECT_EQ(helper.commands(), (std::vector<std::string>{"ApplyConfig", "ApplyConfig"}));
}

TEST_F(RemoteCommands, EachResultHasAStatusAndAReason) {
  struct Row {
    ControlResult result;
    int status;
    std::string reason;
  };
  const Row rows[] = {
      {ControlResult::acquiring, 11, "accepted, and the fans are still being taken over"},
      {ControlResult::timedOut, 12, "a fan did not come under control in time"},
      {ControlResult::reclaimed, 13, "the fans went back to the firmware before they were taken over"},
      {ControlResult::rejected(5), 14, "the hardware refused a write"}, // The code does not travel.
      {ControlResult::notPrivileged, 15, "not allowed to control the fans"},
      {ControlResult::noHelper, 16,
       "no helper can be reached; \"ventolithctl helper install\" installs and starts it"},
      {ControlResult::failed("no"), 17, "the command failed"},
  };
  for (const Row& row : rows) {
    for (const auto& command : everyCommand()) {
      SCOPED_TRACE(row.result.text() + " to " + command.front());
      helper.result = row.result;
      out.text.clear();
      err.text.clear();
      EXPECT_EQ(static_cast<int>(run(command)), row.status);
      EXPECT_EQ(out.text, "");
      EXPECT_EQ(err.text, complaint(row.reason));
    }
  }
}

TEST_F(RemoteCommands, AFailureTellsWhatTheHelpersStateSaysOfIt) {
  helper.result = ControlResult::timedOut;
  helper.state.lastError = "applyPlan: timedOut\x1b[2J";
  EXPECT_EQ(run({"set", "0", "2400"}), ExitStatus::timedOut);
  EXPECT_EQ(err.text.find('\x1b'), std::string::npos);
  EXPECT_NE(err.text.find("in time; the helper's last error: applyPlan: timedOut"), std::string::npos)
      << err.text;
}

TEST_F(RemoteCommands, WithoutAHelperSaysWhatToDo) {
  link.killHelper();
  for (const auto& command : everyCommand()) {
    err.text.clear();
    EXPECT_EQ(run(command), ExitStatus::noHelper);
    EXPECT_EQ(err.text, noHelperText);
  }
  EXPECT_EQ(out.text, "");
}

TEST_F(RemoteCommands, WithoutABusSaysTheSame) {
  link.setReachable(false);
  EXPECT_EQ(run({"auto"}), ExitStatus::noHelper);
  EXPECT_EQ(err.text, noHelperText);
}

TEST_F(RemoteCommands, OfAHelperThatDoesNotAnswerGivesUpAfter5Seconds) {
  helper.unanswered = {"*"};
  EXPECT_EQ(run({"set", "0", "2400"}), ExitStatus::noHelper);
  EXPECT_EQ(secondsPassed(), 5);
  EXPECT_EQ(err.text,
            complaint("the helper does not answer; \"ventolithctl helper restart\" starts it again"));
  EXPECT_TRUE(helper.commands().empty());
}

TEST_F(RemoteCommands, HasTimeForAPersonToAllowIt) {
  helper.unanswered = {"SetManualRPM"};
  at(std::chrono::hours(1), [this] { stop.requestStop(); });
  EXPECT_EQ(run({"set", "0", "2400"}), ExitStatus::interrupted);
  EXPECT_EQ(secondsPassed(), 3600);
}

TEST_F(RemoteCommands, EndsAtCtrlCWhereverItWaits) {
  for (const char* message : {"*", "SetManualRPM"}) {
    runtime::StopSource pressed;
    context.stop = pressed.token();
    helper.unanswered = {message};
    err.text.clear();
    const double before = secondsPassed();
    at(std::chrono::seconds(2), [&] { pressed.requestStop(); });
    EXPECT_EQ(run({"set", "0", "2400"}), ExitStatus::interrupted) << message;
    EXPECT_EQ(secondsPassed() - before, 2) << message;
    EXPECT_EQ(err.text, complaint("interrupted before the helper answered")) << message;
  }
}

TEST_F(RemoteCommands, IsNotSentAfterCtrlC) {
  stop.requestStop();
  EXPECT_EQ(run({"set", "0", "2400"}), ExitStatus::interrupted);
  EXPECT_TRUE(helper.commands().empty());
}

TEST_F(RemoteCommands, AsksAHelperOfAnotherBuildToEndFirst) {
  helper.build = "1.0.2+5";
  helper.onMessage = [this](const helper::HelperMessage& message) {
    if (std::holds_alternative<messages::ShutdownForUpgrade>(message))
      helper.build = helper::HelperBuildVersion::identifier;
  };
  EXPECT_EQ(run({"auto"}), ExitStatus::done);
  EXPECT_EQ(helper.commands(), (std::vector<std::string>{"ShutdownForUpgrade", "Automatic"}));
  EXPECT_EQ(err.text, "");
}

TEST_F(RemoteCommands, IsSentToAHelperThatStaysStaleAndSaysSo) {
  helper.build = "1.0.2+5";
  EXPECT_EQ(run({"auto"}), ExitStatus::done);
  EXPECT_EQ(helper.countOf("ShutdownForUpgrade"), 3U);
  EXPECT_EQ(out.text, "Every fan is back with the firmware.\n");
  EXPECT_EQ(err.text, complaint(std::string("the helper is build 1.0.2+5, this program is ") +
                                helper::HelperBuildVersion::identifier +
                                "; \"ventolithctl helper restart\" starts the helper that is installed"));
}

TEST_F(RemoteCommands, BadInputReachesNoHelper) {
  struct Row {
    std::vector<std::string> arguments;
    std::string complaint;
  };
  const Row rows[] = {
      {{"set", "ten", "2400"}, "FAN: \"ten\" is no fan's number; they go from 0 to 9"},
      {{"set", "0", "fast"}, "SPEED: \"fast\" is neither an RPM (0 to 100000) nor a percentage, such as 45%"},
      {{"set", "0", "145%"}, "SPEED: \"145%\" is no percentage from 0% to 100%"},
      {{"apply", path("none.json")}, path("none.json") + ": No such file or directory"},
  };
  for (const Row& row : rows) {
    err.text.clear();
    EXPECT_EQ(run(row.arguments), ExitStatus::invalid);
    EXPECT_EQ(err.text, complaint(row.complaint));
  }
  EXPECT_EQ(link.channelsMade(), 0U);
}

TEST_F(RemoteCommands, OthersOpenNoLine) {
  EXPECT_EQ(run({"snapshot"}), ExitStatus::done);
  EXPECT_EQ(run({"check", planFile()}), ExitStatus::done);
  EXPECT_EQ(link.channelsMade(), 0U);
}

TEST_F(RemoteCommands, LeavesNothingBehindThatWaits) {
  helper.unanswered = {"*"};
  (void)run({"status"});
  helper.unanswered = {"Automatic"};
  at(std::chrono::seconds(1), [this] { stop.requestStop(); });
  (void)run({"auto"});
  clock.settle();
  EXPECT_EQ(clock.sleeperCount(), 0U);
}

TEST_F(RemoteCommands, VersionIsShown) {
  EXPECT_EQ(run({"--version"}), ExitStatus::done);
  EXPECT_EQ(out.text, std::string("ventolithctl ") + helper::HelperBuildVersion::identifier + "\n");
}

} // namespace
} // namespace ventolith::ctl
