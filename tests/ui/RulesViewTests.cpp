#include "RulesFixture.h"

namespace ventolith::ui {
namespace {

class RulesViewTest : public RulesTest {};

TEST_F(RulesViewTest, WithoutRulesItSaysWhatTheyAreFor) {
  begin();
  show();
  EXPECT_TRUE(view->emptyState().isVisible());
  for (const char* text :
       {"Rules", "No rules yet",
        "Rules layer on top of a curve- or manual-controlled fan. The first rule that matches "
        "wins.",
        "Rules catch spikes your curve doesn't cover — like a hot SSD during a big copy."})
    EXPECT_TRUE(shows(*view, text)) << text;
  EXPECT_FALSE(list().isVisible());
}

TEST_F(RulesViewTest, EmptyStateStandsALittleAboveTheMiddle) {
  begin();
  show();
  const QWidget& button = view->createFirstRuleButton();
  const int content = 44 + 14 + 20 + 4 + 2 * 18 + 16 + 28; // Icon, heading, two lines of text, button.
  const int free = view->height() - 78 - view->emptyState().y();
  const int bottom = view->emptyState().y() + button.geometry().bottom() + 1;
  EXPECT_NEAR(bottom, view->emptyState().y() + (free + content) / 2, 1);
  EXPECT_EQ(button.geometry().center().x(), view->emptyState().rect().center().x());
}

TEST_F(RulesViewTest, BothButtonsAddARuleAtOnce) {
  begin();
  show();
  click(buttonIn(*view, "Create your first rule"));
  turn();
  ASSERT_EQ(rules().size(), 1U);
  core::FanRule expected{.name = "Rule",
                         .thresholdCelsius = 85,
                         .releaseBelowCelsius = 80,
                         .targetPercent = 80,
                         .fanTarget = core::RuleFanTarget::all(),
                         .dwellSeconds = 3,
                         .enabled = true};
  expected.id = rules()[0].id;
  EXPECT_EQ(rules()[0], expected);
  EXPECT_FALSE(view->emptyState().isVisible());

  click(buttonIn(*view, "New Rule"));
  turn();
  ASSERT_EQ(rules().size(), 2U);
  EXPECT_NE(rules()[0].id, rules()[1].id);
}

TEST_F(RulesViewTest, FirstRuleTakesTheFocusOfTheButtonThatMadeIt) {
  begin();
  show();
  view->createFirstRuleButton().setFocus();
  QTest::keyClick(&view->createFirstRuleButton(), Qt::Key_Space);
  turn();
  EXPECT_TRUE(row(0).hasFocus());
}

TEST_F(RulesViewTest, DeletingTheLastRuleBringsBackTheEmptyState) {
  showRules({ruleAt(85)});
  EXPECT_FALSE(view->emptyState().isVisible());
  click(row(0).deleteButton());
  turn();
  EXPECT_TRUE(view->emptyState().isVisible());
}

TEST_F(RulesViewTest, NewRuleIsScrolledIntoSight) {
  showRules({ruleAt(90), ruleAt(85), ruleAt(80), ruleAt(75), ruleAt(70)});
  click(view->newRuleButton());
  turn();
  const QRect last = row(5).geometry().translated(list().pos());
  EXPECT_LE(last.bottom(), list().parentWidget()->height());
}

TEST_F(RulesViewTest, HiddenItTakesUpNothingUntilItIsShown) {
  showRules({ruleAt(85)});
  view->hide();
  set({ruleAt(85), ruleAt(62)});
  EXPECT_EQ(list().rows().size(), 1U);
  view->show();
  EXPECT_EQ(list().rows().size(), 2U);
}

TEST_F(RulesViewTest, ReadingThatChangesNoWordRepaintsNoRow) {
  showRules({ruleAt(85)});
  turn();
  const PaintCount paints(row(0));
  const PaintCount ofStepper(row(0).thresholdStepper());
  core::SensorSnapshot warmer = readings.next;
  warmer.temps[0].celsius += 5;
  read(warmer);
  EXPECT_EQ(paints.count(), 0);
  EXPECT_EQ(ofStepper.count(), 0);
}

TEST_F(RulesViewTest, HeaderSpansTheScreen) {
  begin();
  show();
  const QWidget& header = *view->newRuleButton().parentWidget();
  const QRect button = view->newRuleButton().geometry();
  EXPECT_EQ(header.width(), view->width());
  EXPECT_EQ(button.right(), header.width() - 1 - 20);
  EXPECT_EQ(button.top(), 0);
  EXPECT_EQ(header.y(), 20);
}

TEST_F(RulesViewTest, IsAtLeastAsWideAsItsSentences) {
  showRules({ruleAt(85)});
  EXPECT_EQ(view->minimumWidth(), 560);
}

} // namespace
} // namespace ventolith::ui
