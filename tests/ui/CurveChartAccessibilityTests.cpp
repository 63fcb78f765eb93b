// What assistive technology makes of the chart.
#include "CurveChartFixture.h"
#include "ui/CurveChartAccessibility.h"

namespace ventolith::ui {
namespace {

TEST_F(CurveChartTest, IsAChartWhosePointsAreItsChildren) {
  QAccessibleInterface& its = spoken(*chart);
  EXPECT_EQ(its.role(), QAccessible::Chart);
  EXPECT_EQ(its.text(QAccessible::Name), QStringLiteral("Temperature to speed curve"));
  EXPECT_EQ(its.text(QAccessible::Value), QStringLiteral("40°C, 15%; 60°C, 40%; 80°C, 75%; 92°C, 100%"));
  ASSERT_EQ(its.childCount(), 4);
  QAccessibleInterface* point = its.child(1);
  ASSERT_NE(point, nullptr);
  EXPECT_EQ(point->text(QAccessible::Name), QStringLiteral("Point 2 of 4"));
  EXPECT_EQ(point->text(QAccessible::Value), QStringLiteral("60°C, 40%"));
  EXPECT_EQ(point->parent(), &its);
  EXPECT_EQ(its.indexOfChild(point), 1);
  EXPECT_TRUE(point->rect().contains(chart->mapToGlobal(at(60, 40))));
  EXPECT_EQ(its.childAt(point->rect().center().x(), point->rect().center().y()), point);
}

TEST_F(CurveChartTest, TheChosenPointIsTheOneThatTheKeyboardSpeaksTo) {
  QAccessibleInterface& its = spoken(*chart);
  choose(80, 75);
  focus();
  EXPECT_EQ(its.focusChild(), its.child(2));
  EXPECT_TRUE(its.child(2)->state().focused);
  EXPECT_TRUE(its.child(2)->state().selected);
  EXPECT_FALSE(its.child(1)->state().selected);
}

TEST_F(CurveChartTest, AssistiveTechnologyChoosesAndMovesPoints) {
  QAccessibleInterface* point = spoken(*chart).child(1);
  ASSERT_NE(point, nullptr);
  point->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(chosen(), 1U);
  EXPECT_EQ(model.log, Log{});
  point->actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
  EXPECT_EQ(values()[1], std::pair(60.0, 45.0));
  point->actionInterface()->doAction(QAccessibleActionInterface::decreaseAction());
  EXPECT_EQ(values()[1], std::pair(60.0, 40.0));
  model.log.clear();
  point->valueInterface()->setCurrentValue(70);
  EXPECT_EQ(values()[1], std::pair(60.0, 70.0));
  EXPECT_EQ(point->valueInterface()->currentValue().toDouble(), 70);
  EXPECT_EQ(model.log, Log{"curve for 0"});
}

TEST_F(CurveChartTest, APointThatIsGoneIsNoLongerValid) {
  QAccessibleInterface* last = spoken(*chart).child(3);
  ASSERT_NE(last, nullptr);
  choose(60, 40);
  focus();
  tap(Qt::Key_Delete);
  EXPECT_EQ(spoken(*chart).childCount(), 3);
  EXPECT_FALSE(last->isValid());
  EXPECT_EQ(last->text(QAccessible::Name), QString());
  last->actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
  EXPECT_EQ(values(), (Values{{40, 15}, {80, 75}, {92, 100}}));
}

TEST(CurveChartChange, IsWhatAListenerWouldWantToKnow) {
  const ChartValue one{.celsius = 40, .percent = 15}, two{.celsius = 60, .percent = 40};
  const ChartValue higher{.celsius = 60, .percent = 45};
  const auto marks = [](std::vector<ChartValue> points, std::optional<ChartValue> selected) {
    return CurveChartMarks{.points = std::move(points), .selected = selected};
  };
  struct Case {
    CurveChartMarks before, now;
    ChartChange expected;
  };
  const std::vector<Case> cases{
      {marks({one, two}, two), marks({one, two}, two), ChartChange::nothing},
      {marks({one, two}, one), marks({one, two}, two), ChartChange::choice},
      {marks({one, two}, one), marks({one, two}, std::nullopt), ChartChange::choice},
      {marks({one, two}, two), marks({one, higher}, higher), ChartChange::value},
      {marks({one, two}, two), marks({one}, std::nullopt), ChartChange::number},
      {marks({one}, one), marks({one, two}, two), ChartChange::number},
  };
  for (const auto& [before, now, expected] : cases)
    EXPECT_EQ(changeBetween(before, now), expected);
}

} // namespace
} // namespace ventolith::ui
