// How the window and its process begin and end, wanted or not.
#include "e2e/MockSystemd.h"
#include "e2e/window/RunningWindow.h"

#include <csignal>
#include <optional>

namespace ventolith::e2e {

namespace {

class WindowLife : public RunningWindow {
protected:
  /// With a helper that is the system's: it stays when the application goes.
  void startWithSystemHelper() {
    systemd_.emplace(house.bus());
    systemd_->unitIs("enabled");
    helper = house.startHelper();
    start({{"VENTOLITH_HELPER", ""}});
    static_cast<void>(tree.find({.role = "slider", .name = "Manual control", .states = {"enabled"}}));
  }

  std::unique_ptr<Program> helper;

private:
  std::optional<MockSystemd> systemd_;
};

TEST_F(WindowLife, SecondStartBringsTheFirstToTheFrontAndEnds) {
  start();
  goTo("Rules");
  Environment elsewhere{{"XDG_RUNTIME_DIR", home_.path().string()}}; // Another user's session, as it were.
  const auto other = launch(elsewhere);
  waitUntil("another window in front", [this] { return desktop.activeWindow() == "Dashboard"; });
  const auto second = launch();
  EXPECT_EQ(second->wait().status, 0);
  waitUntil("the first window in front", [this] { return desktop.activeWindow() == "Rules"; });
}

TEST_F(WindowLife, SecondStartBringsAMinimisedWindowBack) {
  start();
  desktop.minimise();
  waitUntil("no window in front", [this] { return desktop.activeWindow().empty(); });
  EXPECT_EQ(launch()->wait().status, 0);
  waitUntil("the window in front", [this] { return desktop.activeWindow() == "Dashboard"; });
}

TEST_F(WindowLife, ClosingItWithoutATrayQuitsAndGivesTheFansBack) {
  start();
  enableHelper();
  holdFan0();
  hands.press({"alt+F4"});
  EXPECT_EQ(application->wait().status, 0);
  waitUntilFanIsBack(0);
}

struct End {
  const char* name;
  void (*of)(Desktop& desktop, const Program& application);
  int status;
};

class EndOfTheSession : public WindowLife, public testing::WithParamInterface<End> {};

TEST_P(EndOfTheSession, GivesTheFansBackAtOnce) {
  startWithSystemHelper();
  holdFan0();
  GetParam().of(desktop, *application);
  EXPECT_EQ(application->wait().status, GetParam().status);
  waitUntilFanIsBack(0);
  // Asked for, not by the watchdog: that one would have left its reason.
  EXPECT_FALSE(Peer(house.bus().address()).state().contains("lastError"));
}

INSTANTIATE_TEST_SUITE_P(
    Ways, EndOfTheSession,
    testing::Values(
        End{"Terminate", [](Desktop&, const Program& application) { application.signal(SIGTERM); }, 0},
        End{"HangUp", [](Desktop&, const Program& application) { application.signal(SIGHUP); }, 0},
        End{"LostDisplay", [](Desktop& desktop, const Program&) { desktop.endDisplay(); }, 1}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(WindowLife, KilledApplicationLosesItsFansWithinTheSilenceThatTheHelperAllows) {
  startWithSystemHelper();
  holdFan0();
  application->signal(SIGKILL);
  EXPECT_EQ(application->wait().status, 128 + SIGKILL);
  waitUntilFanIsBack(0); // After fifteen seconds, and not much more.
  EXPECT_TRUE(Peer(house.bus().address()).state().contains("lastError"));
}

TEST_F(WindowLife, KilledHelperIsToldInTheWindow) {
  startWithSystemHelper();
  holdFan0();
  helper->signal(SIGKILL);
  static_cast<void>(tree.find({.role = "push button", .name = "Restart Helper"}));
}

} // namespace

} // namespace ventolith::e2e
