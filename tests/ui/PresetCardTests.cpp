#include "PresetsFixture.h"

#include <QPointer>

namespace ventolith::ui {
namespace {

class PresetCardTest : public PresetsTest {
protected:
  enum Entry { duplicate, rename, remove };

  void type(PresetCard& card, const char* name) {
    card.nameField().selectAll();
    card.nameField().insert(QString::fromUtf8(name));
  }
};

TEST_F(PresetCardTest, ShowsCaptionAndCurveOfTheBuiltInPresets) {
  beginAndShow();
  ASSERT_EQ(names(), (std::vector<std::string>{"Quiet", "Balanced", "Max"}));
  EXPECT_EQ(card(0).caption().text(), QStringLiteral("Whisper-quiet"));
  EXPECT_EQ(card(1).caption().text(), QStringLiteral("Everyday balance"));
  EXPECT_EQ(card(2).caption().text(), QStringLiteral("Maximum cooling"));
  EXPECT_EQ(card(0).thumbnail().content().kind, PresetThumbnail::Kind::curve);
  EXPECT_EQ(card(0).thumbnail().content().samples.size(), 15U);
  EXPECT_EQ(card(0).thumbnail().size(), QSize(120, 44));
}

TEST_F(PresetCardTest, ThumbnailSaysManualForAFirstFanWithoutACurve) {
  beginAndShow();
  add("Mine", {.fans = {{0, core::FanControlModePlan::automatic()}}});
  EXPECT_EQ(lastCard().thumbnail().content().text, QStringLiteral("Manual"));
  EXPECT_EQ(lastCard().caption().text(), QStringLiteral("Custom"));
  add("None", {});
  EXPECT_EQ(lastCard().thumbnail().content().text, QStringLiteral("No fans configured"));
}

TEST_F(PresetCardTest, ThumbnailIsSpokenOfInAWord) {
  beginAndShow();
  EXPECT_EQ(spoken(card(0).thumbnail()).role(), QAccessible::StaticText);
  EXPECT_EQ(spoken(card(0).thumbnail()).text(QAccessible::Name), QStringLiteral("Fan curve"));
  add("None", {});
  EXPECT_EQ(spoken(lastCard().thumbnail()).text(QAccessible::Name), QStringLiteral("No fans configured"));
}

TEST_F(PresetCardTest, CurveRunsFromCornerToCornerOfItsInset) {
  beginAndShow();
  add("Full", {.fans = {{0, core::FanControlModePlan::curve(support::curve({{30, 0}, {100, 100}}))}}});
  const QImage picture = lastCard().thumbnail().grab().toImage();
  const auto differs = [&](int x, int y) {
    return picture.pixelColor(x, y) != inPicture(theme.palette().thumbBackground);
  };
  EXPECT_TRUE(differs(6, 38));
  EXPECT_TRUE(differs(60, 22));
  EXPECT_TRUE(differs(114, 5));
  EXPECT_FALSE(differs(60, 8));
}

TEST_F(PresetCardTest, WithoutAnActivePresetEveryCardOffersItself) {
  beginWithHelperAndShow();
  for (PresetCard* one : view->cards()) {
    EXPECT_FALSE(one->activeBadge().isVisible());
    EXPECT_TRUE(one->activateButton().isVisible());
    EXPECT_TRUE(one->activateButton().isEnabled());
    EXPECT_EQ(one->activateButton().toolTip(), QString());
  }
}

TEST_F(PresetCardTest, ActivateMakesItTheActiveOne) {
  beginWithHelperAndShow();
  click(card(1).activateButton());
  turn();
  EXPECT_EQ(model->activePresetID(), PresetLibrary::balancedID);
  EXPECT_TRUE(card(1).activeBadge().isVisible());
  EXPECT_FALSE(card(1).activateButton().isVisible());
  EXPECT_FALSE(card(0).activeBadge().isVisible());
}

TEST_F(PresetCardTest, ActiveCardHasAStrokeOfTwoInTheAccent) {
  beginWithHelperAndShow();
  click(card(1).activateButton());
  turn();
  const auto stroke = [&](PresetCard& one, int depth) {
    return one.grab().toImage().pixelColor(Surface::shadowReach + depth, one.height() / 2);
  };
  EXPECT_EQ(stroke(card(1), 1), inPicture(theme.palette().accent));
  EXPECT_EQ(stroke(card(1), 2), inPicture(theme.palette().cardBackground));
  EXPECT_EQ(stroke(card(0), 0), inPicture(theme.palette().cardStroke));
  EXPECT_EQ(stroke(card(0), 1), inPicture(theme.palette().cardBackground));
}

TEST_F(PresetCardTest, ActivatingByKeyboardKeepsTheFocusOnTheCard) {
  beginWithHelperAndShow();
  card(1).activateButton().setFocus();
  QTest::keyClick(&card(1).activateButton(), Qt::Key_Space);
  turn();
  EXPECT_TRUE(card(1).menu().hasFocus());
}

TEST_F(PresetCardTest, WithoutTheHelperOnlyActivateIsDisabledAndSaysWhy) {
  beginAndShow();
  EXPECT_FALSE(card(0).activateButton().isEnabled());
  EXPECT_EQ(card(0).activateButton().toolTip(),
            QStringLiteral("Fan control isn't active yet — set up the helper to enable presets"));
  choose(card(0).menu(), duplicate);
  EXPECT_EQ(names().back(), "Quiet copy");
  choose(card(0).menu(), rename);
  EXPECT_TRUE(card(0).isEditingName());
  click(view->newPresetCard());
  turn();
  EXPECT_EQ(names().back(), "Custom");
}

TEST_F(PresetCardTest, BuiltInPresetCanNotBeDeletedAndSaysWhy) {
  beginAndShow();
  add("Mine", {});
  card(0).menu().openMenu();
  const std::vector<MenuRow> builtIn = card(0).menu().menu().rows();
  card(0).menu().menu().close();
  ASSERT_EQ(builtIn.size(), 3U);
  EXPECT_EQ(builtIn[0].title, QStringLiteral("Duplicate"));
  EXPECT_EQ(builtIn[1].title, QStringLiteral("Rename"));
  EXPECT_EQ(builtIn[2].title, QStringLiteral("Delete"));
  EXPECT_EQ(builtIn[2].role, MenuRole::destructive);
  EXPECT_TRUE(builtIn[0].isEnabled);
  EXPECT_TRUE(builtIn[1].isEnabled);
  EXPECT_FALSE(builtIn[2].isEnabled);
  EXPECT_EQ(builtIn[2].toolTip, QStringLiteral("Built-in presets can't be deleted"));

  lastCard().menu().openMenu();
  EXPECT_TRUE(lastCard().menu().menu().rows()[2].isEnabled);
  EXPECT_EQ(lastCard().menu().menu().rows()[2].toolTip, QString());
}

TEST_F(PresetCardTest, DeleteTakesThePresetAwayAtOnce) {
  beginAndShow();
  const core::FanPreset mine = add("Mine", {});
  choose(lastCard().menu(), remove);
  EXPECT_EQ(names(), (std::vector<std::string>{"Quiet", "Balanced", "Max"}));
  EXPECT_EQ(model->presets().size(), 3U);
}

TEST_F(PresetCardTest, PresetThatGoesUnderItsOpenMenuTakesItAlong) {
  beginAndShow();
  const core::FanPreset mine = add("Mine", {});
  lastCard().menu().openMenu();
  const QPointer<MenuPanel> menu = &lastCard().menu().menu();
  model->deletePreset(mine);
  turn();
  EXPECT_TRUE(menu == nullptr || !menu->isVisible());
  EXPECT_EQ(names(), (std::vector<std::string>{"Quiet", "Balanced", "Max"}));
}

TEST_F(PresetCardTest, PresetThatGoesWhileItsNameIsWrittenGivesTheKeyboardToAnother) {
  beginAndShow();
  const core::FanPreset mine = add("Mine", {});
  choose(lastCard().menu(), rename);
  model->deletePreset(mine);
  turn();
  EXPECT_EQ(names(), (std::vector<std::string>{"Quiet", "Balanced", "Max"}));
  EXPECT_TRUE(lastCard().menu().hasFocus());
}

TEST_F(PresetCardTest, EmptyNameChangesNothing) {
  beginAndShow();
  choose(card(0).menu(), rename);
  type(card(0), "");
  QTest::keyClick(&card(0).nameField(), Qt::Key_Return);
  turn();
  EXPECT_FALSE(card(0).isEditingName());
  EXPECT_EQ(card(0).name().text(), QStringLiteral("Quiet"));
}

TEST_F(PresetCardTest, RenameWritesInPlaceOfTheName) {
  beginAndShow();
  choose(card(0).menu(), rename);
  EXPECT_FALSE(card(0).name().isVisible());
  EXPECT_TRUE(card(0).nameField().isVisible());
  EXPECT_TRUE(card(0).nameField().hasFocus());
  EXPECT_EQ(card(0).nameField().text(), QStringLiteral("Quiet"));
  EXPECT_EQ(card(0).nameField().selectedText(), QStringLiteral("Quiet"));
  EXPECT_EQ(card(0).nameField().placeholderText(), QStringLiteral("Name"));
}

TEST_F(PresetCardTest, ReturnGivesTheNameToTheModelAsItStands) {
  beginAndShow();
  choose(card(0).menu(), rename);
  type(card(0), " Très calme ");
  QTest::keyClick(&card(0).nameField(), Qt::Key_Return);
  turn();
  EXPECT_EQ(model->presets()[0].name, " Très calme ");
  EXPECT_FALSE(card(0).isEditingName());
  EXPECT_TRUE(card(0).name().isVisible());
  EXPECT_EQ(card(0).name().text(), QStringLiteral(" Très calme "));
}

TEST_F(PresetCardTest, EscapeLetsTheOldNameStand) {
  beginAndShow();
  choose(card(0).menu(), rename);
  type(card(0), "Other");
  QTest::keyClick(&card(0).nameField(), Qt::Key_Escape);
  turn();
  EXPECT_EQ(model->presets()[0].name, "Quiet");
  EXPECT_FALSE(card(0).isEditingName());
  EXPECT_EQ(card(0).name().text(), QStringLiteral("Quiet"));
}

TEST_F(PresetCardTest, NameInTheMakingOutlivesChangesAroundIt) {
  beginAndShow();
  PresetCard* const edited = &card(1);
  choose(edited->menu(), rename);
  type(*edited, "Half a na");
  add("Mine", {});
  registration->status = app::DaemonStatus::enabled;
  pass(3);
  turn();
  EXPECT_EQ(&card(1), edited);
  EXPECT_TRUE(edited->isEditingName());
  EXPECT_TRUE(edited->nameField().hasFocus());
  EXPECT_EQ(edited->nameField().text(), QStringLiteral("Half a na"));
}

TEST_F(PresetCardTest, DotKeepsItsColourAcrossRenames) {
  beginAndShow();
  const auto dot = [&] {
    return lastCard().grab().toImage().pixelColor(Surface::shadowReach + 15 + 5, Surface::shadowReach + 25);
  };
  add("Mine", {});
  const QColor before = dot();
  EXPECT_NE(before, inPicture(theme.palette().cardBackground));
  model->renamePreset(model->presets().back(), "Yours");
  turn();
  EXPECT_EQ(dot(), before);
}

TEST_F(PresetCardTest, DotsFollowTheAppearance) {
  beginAndShow();
  const auto dot = [&] {
    return card(0).grab().toImage().pixelColor(Surface::shadowReach + 15 + 5, Surface::shadowReach + 25);
  };
  EXPECT_EQ(dot(), QColor(10, 132, 255));
  theme.force({.appearance = Appearance::dark, .reduceMotion = true});
  turn();
  EXPECT_EQ(dot(), QColor(64, 156, 255));
}

TEST_F(PresetCardTest, ControlsAreSpokenOfWithTheirPreset) {
  beginAndShow();
  EXPECT_EQ(card(0).accessibleName(), QStringLiteral("Quiet"));
  EXPECT_EQ(spoken(card(0).menu()).text(QAccessible::Name), QStringLiteral("More"));
  EXPECT_EQ(spoken(card(0).menu()).text(QAccessible::Description), QStringLiteral("Quiet"));
  EXPECT_EQ(spoken(card(0).activateButton()).text(QAccessible::Name), QStringLiteral("Activate"));
}

} // namespace
} // namespace ventolith::ui
