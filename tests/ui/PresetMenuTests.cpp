#include "Finding.h"
#include "ViewFixture.h"
#include "app/PresetLibrary.h"
#include "kit/Controls.h"
#include "ui/PresetMenu.h"
#include "ui/kit/MenuButton.h"

#include <memory>

namespace ventolith::ui {
namespace {

namespace PresetLibrary = app::PresetLibrary;

class PresetMenuTest : public ViewTest {
protected:
  ~PresetMenuTest() override { tray = nullptr; }

  void show() {
    tray = std::make_unique<PresetMenu>(*context);
    tray->show();
    activate(*tray);
    turn();
  }
  MenuButton& button() { return tray->button(); }
  std::vector<MenuRow> open() {
    button().openMenu();
    return button().menu().rows();
  }
  void choose(int row) {
    open();
    MenuPanel& menu = button().menu();
    QTest::mouseClick(&menu, Qt::LeftButton, Qt::NoModifier,
                      menu.actionGeometry(menu.actionOf(row)).center());
    turn();
  }
  core::FanPreset quiet() { return model->presets().front(); }

  std::unique_ptr<PresetMenu> tray;
};

TEST_F(PresetMenuTest, NamesTheActivePreset) {
  beginWithHelper();
  model->activatePreset(quiet());
  show();
  EXPECT_EQ(button().title(), QStringLiteral("Quiet"));
  EXPECT_EQ(button().symbol(), Symbol::sliders);
}

TEST_F(PresetMenuTest, SaysAutomaticWhenNoFanIsControlled) {
  begin();
  show();
  EXPECT_EQ(button().title(), QStringLiteral("Automatic"));
  EXPECT_EQ(button().symbol(), Symbol::uturn);
}

TEST_F(PresetMenuTest, SaysCustomForAnyOtherPlan) {
  begin();
  show();
  model->applyPlan(fixed({{0, 3000}}));
  turn();
  EXPECT_EQ(button().title(), QStringLiteral("Custom"));
  EXPECT_EQ(button().symbol(), Symbol::hand);
}

TEST_F(PresetMenuTest, ListsTheQuickRowsAndThePresetsAfterADivider) {
  beginWithHelper();
  model->activatePreset(quiet());
  show();
  const std::vector<MenuRow> rows = open();
  ASSERT_EQ(rows.size(), 6U);
  EXPECT_EQ(rows[0].titleShown(), QStringLiteral("Automatic"));
  EXPECT_EQ(rows[0].symbol, Symbol::uturn);
  EXPECT_EQ(rows[1].titleShown(), QStringLiteral("Full Blast"));
  EXPECT_EQ(rows[1].symbol, Symbol::bolt);
  EXPECT_TRUE(rows[2].isDivider);
  EXPECT_EQ(rows[3].titleShown(), QStringLiteral("✓ Quiet"));
  EXPECT_EQ(rows[3].symbol, Symbol::sliders);
  EXPECT_EQ(rows[4].titleShown(), QStringLiteral("Balanced"));
  EXPECT_EQ(rows[5].titleShown(), QStringLiteral("Max"));
}

TEST_F(PresetMenuTest, WithoutPresetsThereIsNoDivider) {
  readings.next = {};
  begin();
  show();
  EXPECT_EQ(open().size(), 2U);
}

TEST_F(PresetMenuTest, MarksAutomaticWhenThatRuns) {
  begin();
  show();
  EXPECT_EQ(open()[0].titleShown(), QStringLiteral("✓ Automatic"));
}

TEST_F(PresetMenuTest, WithoutTheHelperOnlyAutomaticIsEnabled) {
  begin();
  show();
  const std::vector<MenuRow> rows = open();
  EXPECT_TRUE(rows[0].isEnabled);
  for (const std::size_t other : {1U, 3U, 4U, 5U})
    EXPECT_FALSE(rows[other].isEnabled) << other;
}

TEST_F(PresetMenuTest, RowsCallTheirActions) {
  beginWithHelper();
  show();
  choose(4);
  EXPECT_EQ(model->activePresetID(), PresetLibrary::balancedID);
  EXPECT_EQ(button().title(), QStringLiteral("Balanced"));
  choose(1);
  EXPECT_EQ(model->planMode(1), core::FanControlModePlan::fixedPercent(100));
  EXPECT_EQ(button().title(), QStringLiteral("Custom"));
  choose(0);
  EXPECT_EQ(model->activePlan(), core::FanControlPlan::allAutomatic);
}

TEST_F(PresetMenuTest, OpenItTakesUpTheHelperAndKeepsTheRowThatIsChosen) {
  begin();
  show();
  open();
  button().menu().setActiveAction(button().menu().actionOf(0));
  registration->status = app::DaemonStatus::enabled;
  pass(3);
  turn();
  EXPECT_TRUE(button().isMenuOpen());
  EXPECT_TRUE(button().menu().actionOf(1)->isEnabled());
  EXPECT_EQ(button().menu().activeAction(), button().menu().actionOf(0));
}

TEST_F(PresetMenuTest, HiddenItTakesUpNothingUntilItIsShown) {
  begin();
  show();
  tray->hide();
  model->applyPlan(fixed({{0, 3000}}));
  turn();
  EXPECT_EQ(button().title(), QStringLiteral("Automatic"));
  tray->show();
  EXPECT_EQ(button().title(), QStringLiteral("Custom"));
}

TEST_F(PresetMenuTest, IsKnownByWhatItShowsAndWhatItIsAbout) {
  begin();
  show();
  EXPECT_EQ(spoken(button()).text(QAccessible::Name), QStringLiteral("Automatic"));
  EXPECT_EQ(spoken(button()).text(QAccessible::Description), QStringLiteral("Presets"));
}

} // namespace
} // namespace ventolith::ui
