// `status`: what there is of a helper, in words and as JSON.
#include "programs/ventolithctl/RemoteFixture.h"
#include "programs/ventolithctl/SystemAdvice.h"

#include <fmt/format.h>

namespace ventolith::ctl {
namespace {

using core::ControlMode;
using helper::DaemonStatus;

const std::string ownBuild = helper::HelperBuildVersion::identifier;

class StatusCommand : public RemoteTest {};

TEST_F(StatusCommand, TellsOfAHelperThatHoldsNothing) {
  EXPECT_EQ(run({"status"}), ExitStatus::done);
  EXPECT_EQ(out.text, fmt::format("The helper is installed.\n"
                                  "It answers, and is build {}, as this program is.\n"
                                  "No fan is held.\n",
                                  ownBuild));
  EXPECT_EQ(err.text, "");
}

TEST_F(StatusCommand, TellsOfEachFanAndTheLastError) {
  helper.state = {.perFanMode = {{0, ControlMode::manual}, {1, ControlMode::curve}, {2, ControlMode::curve}},
                  .targets = {{0, 2400}, {1, 0}},
                  .isHolding = true,
                  .lastError = "applyPlan: timedOut\x1b",
                  .stoppedFans = std::vector<core::FanID>{1, 3}};
  EXPECT_EQ(run({"status"}), ExitStatus::done);
  const std::string sentences = out.text.substr(out.text.find("Fan 0"));
  EXPECT_EQ(sentences, "Fan 0 is held at 2400 RPM (Manual).\n"
                       "Fan 1 is stopped (Curve).\n"
                       "Fan 2 has no target yet (Curve).\n"
                       "Fan 3 is stopped.\n"
                       "Its last error: applyPlan: timedOut?\n");
}

TEST_F(StatusCommand, DoesNotCallAFanHeldThatSlippedAway) {
  helper.state = holding(0, 2400);
  helper.state.isHolding = false;
  helper.state.lastError = "reclaimed: fan(s) [0] reverted to mode 3";
  EXPECT_EQ(run({"status"}), ExitStatus::done);
  EXPECT_NE(out.text.find("Fan 0 should be held, and is not (Manual).\n"), std::string::npos) << out.text;
}

TEST_F(StatusCommand, WithoutAHelperSaysWhatToDoNext) {
  struct Row {
    DaemonStatus registration;
    std::string text;
  };
  const Row rows[] = {
      {DaemonStatus::notRegistered, "The helper is not installed.\nIt does not run.\n"
                                    "\"ventolithctl helper install\" installs and starts it.\n"},
      {DaemonStatus::enabled, "The helper is installed.\nIt does not run.\n"
                              "\"ventolithctl helper restart\" starts it again.\n"},
      {DaemonStatus::requiresApproval,
       "The helper is not allowed to run.\nIt does not run.\n" + std::string(approvalAdvice()) + "\n"},
      {DaemonStatus::notFound,
       "This system knows no helper.\nIt does not run.\n" + std::string(installationAdvice()) + "\n"},
  };
  link.killHelper();
  for (const Row& row : rows) {
    registration->status = row.registration;
    out.text.clear();
    EXPECT_EQ(run({"status"}), ExitStatus::noHelper);
    EXPECT_EQ(out.text, row.text);
  }
  EXPECT_TRUE(registration->log.empty());
}

TEST_F(StatusCommand, OfAHelperThatRunsOnItsOwnSaysSo) {
  registration->status = DaemonStatus::notFound;
  EXPECT_EQ(run({"status"}), ExitStatus::done);
  EXPECT_EQ(linesOf(out.text).at(0), "A helper runs that is not installed.");
}

TEST_F(StatusCommand, OfAHelperThatDoesNotAnswerWaits5Seconds) {
  helper.unanswered = {"*"};
  EXPECT_EQ(run({"status"}), ExitStatus::noHelper);
  EXPECT_EQ(secondsPassed(), 5);
  EXPECT_EQ(out.text, "The helper is installed.\nIt does not answer.\n"
                      "\"ventolithctl helper restart\" starts it again.\n");
}

TEST_F(StatusCommand, OfAServiceManagerThatDoesNotAnswerSaysSo) {
  registration->answers = false;
  EXPECT_EQ(run({"status"}), ExitStatus::done);
  EXPECT_EQ(secondsPassed(), 5);
  EXPECT_EQ(linesOf(out.text).at(0), "Whether the helper is installed, the system does not tell.");
}

TEST_F(StatusCommand, OfAnotherBuildNamesBothAndLeavesItRunning) {
  helper.build = "1.0.2+5";
  EXPECT_EQ(run({"status"}), ExitStatus::done);
  EXPECT_EQ(linesOf(out.text).at(1), "It answers, and is build 1.0.2+5; this program is " + ownBuild + ".");
  EXPECT_EQ(linesOf(out.text).at(2), "\"ventolithctl helper restart\" starts the helper that is installed.");
  EXPECT_TRUE(helper.commands().empty());
}

TEST_F(StatusCommand, OfAStateThatCannotBeReadSaysSo) {
  helper.stateText = "{\"isHolding\":7}";
  EXPECT_EQ(run({"status"}), ExitStatus::done);
  EXPECT_EQ(linesOf(out.text).back(), "Its state cannot be read.");
}

TEST_F(StatusCommand, EndsAtCtrlC) {
  helper.unanswered = {"*"};
  at(std::chrono::seconds(1), [this] { stop.requestStop(); });
  EXPECT_EQ(run({"status"}), ExitStatus::interrupted);
  EXPECT_EQ(secondsPassed(), 1);
}

TEST_F(StatusCommand, JSONHasTheSameKeysWhateverThereIs) {
  helper.state = holding(0, 2400);
  helper.state.stoppedFans = std::vector<core::FanID>{1};
  EXPECT_EQ(run({"status", "--json"}), ExitStatus::done);
  EXPECT_EQ(out.text,
            fmt::format(R"({{"registration":"enabled","helper":"answers","build":"{0}","ownBuild":"{0}",)"
                        R"("state":{{"perFanMode":{{"0":{{"manual":{{}}}}}},"targets":{{"0":2400}},)"
                        R"("isHolding":true,"stoppedFans":[1]}}}})"
                        "\n",
                        ownBuild));
  out.text.clear();
  link.killHelper();
  registration->status = DaemonStatus::notFound;
  EXPECT_EQ(run({"status", "--json"}), ExitStatus::noHelper);
  EXPECT_EQ(out.text,
            fmt::format(R"({{"registration":"notFound","helper":"absent","build":null,"ownBuild":"{}",)"
                        R"("state":null}})"
                        "\n",
                        ownBuild));
}

TEST_F(StatusCommand, JSONOfSilenceIsNull) {
  helper.unanswered = {"*"};
  registration->answers = false;
  EXPECT_EQ(run({"status", "--json"}), ExitStatus::noHelper);
  EXPECT_EQ(out.text,
            fmt::format(R"({{"registration":null,"helper":"doesNotAnswer","build":null,"ownBuild":"{}",)"
                        R"("state":null}})"
                        "\n",
                        ownBuild));
}

} // namespace
} // namespace ventolith::ctl
