// The curve editor's fan and curve, and what the user draws.
#include "CurvesFixture.h"

namespace ventolith::ui {
namespace {

TEST_F(CurvesTest, LoadsTheCurveOfTheFirstFanInOrder) {
  readings.next = app::snapshot({app::fan(3), app::fan(1)});
  begin();
  model->setFanCurve(support::curve({{70, 60}, {50, 20}}), {3});
  show();
  EXPECT_EQ(editing().selectedFanID(), 3);
  EXPECT_EQ(edited(), (Values{{50, 20}, {70, 60}}));
}

TEST_F(CurvesTest, ChoosingAFanLoadsItsCurveAndSendsNothing) {
  begin();
  model->setFanCurve(support::curve({{50, 20}, {70, 60}}, "SMC-TCHP"), {1});
  show();
  const auto sent = sentCount();
  choose(*picker("Fan"), 1);
  EXPECT_EQ(edited(), (Values{{50, 20}, {70, 60}}));
  EXPECT_EQ(picker("Source sensor")->current(), 1);
  EXPECT_EQ(sentCount(), sent);
}

TEST_F(CurvesTest, ChoosingASensorSendsTheCurveWithIt) {
  beginAndShow();
  choose(*picker("Source sensor"), 1);
  EXPECT_EQ(model->curve(0)->sourceSensorID, "SMC-TCHP");
  choose(*picker("Source sensor"), 0);
  EXPECT_EQ(model->curve(0)->sourceSensorID, std::nullopt);
}

TEST_F(CurvesTest, TheLinkSendsNothingAndThenHoldsForTheNextCurve) {
  beginAndShow();
  const auto sent = sentCount();
  click(*seenIn<CheckBox>(*view).front());
  turn();
  EXPECT_EQ(sentCount(), sent);
  select(60, 40);
  EXPECT_EQ(plannedFans(), (std::vector<core::FanID>{0, 1}));
}

TEST_F(CurvesTest, FansThatAppearAreTakenUp) {
  readings.next = core::SensorSnapshot{};
  beginAndShow();
  EXPECT_TRUE(shows(*view, "No fans detected"));
  read(app::snapshot({app::fan(5)}));
  EXPECT_FALSE(shows(*view, "No fans detected"));
  EXPECT_EQ(editing().selectedFanID(), 5);
}

TEST_F(CurvesTest, AChosenFanStaysChosenWhenItLeaves) {
  beginAndShow();
  read(app::snapshot({app::fan(1), app::fan(2)}));
  EXPECT_EQ(editing().selectedFanID(), 0);
  EXPECT_EQ(picker("Fan")->title(), QString());
}

TEST_F(CurvesTest, ACurveThatIsChangedElsewhereIsNotPickedUp) {
  beginAndShow();
  model->setFanCurve(support::curve({{50, 20}, {70, 60}}), {0});
  turn();
  EXPECT_EQ(edited().size(), 4U);
}

TEST_F(CurvesTest, EachVisitBeginsAnew) {
  beginAndShow();
  click(*seenIn<CheckBox>(*view).front());
  choose(*picker("Fan"), 1);
  select(60, 40);
  view->hide();
  view->show();
  turn();
  EXPECT_EQ(editing().selectedFanID(), 0);
  EXPECT_FALSE(editing().linked());
  EXPECT_FALSE(seenIn<CheckBox>(*view).front()->isChecked());
  EXPECT_EQ(editing().selectedPointID(), std::nullopt);
}

TEST_F(CurvesTest, ADragSendsOneCurveWhenItEnds) {
  beginAndShow();
  const auto sent = sentCount();
  pressChart(60, 40);
  moveOnChart(60, 55);
  moveOnChart(62, 65);
  turn();
  EXPECT_EQ(sentCount(), sent);
  letGoOfChart();
  turn();
  EXPECT_EQ(sentCount(), sent + 1);
  EXPECT_EQ(planned(0), (Values{{40, 15}, {62, 65}, {80, 75}, {92, 100}}));
  EXPECT_EQ(plannedFans(), std::vector<core::FanID>{0});
}

TEST_F(CurvesTest, AReadingDuringADragLeavesTheCurveInTheHand) {
  beginAndShow();
  pressChart(60, 40);
  moveOnChart(60, 55);
  read(app::snapshot({app::fan(0), app::fan(1)}, {support::sensor("TCHP", 88)}));
  EXPECT_EQ(edited()[1], std::pair(60.0, 55.0));
  EXPECT_EQ(chart().shownLivePoint()->celsius, 88);
}

TEST_F(CurvesTest, LeavingDuringADragKeepsWhatItMade) {
  beginAndShow();
  pressChart(60, 40);
  moveOnChart(60, 55);
  view = nullptr;
  turn();
  EXPECT_EQ(planned(0)[1], std::pair(60.0, 55.0));
}

TEST_F(CurvesTest, AddDeleteAndReset) {
  beginAndShow();
  press("Add Point");
  EXPECT_EQ(planned(0), (Values{{40, 15}, {50, 27.5}, {60, 40}, {80, 75}, {92, 100}}));
  EXPECT_TRUE(buttonIn(*view, "Delete Point").isEnabled());
  press("Delete Point");
  EXPECT_EQ(planned(0), (Values{{40, 15}, {60, 40}, {80, 75}, {92, 100}}));
  EXPECT_FALSE(buttonIn(*view, "Delete Point").isEnabled());
  choose(*picker("Source sensor"), 1);
  press("Reset");
  EXPECT_EQ(planned(0), (Values{{40, 15}, {60, 40}, {80, 75}, {92, 100}}));
  EXPECT_EQ(picker("Source sensor")->current(), 0);
  EXPECT_EQ(model->curve(0)->sourceSensorID, std::nullopt);
}

TEST_F(CurvesTest, DeletingByKeyboardLeavesTheKeyboardOnTheChart) {
  beginAndShow();
  activate(*view);
  select(60, 40);
  Button& remove = buttonIn(*view, "Delete Point");
  remove.setFocus(Qt::TabFocusReason);
  QTest::keyClick(&remove, Qt::Key_Space);
  EXPECT_EQ(edited().size(), 3U);
  EXPECT_TRUE(chart().hasFocus());
}

} // namespace
} // namespace ventolith::ui
