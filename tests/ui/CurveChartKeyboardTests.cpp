// The chart by keyboard.
#include "CurveChartFixture.h"

namespace ventolith::ui {
namespace {

TEST_F(CurveChartTest, TabGoesFromPointToPointAndThenOn) {
  before->setFocus();
  for (std::size_t place = 0; place < 4; ++place) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_TRUE(chart->hasFocus());
    EXPECT_EQ(chosen(), place);
  }
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  EXPECT_TRUE(after->hasFocus());
}

TEST_F(CurveChartTest, BacktabGoesTheOtherWay) {
  after->setFocus();
  for (const std::size_t place : {3U, 2U, 1U, 0U}) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    EXPECT_EQ(chosen(), place);
  }
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
  EXPECT_TRUE(before->hasFocus());
}

TEST_F(CurveChartTest, WhoComesWithTabFindsTheChosenPointAgain) {
  choose(80, 75);
  before->setFocus();
  QTest::keyClick(before, Qt::Key_Tab);
  EXPECT_EQ(chosen(), 2U);
}

TEST_F(CurveChartTest, ArrowsMoveTheChosenPointByOneStep) {
  struct Case {
    Qt::Key key;
    std::pair<double, double> expected;
  };
  for (const auto& [which, expected] : {Case{Qt::Key_Left, {59, 40}}, Case{Qt::Key_Right, {60, 40}},
                                        Case{Qt::Key_Up, {60, 45}}, Case{Qt::Key_Down, {60, 40}}}) {
    choose(values()[1].first, values()[1].second);
    focus();
    tap(which);
    EXPECT_EQ(values()[1], expected);
    EXPECT_EQ(model.log, Log{"curve for 0"});
  }
}

TEST_F(CurveChartTest, ArrowsStopWhereADragDoes) {
  choose(92, 100);
  focus();
  for (int step = 0; step < 30; ++step)
    key(Qt::Key_Left, step > 0);
  key(Qt::Key_Up);
  EXPECT_EQ(values()[3], std::pair(81.0, 100.0));
}

TEST_F(CurveChartTest, AHeldArrowIsOneGesture) {
  choose(60, 40);
  focus();
  key(Qt::Key_Right);
  for (int repeat = 0; repeat < 5; ++repeat) {
    releaseKey(Qt::Key_Right, true);
    key(Qt::Key_Right, true);
  }
  EXPECT_EQ(model.log, Log{});
  releaseKey(Qt::Key_Right);
  EXPECT_EQ(model.log, Log{"curve for 0"});
  EXPECT_EQ(model.sentCurve.points[1].celsius, 66);
}

TEST_F(CurveChartTest, AHeldArrowEndsWithTheFocus) {
  choose(60, 40);
  focus();
  key(Qt::Key_Up);
  after->setFocus();
  EXPECT_EQ(model.log, Log{"curve for 0"});
}

TEST_F(CurveChartTest, AnArrowThatMovesNothingSendsNothing) {
  choose(92, 100);
  focus();
  tap(Qt::Key_Up);
  EXPECT_EQ(model.log, Log{});
}

TEST_F(CurveChartTest, TheFirstArrowChoosesAPoint) {
  focus();
  tap(Qt::Key_Right);
  EXPECT_EQ(chosen(), 0U);
  EXPECT_EQ(values()[0], std::pair(40.0, 15.0));
}

TEST_F(CurveChartTest, DeleteAndBackspaceTakeTheChosenPointAway) {
  choose(60, 40);
  focus();
  tap(Qt::Key_Delete);
  EXPECT_EQ(values(), (Values{{40, 15}, {80, 75}, {92, 100}}));
  choose(80, 75);
  tap(Qt::Key_Backspace);
  EXPECT_EQ(values(), (Values{{40, 15}, {92, 100}}));
  EXPECT_EQ(model.log, Log{"curve for 0"});
}

TEST_F(CurveChartTest, DeleteLeavesTheEndsAlone) {
  choose(40, 15);
  focus();
  tap(Qt::Key_Delete);
  EXPECT_EQ(values().size(), 4U);
  EXPECT_EQ(model.log, Log{});
}

TEST_F(CurveChartTest, PlusAddsAPointAndChoosesIt) {
  focus();
  tap(Qt::Key_Plus);
  EXPECT_EQ(values()[1], std::pair(50.0, 27.5));
  EXPECT_EQ(chosen(), 1U);
  EXPECT_EQ(model.log, Log{"curve for 0"});
}

TEST_F(CurveChartTest, AHeldPlusAddsOnePoint) {
  focus();
  key(Qt::Key_Plus);
  key(Qt::Key_Plus, true);
  EXPECT_EQ(values().size(), 5U);
}

TEST_F(CurveChartTest, CommandsOfTheWindowAreNotTheCharts) {
  choose(60, 40);
  focus();
  for (const Qt::Key which : {Qt::Key_Plus, Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_Up, Qt::Key_Left})
    for (const Qt::KeyboardModifier with : {Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier})
      key(which, false, with);
  EXPECT_EQ(values(), (Values{{40, 15}, {60, 40}, {80, 75}, {92, 100}}));
  EXPECT_EQ(model.log, Log{});
}

TEST_F(CurveChartTest, AnArrowThatIsLetGoOfUnderAModifierEndsItsGesture) {
  choose(60, 40);
  focus();
  key(Qt::Key_Up);
  releaseKey(Qt::Key_Up, false, Qt::ControlModifier);
  EXPECT_EQ(model.log, Log{"curve for 0"});
}

TEST_F(CurveChartTest, KeysDoNothingWhileThePointerHolds) {
  press(60, 40);
  tap(Qt::Key_Delete);
  tap(Qt::Key_Up);
  EXPECT_EQ(values()[1], std::pair(60.0, 40.0));
  EXPECT_EQ(values().size(), 4U);
}

} // namespace
} // namespace ventolith::ui
