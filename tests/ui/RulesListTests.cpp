#include "RulesFixture.h"

#include <QPointer>
#include <QPropertyAnimation>

namespace ventolith::ui {
namespace {

class RulesListTest : public RulesTest {
protected:
  /// Where the card is, and no control of it.
  static QPoint grip(const RuleRow& row) { return {row.width() - 60, row.height() / 2}; }

  void press(RuleRow& row) {
    held = &row;
    at = row.mapToGlobal(grip(row));
    send(QEvent::MouseButtonPress, Qt::LeftButton);
  }
  void dragBy(int dy) {
    at += QPoint(0, dy);
    send(QEvent::MouseMove, Qt::LeftButton);
  }
  void letGo() {
    send(QEvent::MouseButtonRelease, Qt::NoButton);
    turn();
  }

  static constexpr int pitch = 124 + RulesList::gap;

private:
  /// As the system sends it: to what was pressed, wherever the pointer is now.
  void send(QEvent::Type type, Qt::MouseButtons buttons) {
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, held->mapFromGlobal(QPointF(at)), QPointF(at), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(held, &event);
  }

  RuleRow* held = nullptr;
  QPoint at;
};

TEST_F(RulesListTest, ShowsARowForEachRuleInOrder) {
  showRules({ruleAt(85), ruleAt(62), ruleAt(42)});
  EXPECT_EQ(thresholdsShown(), (std::vector<double>{85, 62, 42}));
  EXPECT_EQ(row(0).height(), 124);
  EXPECT_EQ(row(1).y() - row(0).y(), pitch);
}

TEST_F(RulesListTest, DraggedRowFollowsThePointerAndLeavesAGapOfItsHeight) {
  showRules({ruleAt(85), ruleAt(62), ruleAt(42)});
  const int first = row(0).y();
  press(row(0));
  dragBy(80);
  EXPECT_TRUE(list().isDragging());
  EXPECT_EQ(row(0).y(), first + 80);
  EXPECT_EQ(row(1).y(), first) << "the next has made way";
  EXPECT_EQ(row(2).y(), first + 2 * pitch);
  EXPECT_EQ(thresholds(), (std::vector<double>{85, 62, 42})) << "nothing moves before the drop";
}

TEST_F(RulesListTest, DropMovesTheRule) {
  showRules({ruleAt(85), ruleAt(62), ruleAt(42)});
  press(row(0));
  dragBy(80);
  letGo();
  EXPECT_EQ(thresholds(), (std::vector<double>{62, 85, 42}));
  EXPECT_EQ(thresholdsShown(), (std::vector<double>{62, 85, 42}));
  EXPECT_EQ(row(1).y() - row(0).y(), pitch);
}

TEST_F(RulesListTest, DropsAtEitherEnd) {
  showRules({ruleAt(85), ruleAt(62), ruleAt(42)});
  press(row(0));
  dragBy(5 * pitch);
  letGo();
  EXPECT_EQ(thresholds(), (std::vector<double>{62, 42, 85}));
  press(row(2));
  dragBy(-5 * pitch);
  letGo();
  EXPECT_EQ(thresholds(), (std::vector<double>{85, 62, 42}));
}

TEST_F(RulesListTest, ShortPullIsNoDrag) {
  showRules({ruleAt(85), ruleAt(62)});
  const int first = row(0).y();
  press(row(0));
  dragBy(QApplication::startDragDistance() - 1);
  EXPECT_FALSE(list().isDragging());
  EXPECT_EQ(row(0).y(), first);
}

TEST_F(RulesListTest, RowThatCoversLessThanHalfOfTheNextReturns) {
  showRules({ruleAt(85), ruleAt(62)});
  const int first = row(0).y();
  const std::size_t sent = sentCount();
  press(row(0));
  dragBy(60);
  letGo();
  EXPECT_EQ(row(0).y(), first);
  EXPECT_EQ(sentCount(), sent) << "no plan is sent for it";
}

TEST_F(RulesListTest, EscapeLetsTheRowReturn) {
  showRules({ruleAt(85), ruleAt(62)});
  row(0).setFocus();
  press(row(0));
  dragBy(100);
  QTest::keyClick(&row(0), Qt::Key_Escape);
  EXPECT_FALSE(list().isDragging());
  letGo();
  EXPECT_EQ(thresholds(), (std::vector<double>{85, 62}));
}

TEST_F(RulesListTest, DragWhoseEndWasNotSeenIsOverWithTheNextPress) {
  showRules({ruleAt(85), ruleAt(62)});
  const int first = row(0).y();
  press(row(0));
  dragBy(100);
  press(row(1));
  EXPECT_FALSE(list().isDragging());
  EXPECT_EQ(row(0).y(), first);
  letGo();
  EXPECT_EQ(thresholds(), (std::vector<double>{85, 62}));
}

TEST_F(RulesListTest, DragOfAListThatGoesAwayIsOver) {
  showRules({ruleAt(85), ruleAt(62)});
  press(row(0));
  dragBy(100);
  view->hide();
  EXPECT_FALSE(list().isDragging());
  letGo();
  EXPECT_EQ(thresholds(), (std::vector<double>{85, 62}));
}

TEST_F(RulesListTest, EditOfARuleThatIsGoneAlreadyBringsItNotBack) {
  showRules({ruleAt(85), ruleAt(62)});
  model->deleteRule(rules()[0].id);
  click(row(0).enabledToggle()); // Before the list has had the word.
  turn();
  EXPECT_EQ(thresholds(), std::vector<double>{62});
  EXPECT_EQ(thresholdsShown(), std::vector<double>{62});
}

TEST_F(RulesListTest, OpenMenuOfARowThatGoesGoesWithIt) {
  showRules({ruleAt(85), ruleAt(62)});
  row(0).sensorMenu().openMenu();
  const QPointer<MenuPanel> menu = &row(0).sensorMenu().menu();
  model->deleteRule(rules()[0].id);
  turn();
  EXPECT_TRUE(menu == nullptr || !menu->isVisible());
  EXPECT_EQ(thresholdsShown(), std::vector<double>{62});
}

TEST_F(RulesListTest, RulesThatChangeUnderADragEndIt) {
  showRules({ruleAt(85), ruleAt(62)});
  press(row(0));
  dragBy(100);
  model->deleteRule(rules()[0].id);
  turn();
  EXPECT_FALSE(list().isDragging());
  EXPECT_EQ(thresholdsShown(), std::vector<double>{62});
}

TEST_F(RulesListTest, DragOverAReadingGoesOn) {
  showRules({ruleAt(85), ruleAt(62)});
  press(row(0));
  dragBy(100);
  read(support::snapshot({}, {}));
  EXPECT_TRUE(list().isDragging());
  letGo();
  EXPECT_EQ(thresholds(), (std::vector<double>{62, 85}));
}

TEST_F(RulesListTest, RowHeldBeyondTheEdgeScrollsTheListAlong) {
  showRules({ruleAt(90), ruleAt(85), ruleAt(80), ruleAt(75), ruleAt(70), ruleAt(65), ruleAt(60)});
  press(row(0));
  dragBy(500);
  EXPECT_LT(list().y(), 0);
  const int scrolled = list().y();
  dragBy(0);
  EXPECT_LT(list().y(), scrolled);
}

TEST_F(RulesListTest, AltAndArrowsMoveTheRowWithTheFocus) {
  showRules({ruleAt(85), ruleAt(62), ruleAt(42)});
  RuleRow* const moved = &row(0);
  moved->setFocus();
  QTest::keyClick(moved, Qt::Key_Down, Qt::AltModifier);
  turn();
  EXPECT_EQ(thresholds(), (std::vector<double>{62, 85, 42}));
  EXPECT_EQ(&row(1), moved);
  EXPECT_TRUE(moved->hasFocus());
  QTest::keyClick(moved, Qt::Key_Up, Qt::AltModifier);
  turn();
  EXPECT_EQ(thresholds(), (std::vector<double>{85, 62, 42}));
}

TEST_F(RulesListTest, AltAndArrowsMoveTheRowOfAControlAndNotItsValue) {
  showRules({ruleAt(85), ruleAt(62)});
  Stepper& stepper = row(0).thresholdStepper();
  stepper.setFocus();
  QTest::keyClick(&stepper, Qt::Key_Down, Qt::AltModifier);
  turn();
  EXPECT_EQ(thresholds(), (std::vector<double>{62, 85}));
  EXPECT_TRUE(stepper.hasFocus());
}

TEST_F(RulesListTest, RowsAtTheEndsStay) {
  showRules({ruleAt(85), ruleAt(62)});
  const std::size_t sent = sentCount();
  row(0).setFocus();
  QTest::keyClick(&row(0), Qt::Key_Up, Qt::AltModifier);
  row(1).setFocus();
  QTest::keyClick(&row(1), Qt::Key_Down, Qt::AltModifier);
  EXPECT_EQ(thresholds(), (std::vector<double>{85, 62}));
  EXPECT_EQ(sentCount(), sent);
}

TEST_F(RulesListTest, ArrowsGoFromRowToRow) {
  showRules({ruleAt(85), ruleAt(62)});
  row(0).setFocus();
  QTest::keyClick(&row(0), Qt::Key_Down);
  EXPECT_TRUE(row(1).hasFocus());
  QTest::keyClick(&row(1), Qt::Key_Down);
  EXPECT_TRUE(row(1).hasFocus());
  QTest::keyClick(&row(1), Qt::Key_Up);
  EXPECT_TRUE(row(0).hasFocus());
}

TEST_F(RulesListTest, TabGoesThroughTheRowsInTheirOrder) {
  showRules({ruleAt(85), ruleAt(62)});
  set({rules()[1], rules()[0], ruleAt(42)});
  std::vector<QWidget*> expected;
  for (RuleRow* one : list().rows())
    for (QWidget* stop : one->tabStops())
      expected.push_back(stop);
  view->newRuleButton().setFocus();
  for (QWidget* stop : expected) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), stop);
  }
}

