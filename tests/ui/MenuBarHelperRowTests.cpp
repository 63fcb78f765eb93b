#include "ui/MenuBarHelperRow.h"

#include "MenuBarFixture.h"
#include "ui/PresetMenu.h"

#include <QSignalSpy>

namespace ventolith::ui {
namespace {

using app::DaemonStatus;
using MenuBarHelperTest = MenuBarViewTest;

struct HelperCase {
  const char* name;
  bool isActive;
  bool isStale;
  const char* title;  // Of the one row that is seen; null for none.
  const char* button; // The same.
};

class MenuBarHelperRowTest : public MenuBarViewTest, public testing::WithParamInterface<HelperCase> {};

TEST_P(MenuBarHelperRowTest, ThereIsOneRowAtTheMost) {
  const HelperCase& it = GetParam();
  if (it.isActive)
    beginWithHelper();
  else
    begin();
  show();
  setStale(it.isStale);
  const auto isSaid = [&](const char* text) { return shows(*view, text); };
  EXPECT_EQ(isSaid("Fan control isn't active yet"), !it.isActive);
  EXPECT_EQ(isSaid("Fan control may not reflect this update."), it.isActive && it.isStale);
  EXPECT_EQ(hasButton(*view, "Enable…"), !it.isActive);
  EXPECT_EQ(hasButton(*view, "Restart Helper"), it.isActive && it.isStale);
  if (it.title != nullptr) EXPECT_TRUE(isSaid(it.title));
}

TEST_P(MenuBarHelperRowTest, ControlsAreThereWhenTheHelperIsActive) {
  const HelperCase& it = GetParam();
  if (it.isActive)
    beginWithHelper();
  else
    begin();
  show();
  setStale(it.isStale);
  for (const FanControlBlock* block : blocks()) {
    EXPECT_EQ(block->findChild<Slider*>()->isEnabled(), it.isActive);
    for (const Button* button : block->findChildren<Button*>())
      EXPECT_EQ(button->isEnabled(), it.isActive);
  }
  EXPECT_TRUE(buttonIn(*view, "Restore Auto").isEnabled());
  EXPECT_TRUE(shows(*view, "Preset"));
  EXPECT_EQ(seenIn<PresetMenu>(*view).size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(
    States, MenuBarHelperRowTest,
    testing::Values(HelperCase{"Inactive", false, false, "Fan control isn't active yet", "Enable…"},
                    HelperCase{"InactiveAndStale", false, true, "Fan control isn't active yet", "Enable…"},
                    HelperCase{"Active", true, false, nullptr, nullptr},
                    HelperCase{"ActiveButStale", true, true,
                               "Helper isn't answering a version check — it may be running older code",
                               "Restart Helper"}),
    [](const auto& info) { return info.param.name; });

TEST_F(MenuBarHelperTest, EnableBeginsTheOnboardingAndLeavesThePanel) {
  begin();
  show();
  const QSignalSpy left(view.get(), &MenuBarView::left);
  registration->statusAfterRegistering = DaemonStatus::enabled;
  click(buttonIn(*view, "Enable…"));
  turn();
  EXPECT_EQ(registration->log, std::vector<std::string>{"register"});
  EXPECT_EQ(left.count(), 1);
}

TEST_F(MenuBarHelperTest, RestartHelperRecoversAndSaysSoMeanwhile) {
  showWithHelper();
  setStale(true);
  registration->answers.isClosed = true;
  click(buttonIn(*view, "Restart Helper"));
  turn();
  EXPECT_FALSE(buttonIn(*view, "Restarting…").isEnabled());
  registration->answers.open();
  turn();
  EXPECT_TRUE(buttonIn(*view, "Restart Helper").isEnabled());
  EXPECT_EQ(registration->log, (std::vector<std::string>{"unregister", "register"}));
}

TEST_F(MenuBarHelperTest, TheStaleRowFitsIntoThePanel) {
  showWithHelper();
  const int before = view->sizeHint().height();
  setStale(true);
  EXPECT_GT(view->sizeHint().height(), before + 60);
  view->adjustSize();
  turn();
  const Button& button = buttonIn(*view, "Restart Helper");
  EXPECT_LE(button.mapTo(view.get(), QPoint(button.width(), 0)).x(), 320 - 15);
}

} // namespace
} // namespace ventolith::ui
