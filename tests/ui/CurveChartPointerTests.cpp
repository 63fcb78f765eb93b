// The chart by pointer.
#include "CurveChartFixture.h"

namespace ventolith::ui {
namespace {

TEST_F(CurveChartTest, APressTakesAPointAndTheDragMovesItInSteps) {
  press(60, 40);
  move(64.4, 57);
  EXPECT_EQ(chosen(), 1U);
  EXPECT_EQ(values()[1], std::pair(64.0, 55.0));
}

TEST_F(CurveChartTest, ADragSendsNothingBeforeItsEnd) {
  press(60, 40);
  for (int percent = 45; percent <= 70; percent += 5)
    move(60, percent);
  EXPECT_EQ(model.log, Log{});
  letGo();
  EXPECT_EQ(model.log, Log{"curve for 0"});
  EXPECT_EQ(model.sentCurve.points[1].percent, 70);
}

TEST_F(CurveChartTest, AClickOnEmptyGroundSendsTheCurveAgainAndKeepsTheChoice) {
  choose(60, 40);
  press(45, 90);
  letGo();
  EXPECT_EQ(chosen(), 1U);
  EXPECT_EQ(model.log, Log{"curve for 0"});
}

TEST_F(CurveChartTest, ADragFromEmptyGroundTakesTheFirstPointThatItComesNear) {
  press(60, 80);
  EXPECT_EQ(chosen(), std::nullopt);
  move(61, 50);
  EXPECT_EQ(chosen(), 1U);
}

TEST_F(CurveChartTest, ADragBeyondThePlotEndsAtTheAxes) {
  press(40, 15);
  move(QPoint(-300, 2000));
  EXPECT_EQ(values()[0], std::pair(30.0, 0.0));
  letGo();
  press(92, 100);
  move(QPoint(5000, -2000));
  EXPECT_EQ(values()[3], std::pair(105.0, 100.0));
}

TEST_F(CurveChartTest, OtherButtonsDoNothing) {
  QTest::mouseClick(chart, Qt::RightButton, Qt::NoModifier, at(60, 40));
  EXPECT_EQ(chosen(), std::nullopt);
  EXPECT_EQ(model.log, Log{});
}

TEST_F(CurveChartTest, AMoveWithoutTheButtonEndsADragWhoseReleaseWentElsewhere) {
  press(60, 40);
  move(60, 60);
  hover(70, 80);
  EXPECT_EQ(model.log, Log{"curve for 0"});
  EXPECT_EQ(values()[1], std::pair(60.0, 60.0));
  letGo(); // Late, and of nothing.
  EXPECT_EQ(model.log, Log{"curve for 0"});
}

TEST_F(CurveChartTest, ADragThatIsHiddenAwayEndsAndIsKept) {
  press(60, 40);
  move(60, 60);
  chart->hide();
  EXPECT_EQ(model.log, Log{"curve for 0"});
  EXPECT_EQ(editing.draggingPointID(), std::nullopt);
}

TEST_F(CurveChartTest, TheHandIsOpenOverAPointAndClosedWhileItHolds) {
  hover(45, 90);
  EXPECT_EQ(chart->cursor().shape(), Qt::ArrowCursor);
  hover(60, 40);
  EXPECT_EQ(chart->cursor().shape(), Qt::OpenHandCursor);
  press(60, 40);
  EXPECT_EQ(chart->cursor().shape(), Qt::ClosedHandCursor);
  QTest::mouseRelease(chart, Qt::LeftButton, Qt::NoModifier, at(60, 40));
  EXPECT_EQ(chart->cursor().shape(), Qt::OpenHandCursor);
}

TEST_F(CurveChartTest, TellsOfEachChangeAndOfNoOther) {
  QSignalSpy edited(chart, &CurveChart::edited);
  press(60, 40); // Chooses.
  move(60.2, 41);
  EXPECT_EQ(edited.count(), 1);
  move(60, 45);
  EXPECT_EQ(edited.count(), 2);
}

} // namespace
} // namespace ventolith::ui