TEST_F(RulesListTest, DeletingARowGivesTheFocusToTheOneInItsPlace) {
  showRules({ruleAt(85), ruleAt(62), ruleAt(42)});
  row(1).deleteButton().setFocus();
  QTest::keyClick(&row(1).deleteButton(), Qt::Key_Space);
  turn();
  EXPECT_EQ(thresholdsShown(), (std::vector<double>{85, 42}));
  EXPECT_TRUE(row(1).hasFocus());
}

TEST_F(RulesListTest, RowsThatStayAreTheSameWidgets) {
  showRules({ruleAt(85), ruleAt(62)});
  RuleRow* const kept = &row(1);
  kept->dwellStepper().setFocus();
  core::FanRule changed = rules()[1];
  changed.targetPercent = 40;
  set({ruleAt(95), changed});
  EXPECT_EQ(&row(1), kept);
  EXPECT_TRUE(kept->dwellStepper().hasFocus());
  EXPECT_EQ(kept->targetPercentStepper().label(), QStringLiteral("40%"));
}

TEST_F(RulesListTest, RulesOfOneIdentifierHaveARowEach) {
  core::FanRule twin = ruleAt(85);
  twin.targetPercent = 40;
  core::FanRule other = twin;
  other.targetPercent = 60;
  showRules({twin, other});
  ASSERT_EQ(list().rows().size(), 2U);
  EXPECT_EQ(row(1).targetPercentStepper().label(), QStringLiteral("60%"));
}

