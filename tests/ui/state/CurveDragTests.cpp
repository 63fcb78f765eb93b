// The drag road of the curve editor, and the same by keyboard.
#include "ui/state/CurveEditingFixture.h"

#include <limits>

namespace ventolith::ui {
namespace {

using Values = std::vector<std::pair<double, double>>;
using Direction = CurveEditing::Direction;

class CurveDrag : public CurveEditingFixture {
protected:
  void SetUp() override { editing.onFirstAppear(); }
};

TEST_F(CurveDrag, PressPicksUpAndSelectsTheNearestPoint) {
  EXPECT_TRUE(dragFrom(61, 42));
  EXPECT_EQ(editing.draggingPointID(), editing.editingCurve().points[1].id);
  EXPECT_EQ(editing.selectedPointID(), editing.draggingPointID());
}

TEST_F(CurveDrag, NothingIsSentBeforeTheReleaseAndOneCommandAfterIt) {
  dragFrom(60, 40);
  for (double celsius = 60; celsius < 70; celsius += 0.1)
    dragTo(celsius, 50);
  EXPECT_TRUE(model.log.empty());
  editing.endDrag();
  EXPECT_EQ(model.log, Log{"curve for 0"});
  EXPECT_EQ(model.sentCurve, editing.editingCurve());
  EXPECT_EQ(values()[1], (std::pair<double, double>{70, 50}));
}

TEST_F(CurveDrag, ReleaseLetsThePointGoAndKeepsItSelected) {
  dragFrom(60, 40);
  const auto held = editing.draggingPointID();
  editing.endDrag();
  EXPECT_FALSE(editing.draggingPointID());
  EXPECT_EQ(editing.selectedPointID(), held);
}

TEST_F(CurveDrag, PlainClickSendsTheCurveAgain) {
  dragFrom(60, 40);
  editing.endDrag();
  EXPECT_EQ(model.log, Log{"curve for 0"});
  EXPECT_EQ(values(), (Values{{40, 15}, {60, 40}, {80, 75}, {92, 100}}));
}

TEST_F(CurveDrag, PressOnEmptyGroundMovesNothingAndKeepsTheSelection) {
  select(60, 40);
  const auto selected = editing.selectedPointID();
  const Values before = values();
  for (const ChartValue& press : {ChartValue{66.1, 40}, ChartValue{60, 52.1}, ChartValue{100, 10}}) {
    EXPECT_FALSE(dragTo(press.celsius, press.percent));
    EXPECT_FALSE(editing.draggingPointID());
    EXPECT_EQ(editing.selectedPointID(), selected);
  }
  EXPECT_EQ(values(), before);
}

TEST_F(CurveDrag, DragThatBeginsOnEmptyGroundTakesTheFirstPointItComesNear) {
  EXPECT_FALSE(dragTo(100, 10));
  EXPECT_FALSE(dragTo(90, 50));
  EXPECT_TRUE(dragTo(84, 70));
  EXPECT_EQ(editing.draggingPointID(), editing.editingCurve().points[2].id);
  EXPECT_EQ(values()[2], (std::pair<double, double>{84, 70}));
}

TEST_F(CurveDrag, HeldPointStaysHeldOverAnother) {
  dragFrom(60, 40);
  dragTo(80, 75);
  EXPECT_EQ(editing.draggingPointID(), editing.editingCurve().points[1].id);
  EXPECT_EQ(values(), (Values{{40, 15}, {79, 75}, {80, 75}, {92, 100}}));
}

TEST_F(CurveDrag, EndPointsStopAtTheEdgesOfThePlot) {
  dragFrom(40, 15);
  dragTo(-200, -50);
  editing.endDrag();
  dragFrom(92, 100);
  dragTo(300, 400);
  EXPECT_EQ(values(), (Values{{30, 0}, {60, 40}, {80, 75}, {105, 100}}));
}

TEST_F(CurveDrag, ChangeWithoutAPlotOrAPlaceIsIgnored) {
  dragFrom(60, 40);
  const Values before = values();
  const double notANumber = std::numeric_limits<double>::quiet_NaN();
  EXPECT_FALSE(editing.handleDrag({notANumber, 50}, chart));
  EXPECT_FALSE(editing.handleDrag({50, std::numeric_limits<double>::infinity()}, chart));
  EXPECT_FALSE(editing.handleDrag({50, 50}, ChartGeometry{.plot = QRectF(0, 0, 0, 100)}));
  EXPECT_EQ(values(), before);
}

TEST_F(CurveDrag, ChangeThatLeavesThePointWhereItIsSaysSo) {
  dragFrom(60, 40);
  EXPECT_FALSE(dragTo(60.2, 41));
  EXPECT_TRUE(dragTo(61, 41));
}

TEST_F(CurveDrag, PointThatIsGoneDuringADragIsNotMoved) {
  dragFrom(60, 40);
  editing.deleteSelectedPoint();
  const Values before = values();
  EXPECT_FALSE(dragTo(70, 60));
  EXPECT_EQ(values(), before);
}

TEST_F(CurveDrag, HoverNamesThePointThatAPressWouldTake) {
  EXPECT_EQ(editing.pointAt(chart.position({61, 42}), chart), editing.editingCurve().points[1].id);
  EXPECT_FALSE(editing.pointAt(chart.position({50, 90}), chart));
  EXPECT_FALSE(editing.selectedPointID());
}

TEST_F(CurveDrag, KeysSelectThePointsInOrderAndEndAtTheEnds) {
  for (std::size_t place = 0; place < 4; ++place) {
    EXPECT_TRUE(editing.selectPoint(Direction::next));
    EXPECT_EQ(editing.selectedPointID(), editing.editingCurve().points[place].id);
  }
  EXPECT_FALSE(editing.selectPoint(Direction::next));
  EXPECT_EQ(editing.selectedPointID(), editing.editingCurve().points[3].id);
  EXPECT_TRUE(editing.selectPoint(Direction::previous));
  EXPECT_EQ(editing.selectedPointID(), editing.editingCurve().points[2].id);
}

TEST_F(CurveDrag, KeysSelectFromTheFarEndBackwards) {
  EXPECT_TRUE(editing.selectPoint(Direction::previous));
  EXPECT_EQ(editing.selectedPointID(), editing.editingCurve().points[3].id);
}

TEST_F(CurveDrag, KeysSelectNothingOnACurveWithoutPoints) {
  model.plan = support::planOf(core::FanControlModePlan::curve(support::curve({})));
  editing.chooseFan(0);
  EXPECT_FALSE(editing.selectPoint(Direction::next));
  EXPECT_FALSE(editing.selectedPointID());
}

TEST_F(CurveDrag, KeysMoveTheSelectedPointAndSendItAtTheEnd) {
  EXPECT_FALSE(editing.nudgeSelectedPoint(Nudge::warmer));
  select(60, 40);
  model.log.clear();
  EXPECT_TRUE(editing.nudgeSelectedPoint(Nudge::warmer));
  EXPECT_TRUE(editing.nudgeSelectedPoint(Nudge::faster));
  EXPECT_EQ(values()[1], (std::pair<double, double>{61, 45}));
  EXPECT_TRUE(model.log.empty());
  editing.endDrag();
  EXPECT_EQ(model.log, Log{"curve for 0"});
}

TEST_F(CurveDrag, KeysSayWhenALimitStopsThem) {
  select(92, 100);
  EXPECT_FALSE(editing.nudgeSelectedPoint(Nudge::faster));
}

TEST_F(CurveDrag, APointIsSelectedByItsPlaceIfThereIsOne) {
  editing.selectPoint(2);
  EXPECT_EQ(editing.selectedPlace(), 2U);
  editing.selectPoint(4);
  EXPECT_EQ(editing.selectedPlace(), 2U);
}

} // namespace
} // namespace ventolith::ui
