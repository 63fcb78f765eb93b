// `helper …`: the helper's registration with the system.
#include "programs/ventolithctl/RemoteFixture.h"
#include "programs/ventolithctl/SystemAdvice.h"

namespace ventolith::ctl {
namespace {

using helper::DaemonStatus;
using Log = std::vector<std::string>;

class HelperCommand : public RemoteTest {
protected:
  HelperCommand() { registration->status = DaemonStatus::notRegistered; }
};

TEST_F(HelperCommand, InstallRegisters) {
  EXPECT_EQ(run({"helper", "install"}), ExitStatus::done);
  EXPECT_EQ(registration->log, Log{"register"});
  EXPECT_EQ(out.text, "The helper is installed, and runs.\n");
  EXPECT_EQ(err.text, "");
}

TEST_F(HelperCommand, InstallThatIsRefusedIsNotAllowedAndShowsTheWay) {
  registration->statusAfterRegister = DaemonStatus::requiresApproval;
  registration->registerError = "the user said no";
  EXPECT_EQ(run({"helper", "install"}), ExitStatus::notPrivileged);
  EXPECT_EQ(registration->log, (Log{"register", "settings"}));
  EXPECT_EQ(out.text, "");
  EXPECT_EQ(err.text, "[HelperManager] register() failed: the user said no\n" +
                          complaint("the helper is not allowed to run"));
}

TEST_F(HelperCommand, InstallThatFailsSaysWhy) {
  struct Row {
    DaemonStatus status;
    std::string complaint;
  };
  const Row rows[] = {{DaemonStatus::notFound, "this system knows no helper"},
                      {DaemonStatus::notRegistered, "the helper is not installed"}};
  for (const Row& row : rows) {
    registration->statusAfterRegister = row.status;
    registration->registerError = "no such unit";
    err.text.clear();
    EXPECT_EQ(run({"helper", "install"}), ExitStatus::commandFailed);
    EXPECT_EQ(err.text, "[HelperManager] register() failed: no such unit\n" + complaint(row.complaint));
  }
}

TEST_F(HelperCommand, InstallOfAHelperThatDidNotStartFails) {
  registration->registerError = "the start failed";
  EXPECT_EQ(run({"helper", "install"}), ExitStatus::commandFailed);
  EXPECT_EQ(linesOf(err.text).back(), "ventolithctl: the helper is installed, but did not start");
}

TEST_F(HelperCommand, InstallEndsAtCtrlCWhileAPersonIsAsked) {
  registration->answers = false;
  at(std::chrono::seconds(100), [this] { stop.requestStop(); });
  EXPECT_EQ(run({"helper", "install"}), ExitStatus::interrupted);
  EXPECT_EQ(secondsPassed(), 100);
  EXPECT_EQ(err.text, complaint("interrupted before the system answered"));
}

TEST_F(HelperCommand, InstallOfAChildStaysUntilCtrlCAndTakesItAlong) {
  context.helperIsChild = true;
  at(std::chrono::hours(2), [this] {
    EXPECT_EQ(registration->log, Log{"register"});
    stop.requestStop();
  });
  EXPECT_EQ(run({"helper", "install"}), ExitStatus::done);
  EXPECT_EQ(secondsPassed(), 7200);
  EXPECT_EQ(registration->log, (Log{"register", "unregister"}));
  EXPECT_EQ(out.text, "The helper is installed, and runs.\nIt is a child of this command, until Ctrl-C.\n");
}

TEST_F(HelperCommand, UninstallUnregisters) {
  registration->status = DaemonStatus::enabled;
  EXPECT_EQ(run({"helper", "uninstall"}), ExitStatus::done);
  EXPECT_EQ(registration->log, Log{"unregister"});
  EXPECT_EQ(out.text, "The helper is uninstalled.\n");
}

TEST_F(HelperCommand, UninstallThatLeavesItInstalledFails) {
  registration->statusAfterUnregister = DaemonStatus::enabled;
  EXPECT_EQ(run({"helper", "uninstall"}), ExitStatus::commandFailed);
  EXPECT_EQ(err.text, complaint("the helper is still installed"));
}

TEST_F(HelperCommand, UninstallThatDoesNotEndTheHelperSaysWhy) {
  registration->unregistrationError = "the job timed out";
  EXPECT_EQ(run({"helper", "uninstall"}), ExitStatus::commandFailed);
  EXPECT_EQ(err.text, complaint("the helper may still run: the job timed out"));
}

TEST_F(HelperCommand, UninstallWhereThereIsNoneFails) {
  registration->statusAfterUnregister = DaemonStatus::notFound;
  EXPECT_EQ(run({"helper", "uninstall"}), ExitStatus::commandFailed);
  EXPECT_EQ(err.text, complaint("this system knows no helper"));
}

TEST_F(HelperCommand, RestartUnregistersAndRegisters) {
  registration->status = DaemonStatus::enabled;
  EXPECT_EQ(run({"helper", "restart"}), ExitStatus::done);
  EXPECT_EQ(registration->log, (Log{"unregister", "register"}));
  EXPECT_EQ(out.text, "The helper was restarted.\n");
}

TEST_F(HelperCommand, RestartThatIsRefusedIsNotAllowed) {
  registration->statusAfterRegister = DaemonStatus::requiresApproval;
  registration->registerError = "no";
  EXPECT_EQ(run({"helper", "restart"}), ExitStatus::notPrivileged);
  EXPECT_EQ(err.text, "[HelperManager] recoverFromStaleHelper register() failed: no\n" +
                          complaint("the helper is not allowed to run"));
}

TEST_F(HelperCommand, StatusShowsTheRegistrationAndAsksNoHelper) {
  struct Row {
    DaemonStatus status;
    ExitStatus exit;
    std::string text;
  };
  const Row rows[] = {
      {DaemonStatus::enabled, ExitStatus::done, "The helper is installed.\n"},
      {DaemonStatus::notRegistered, ExitStatus::noHelper,
       "The helper is not installed.\n\"ventolithctl helper install\" installs and starts it.\n"},
      {DaemonStatus::requiresApproval, ExitStatus::noHelper,
       "The helper is not allowed to run.\n" + std::string(approvalAdvice()) + "\n"},
      {DaemonStatus::notFound, ExitStatus::noHelper,
       "This system knows no helper.\n" + std::string(installationAdvice()) + "\n"},
  };
  for (const Row& row : rows) {
    registration->status = row.status;
    out.text.clear();
    EXPECT_EQ(run({"helper", "status"}), row.exit);
    EXPECT_EQ(out.text, row.text);
  }
  EXPECT_TRUE(registration->log.empty());
  EXPECT_EQ(link.channelsMade(), 0U);
}

TEST_F(HelperCommand, AloneIsAskedForMore) {
  EXPECT_EQ(run({"helper"}), ExitStatus::invalid);
  EXPECT_EQ(run({"helper", "dance"}), ExitStatus::invalid);
  EXPECT_TRUE(registration->log.empty());
}

} // namespace
} // namespace ventolith::ctl