TEST_F(RulesListTest, RowsAreSpokenOfAsItemsThatMove) {
  showRules({ruleAt(85), ruleAt(62)});
  EXPECT_EQ(spoken(list()).role(), QAccessible::List);
  QAccessibleInterface& first = spoken(row(0));
  EXPECT_EQ(first.role(), QAccessible::ListItem);
  EXPECT_EQ(first.text(QAccessible::Description),
            QStringLiteral("Rule 1 of 2. Alt+Up and Alt+Down move it."));
  EXPECT_FALSE(first.actionInterface()->actionNames().contains(QStringLiteral("Move up")));
  first.actionInterface()->doAction(QStringLiteral("Move down"));
  turn();
  EXPECT_EQ(thresholds(), (std::vector<double>{62, 85}));
}

TEST_F(RulesListTest, RowsSlideToTheirPlacesWhereThingsMayMove) {
  showRules({ruleAt(85), ruleAt(62)});
  theme.force({.reduceMotion = false});
  const int first = row(0).y();
  model->moveRules({1}, 0);
  list().refresh(); // No turn: the way takes real time.
  EXPECT_EQ(list().slot(0).y(), first);
  EXPECT_GT(row(0).y(), first) << "it is on its way";
  auto& way = *row(0).findChild<QPropertyAnimation*>();
  way.setCurrentTime(way.duration());
  EXPECT_EQ(row(0).y(), first);
}

} // namespace
} // namespace ventolith::ui
