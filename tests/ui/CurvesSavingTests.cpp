// The curve editor's presets.
#include "CurvesFixture.h"

#include <QAccessible>

namespace ventolith::ui {
namespace {

TEST_F(CurvesTest, ThePopoverBeginsWithANameThatIsMarked) {
  beginAndShow();
  press("Save as Preset…");
  EXPECT_TRUE(popover().isVisible());
  EXPECT_TRUE(shows(popover(), "Save as Preset"));
  EXPECT_EQ(nameField().text(), QStringLiteral("Custom"));
  EXPECT_EQ(nameField().selectedText(), QStringLiteral("Custom"));
  EXPECT_EQ(nameField().placeholderText(), QStringLiteral("Name"));
  EXPECT_EQ(nameField().width(), 220);
}

TEST_F(CurvesTest, SavingSendsTheCurveAndMakesAPresetOfIt) {
  beginAndShow();
  press("Save as Preset…");
  nameField().selectAll();
  QTest::keyClicks(&nameField(), QStringLiteral(" Night\t"));
  click(buttonIn(popover(), "Save"));
  turn();
  EXPECT_FALSE(popover().isVisible());
  EXPECT_EQ(model->presets().back().name, "Night");
  EXPECT_EQ(model->presets().back().plan, model->activePlan());
  EXPECT_EQ(planned(0), edited());
}

TEST_F(CurvesTest, ReturnInTheFieldSaves) {
  beginAndShow();
  press("Save as Preset…");
  QTest::keyClick(&nameField(), Qt::Key_Return);
  turn();
  EXPECT_FALSE(popover().isVisible());
  EXPECT_EQ(model->presets().back().name, "Custom");
}

TEST_F(CurvesTest, ANameOfBlanksSavesNothingAndKeepsThePopover) {
  beginAndShow();
  const auto presets = model->presets().size();
  press("Save as Preset…");
  nameField().selectAll();
  QTest::keyClicks(&nameField(), QStringLiteral("  "));
  click(buttonIn(popover(), "Save"));
  turn();
  EXPECT_TRUE(popover().isVisible());
  EXPECT_EQ(model->presets().size(), presets);
  EXPECT_EQ(planned(0), Values{});
}

TEST_F(CurvesTest, CancelAndEscapeCloseThePopoverAndSaveNothing) {
  beginAndShow();
  const auto presets = model->presets().size();
  press("Save as Preset…");
  click(buttonIn(popover(), "Cancel"));
  turn();
  EXPECT_FALSE(popover().isVisible());
  EXPECT_FALSE(editing().isSavingPreset());
  press("Save as Preset…");
  QTest::keyClick(&nameField(), Qt::Key_Escape);
  EXPECT_FALSE(popover().isVisible());
  EXPECT_EQ(model->presets().size(), presets);
}

TEST_F(CurvesTest, ANameThatAssistiveTechnologyWritesIsTheOneThatIsSaved) {
  beginAndShow();
  press("Save as Preset…");
  QAccessibleEditableTextInterface* field =
      QAccessible::queryAccessibleInterface(&nameField())->editableTextInterface();
  ASSERT_NE(field, nullptr);
  field->replaceText(0, 6, QStringLiteral("Dictated"));
  click(buttonIn(popover(), "Save"));
  turn();
  EXPECT_EQ(model->presets().back().name, "Dictated");
}

TEST_F(CurvesTest, ThePopoverGoesWithTheFans) {
  beginAndShow();
  press("Save as Preset…");
  read({});
  EXPECT_FALSE(popover().isVisible());
  EXPECT_FALSE(editing().isSavingPreset());
}

TEST_F(CurvesTest, ThePopoverGoesWithTheScreen) {
  beginAndShow();
  press("Save as Preset…");
  view->hide();
  EXPECT_FALSE(popover().isVisible());
}

} // namespace
} // namespace ventolith::ui
