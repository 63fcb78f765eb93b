// The application on a desktop with a status area, which a mock plays.
#include "e2e/window/WindowWithTray.h"

namespace ventolith::e2e {

namespace {

TEST_F(WindowWithTray, ClosedWindowLeavesItRunningAndItsFansHeld) {
  startInTray();
  enableHelper();
  holdFan0();
  closeWindow();
  static_cast<void>(openPanel());
  EXPECT_TRUE(application->isRunning());
  EXPECT_TRUE(isFanHeld(0));
}

TEST_F(WindowWithTray, IconOpensThePanelAndAClickOutsideClosesIt) {
  startInTray();
  closeWindow();
  const Accessible opened = openPanel();
  EXPECT_LT(opened.box.y, 60);
  EXPECT_LE(opened.box.x + opened.box.width, Desktop::width + 40); // Its shadow may be cut.
  hands.click({100, 800});
  tree.waitUntilGone(panel);
  EXPECT_TRUE(application->isRunning());
}

TEST_F(WindowWithTray, PanelHoldsAFanOpensTheWindowAndQuits) {
  startInTray();
  enableHelper();
  closeWindow();
  static_cast<void>(openPanel());
  dragSlider(find("slider", "Fan 1 speed"), 0.75);
  waitUntil("a fan that is held", [this] { return isFanHeld(1); });
  click("push button", "Open Ventolith");
  waitUntil("the window", [this] { return desktop.activeWindow() == "Dashboard"; });
  tree.waitUntilGone(panel);
  static_cast<void>(openPanel());
  click("push button", "Quit");
  EXPECT_EQ(application->wait().status, 0);
  waitUntilFanIsBack(1);
}

} // namespace

} // namespace ventolith::e2e
