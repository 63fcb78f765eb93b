#include "PresetsFixture.h"

namespace ventolith::ui {
namespace {

class PresetsViewTest : public PresetsTest {};

TEST_F(PresetsViewTest, ShowsACardForEachPresetAndOneForAnother) {
  beginAndShow();
  EXPECT_TRUE(shows(*view,
                    "Presets bundle your curves and rules into one-tap modes. Switch anywhere — the tray, "
                    "the toolbar, or here."));
  EXPECT_EQ(names(), (std::vector<std::string>{"Quiet", "Balanced", "Max"}));
  const int pitch = card(1).x() - card(0).x();
  EXPECT_EQ(card(0).y(), card(2).y());
  EXPECT_EQ(card(0).width() - 2 * Surface::shadowReach + 16, pitch);
  EXPECT_GE(card(0).height(), 150 + 2 * Surface::shadowReach);
  EXPECT_GT(view->newPresetCard().y(), card(0).y()) << "three columns at this width";
  EXPECT_EQ(view->newPresetCard().x(), card(0).x());
}

TEST_F(PresetsViewTest, WithoutPresetsTheNewCardStandsAlone) {
  readings.next = {};
  beginAndShow();
  EXPECT_TRUE(names().empty());
  EXPECT_TRUE(view->newPresetCard().isVisible());
  EXPECT_EQ(view->autoSwitch().onAC().titles(), QStringList{QStringLiteral("Don't change")});
}

TEST_F(PresetsViewTest, CardsFollowTheOrderOfThePresets) {
  beginAndShow();
  add("Mine", {});
  PresetCard* const mine = &lastCard();
  choose(card(0).menu(), 0);
  EXPECT_EQ(names(), (std::vector<std::string>{"Quiet", "Balanced", "Max", "Mine", "Quiet copy"}));
  EXPECT_EQ(&card(3), mine);
  EXPECT_GT(lastCard().x(), mine->x());
  EXPECT_GT(view->newPresetCard().x(), lastCard().x());
}

TEST_F(PresetsViewTest, NewFromCurrentSavesThePlanAndMakesItActive) {
  beginWithHelperAndShow();
  model->applyPlan(fixed({{0, 3000}}));
  turn();
  click(view->newPresetCard());
  turn();
  click(view->newPresetCard());
  turn();
  EXPECT_EQ(names(), (std::vector<std::string>{"Quiet", "Balanced", "Max", "Custom", "Custom"}));
  EXPECT_EQ(model->presets().back().plan, fixed({{0, 3000}}));
  EXPECT_TRUE(lastCard().activeBadge().isVisible());
}

TEST_F(PresetsViewTest, NewPresetCardIsAButtonWithItsWords) {
  beginAndShow();
  EXPECT_EQ(spoken(view->newPresetCard()).role(), QAccessible::Button);
  EXPECT_EQ(spoken(view->newPresetCard()).text(QAccessible::Name), QStringLiteral("New from current"));
  EXPECT_EQ(spoken(view->newPresetCard()).text(QAccessible::Description),
            QStringLiteral("Saves whatever your fans are doing right now as a new preset."));
}

TEST_F(PresetsViewTest, TabGoesFromCardToCardAndThenOn) {
  beginWithHelperAndShow();
  add("Mine", {});
  std::vector<QWidget*> expected;
  for (PresetCard* one : view->cards()) {
    expected.push_back(&one->menu());
    expected.push_back(&one->activateButton());
  }
  expected.push_back(&view->newPresetCard());
  expected.push_back(&view->autoSwitch().enabledSwitch());
  expected.front()->setFocus();
  for (std::size_t next = 1; next < expected.size(); ++next) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), expected[next]) << next;
  }
}

TEST_F(PresetsViewTest, FocusOfADeletedCardGoesToAnother) {
  beginAndShow();
  add("Mine", {});
  lastCard().menu().setFocus();
  choose(lastCard().menu(), 2);
  EXPECT_TRUE(lastCard().menu().hasFocus());
}

TEST_F(PresetsViewTest, HiddenItTakesUpNothingUntilItIsShown) {
  beginAndShow();
  view->hide();
  add("Mine", {});
  EXPECT_EQ(view->cards().size(), 3U);
  view->show();
  EXPECT_EQ(view->cards().size(), 4U);
}

TEST_F(PresetsViewTest, ReadingRepaintsNoCard) {
  beginAndShow();
  const PaintCount ofCard(card(0));
  const PaintCount ofSection(view->autoSwitch().onBattery());
  read(support::snapshot({support::fan(0)}, {support::sensor("TCHP", 70)}));
  EXPECT_EQ(ofCard.count(), 0);
  EXPECT_EQ(ofSection.count(), 0);
}

TEST_F(PresetsViewTest, ActivationRepaintsTheCardsThatItTouchesAlone) {
  beginWithHelperAndShow();
  model->activatePreset(model->presets()[0]);
  turn();
  const PaintCount ofBefore(card(0));
  const PaintCount ofNow(card(1));
  const PaintCount ofOther(card(2));
  model->activatePreset(model->presets()[1]);
  turn();
  EXPECT_GT(ofBefore.count(), 0);
  EXPECT_GT(ofNow.count(), 0);
  EXPECT_EQ(ofOther.count(), 0);
}

} // namespace
} // namespace ventolith::ui
