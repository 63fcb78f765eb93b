#include "ui/state/CurveEditing.h"

#include "support/Plans.h"
#include "ui/state/CurveEditingFixture.h"
#include "ui/state/Text.h"

#include <gtest/gtest.h>

namespace ventolith::ui {
namespace {

using support::fan;
using support::sensor;
using support::utf8;
using Values = std::vector<std::pair<double, double>>;

class CurveEditor : public CurveEditingFixture {};

const Values defaultValues = {{40, 15}, {60, 40}, {80, 75}, {92, 100}};

TEST_F(CurveEditor, BeginsWithTheDefaultCurveAndTuning) {
  EXPECT_FALSE(editing.selectedFanID());
  EXPECT_FALSE(editing.linked());
  EXPECT_EQ(values(), defaultValues);
  EXPECT_FALSE(editing.editingCurve().sourceSensorID);
  EXPECT_FALSE(editing.draggingPointID());
  EXPECT_FALSE(editing.selectedPointID());
  EXPECT_FALSE(editing.isSavingPreset());
  EXPECT_TRUE(editing.presetNameDraft().isEmpty());
  EXPECT_EQ(editing.hysteresis(), 2.0);
  EXPECT_EQ(editing.responseAlpha(), 0.3);
}

TEST_F(CurveEditor, AppearingChoosesTheFirstFanAndLoadsItsCurveAndTheTuning) {
  model.reading.fans = {fan(3), fan(4)};
  model.plan = support::plan({{3, core::FanControlModePlan::curve(support::curve({{80, 70}, {50, 20}}))}}, {},
                             {.emaAlpha = 0.7, .hysteresisCelsius = 4.5});
  editing.onFirstAppear();
  EXPECT_EQ(editing.selectedFanID(), 3);
  EXPECT_EQ(values(), (Values{{50, 20}, {80, 70}}));
  EXPECT_EQ(editing.hysteresis(), 4.5);
  EXPECT_EQ(editing.responseAlpha(), 0.7);
  EXPECT_TRUE(model.log.empty());
}

TEST_F(CurveEditor, FanWithoutACurveGetsTheDefaultOne) {
  model.plan = support::planOf(core::FanControlModePlan::fixedRPM(3000));
  editing.onFirstAppear();
  EXPECT_EQ(values(), defaultValues);
}

TEST_F(CurveEditor, AppearingAgainKeepsTheChosenFan) {
  model.reading.fans = {fan(0), fan(1)};
  editing.onFirstAppear();
  editing.chooseFan(1);
  editing.onFirstAppear();
  EXPECT_EQ(editing.selectedFanID(), 1);
}

TEST_F(CurveEditor, WithoutFansNothingIsChosenUntilOneAppears) {
  model.reading.fans = {};
  editing.onFirstAppear();
  EXPECT_FALSE(editing.hasFans());
  EXPECT_FALSE(editing.selectedFanID());
  EXPECT_FALSE(editing.takeSnapshot());

  model.reading.fans = {fan(5)};
  model.plan = support::plan({{5, core::FanControlModePlan::curve(support::curve({{50, 20}}))}});
  EXPECT_TRUE(editing.takeSnapshot());
  EXPECT_EQ(editing.selectedFanID(), 5);
  EXPECT_EQ(values(), (Values{{50, 20}}));
}

TEST_F(CurveEditor, ChosenFanStaysWhenItLeavesTheSnapshot) {
  editing.onFirstAppear();
  model.reading.fans = {fan(7)};
  EXPECT_FALSE(editing.takeSnapshot());
  EXPECT_EQ(editing.selectedFanID(), 0);
}

TEST_F(CurveEditor, SnapshotDuringADragLeavesTheCurveAlone) {
  editing.onFirstAppear();
  dragFrom(60, 40);
  dragTo(62, 50);
  model.plan = support::planOf(core::FanControlModePlan::curve(support::curve({{50, 20}})));
  editing.takeSnapshot();
  EXPECT_EQ(values(), (Values{{40, 15}, {62, 50}, {80, 75}, {92, 100}}));
}

TEST_F(CurveEditor, ChoosingAFanLoadsItsCurveForgetsThePointsAndSendsNothing) {
  model.reading.fans = {fan(0), fan(1)};
  model.plan = support::plan({{1, core::FanControlModePlan::curve(support::curve({{50, 20}, {70, 60}}))}});
  editing.onFirstAppear();
  dragFrom(60, 40);
  editing.chooseFan(1);
  EXPECT_EQ(values(), (Values{{50, 20}, {70, 60}}));
  EXPECT_FALSE(editing.draggingPointID());
  EXPECT_FALSE(editing.selectedPointID());
  EXPECT_TRUE(model.log.empty());
}

TEST_F(CurveEditor, ChoosingASensorSendsTheCurve) {
  editing.onFirstAppear();
  editing.chooseSensor("SMC-TC0P");
  EXPECT_EQ(model.log, Log{"curve for 0"});
  EXPECT_EQ(model.sentCurve.sourceSensorID, "SMC-TC0P");
  editing.chooseSensor(std::nullopt);
  EXPECT_FALSE(model.sentCurve.sourceSensorID);
}

TEST_F(CurveEditor, LinkTakesEffectAtTheNextCommit) {
  model.reading.fans = {fan(0), fan(1), fan(4)};
  editing.onFirstAppear();
  editing.chooseFan(1);
  editing.setLinked(true);
  EXPECT_TRUE(model.log.empty());
  editing.resetCurve();
  EXPECT_EQ(model.log, Log{"curve for 0 1 4"});
  editing.setLinked(false);
  editing.resetCurve();
  EXPECT_EQ(model.log.back(), "curve for 1");
}

TEST_F(CurveEditor, WithoutAChosenFanNothingIsSent) {
  model.reading.fans = {};
  editing.onFirstAppear();
  editing.addPoint();
  editing.resetCurve();
  editing.endDrag();
  editing.chooseSensor("SMC-TC0P");
  EXPECT_TRUE(model.log.empty());
}

TEST_F(CurveEditor, OneFanIsNoChoice) {
  EXPECT_TRUE(editing.hasFans());
  EXPECT_FALSE(editing.showsFanChoice());
  model.reading.fans = {fan(0), fan(1)};
  EXPECT_TRUE(editing.showsFanChoice());
}

TEST_F(CurveEditor, LineHasSeventySixSamplesOfTheCurve) {
  const std::vector<ChartValue> line = editing.curveSamples();
  ASSERT_EQ(line.size(), 76U);
  EXPECT_EQ(line.front(), (ChartValue{30, 15}));
  EXPECT_EQ(line[20], (ChartValue{50, 27.5}));
  EXPECT_EQ(line.back(), (ChartValue{105, 100}));
}

TEST_F(CurveEditor, LivePointIsWhereTheHottestSensorMeetsTheCurve) {
  model.reading.temps = {sensor("A", 50), sensor("B", 60), sensor("C", 40)};
  editing.onFirstAppear();
  EXPECT_EQ(editing.liveDataPoint(), (ChartValue{60, 40}));
}

TEST_F(CurveEditor, LivePointFollowsTheChosenSensor) {
  model.reading.temps = {sensor("A", 50), sensor("B", 60)};
  editing.onFirstAppear();
  editing.chooseSensor("SMC-A");
  EXPECT_EQ(editing.liveDataPoint(), (ChartValue{50, 27.5}));
}

TEST_F(CurveEditor, SensorThatIsGoneGivesNoLivePointAndLeavesTheCurve) {
  model.reading.temps = {sensor("A", 50)};
  editing.onFirstAppear();
  editing.chooseSensor("SMC-B");
  EXPECT_FALSE(editing.sourceTemp());
  EXPECT_FALSE(editing.liveDataPoint());
  EXPECT_EQ(editing.editingCurve().sourceSensorID, "SMC-B");
  EXPECT_EQ(values(), defaultValues);
}

TEST_F(CurveEditor, WithoutSensorsThereIsNoLivePoint) {
  editing.onFirstAppear();
  EXPECT_FALSE(editing.liveDataPoint());
}

TEST_F(CurveEditor, AddingAPointHalvesTheWidestGapOnTheCurve) {
  editing.onFirstAppear();
  editing.addPoint();
  EXPECT_EQ(values(), (Values{{40, 15}, {50, 27.5}, {60, 40}, {80, 75}, {92, 100}}));
  ASSERT_TRUE(editing.selectedPoint());
  EXPECT_EQ(editing.selectedPoint()->celsius, 50);
  EXPECT_EQ(model.log, Log{"curve for 0"});
  EXPECT_EQ(model.sentCurve, editing.editingCurve());
}

TEST_F(CurveEditor, AddingToACurveWithoutPointsStartsInTheMiddleOfTheAxis) {
  model.plan = support::planOf(core::FanControlModePlan::curve(support::curve({})));
  editing.onFirstAppear();
  editing.addPoint();
  EXPECT_EQ(values(), (Values{{67.5, 0}}));
}

TEST_F(CurveEditor, PointAddedBetweenTwoADegreeApartCannotBeMoved) {
  model.plan = support::planOf(core::FanControlModePlan::curve(support::curve({{60, 40}, {61, 50}})));
  editing.onFirstAppear();
  editing.addPoint();
  EXPECT_EQ(values(), (Values{{60, 40}, {60.5, 45}, {61, 50}}));
  dragFrom(60.5, 45);
  dragTo(60.5, 90);
  EXPECT_EQ(values(), (Values{{60, 40}, {60.5, 45}, {61, 50}}));
}

TEST_F(CurveEditor, PointBetweenTwoADegreeApartMovesOnceANeighbourHasMoved) {
  model.plan = support::planOf(core::FanControlModePlan::curve(support::curve({{60, 40}, {61, 50}})));
  editing.onFirstAppear();
  editing.addPoint();
  editing.selectPoint(2);
  for (int step = 0; step < 3; ++step)
    editing.nudgeSelectedPoint(Nudge::warmer);
  EXPECT_EQ(values(), (Values{{60, 40}, {60.5, 45}, {64, 50}}));
  dragFrom(60.5, 45);
  dragTo(62, 90);
  EXPECT_EQ(values(), (Values{{60, 40}, {62, 90}, {64, 50}}));
}

TEST_F(CurveEditor, DeletingTakesTheSelectedPointAway) {
  editing.onFirstAppear();
  select(60, 40);
  ASSERT_TRUE(editing.canDeleteSelected());
  model.log.clear();
  editing.deleteSelectedPoint();
  EXPECT_EQ(values(), (Values{{40, 15}, {80, 75}, {92, 100}}));
  EXPECT_FALSE(editing.selectedPointID());
  EXPECT_EQ(model.log, Log{"curve for 0"});
}

TEST_F(CurveEditor, NothingIsDeletedWithoutAPointThatCanBe) {
  editing.onFirstAppear();
  EXPECT_FALSE(editing.canDeleteSelected());
  editing.deleteSelectedPoint();
  select(40, 15);
  EXPECT_FALSE(editing.canDeleteSelected());
  select(92, 100);
  EXPECT_FALSE(editing.canDeleteSelected());
  model.log.clear();
  editing.deleteSelectedPoint();
  EXPECT_EQ(values(), defaultValues);
  EXPECT_TRUE(model.log.empty());
}

TEST_F(CurveEditor, NeitherOfTwoPointsCanBeDeleted) {
  model.plan = support::planOf(core::FanControlModePlan::curve(support::curve({{40, 10}, {80, 60}})));
  editing.onFirstAppear();
  select(40, 10);
  EXPECT_FALSE(editing.canDeleteSelected());
}

TEST_F(CurveEditor, ResettingGoesBackToTheDefaultCurveOfTheHottestSensor) {
  editing.onFirstAppear();
  editing.chooseSensor("SMC-TC0P");
  editing.addPoint();
  editing.resetCurve();
  EXPECT_EQ(values(), defaultValues);
  EXPECT_FALSE(editing.editingCurve().sourceSensorID);
  EXPECT_FALSE(editing.selectedPointID());
  EXPECT_EQ(model.sentCurve, editing.editingCurve());
  EXPECT_EQ(model.log.size(), 3U);
}

TEST_F(CurveEditor, SavingAPresetBeginsWithAName) {
  editing.setPresetNameDraft(QStringLiteral("Left over"));
  editing.beginSavingPreset();
  EXPECT_TRUE(editing.isSavingPreset());
  EXPECT_EQ(utf8(editing.presetNameDraft()), "Custom");
}

TEST_F(CurveEditor, SavingAPresetSendsTheCurveFirstAndTheNameWithoutBlanksAround) {
  editing.onFirstAppear();
  editing.beginSavingPreset();
  editing.setPresetNameDraft(QStringLiteral(" \tNight work\t "));
  editing.savePreset();
  EXPECT_EQ(model.log, (Log{"curve for 0", "preset \"Night work\""}));
  EXPECT_FALSE(editing.isSavingPreset());
}

TEST_F(CurveEditor, NameOfBlanksAloneSavesNothingAndKeepsThePopover) {
  editing.onFirstAppear();
  for (const QString& name : {QString(), QStringLiteral("   "), QStringLiteral("\t \t")}) {
    editing.beginSavingPreset();
    editing.setPresetNameDraft(name);
    editing.savePreset();
    EXPECT_TRUE(editing.isSavingPreset());
  }
  EXPECT_TRUE(model.log.empty());
}

TEST_F(CurveEditor, CancellingClosesThePopover) {
  editing.onFirstAppear();
  editing.beginSavingPreset();
  editing.cancelSavingPreset();
  EXPECT_FALSE(editing.isSavingPreset());
  EXPECT_TRUE(model.log.empty());
}

TEST_F(CurveEditor, TuningIsSentWhenASliderIsLetGo) {
  model.plan.tuning = {.minDwellSeconds = 7};
  editing.onFirstAppear();
  editing.setHysteresis(4.5);
  editing.setResponseAlpha(0.25);
  EXPECT_TRUE(model.log.empty());
  editing.commitTuning();
  EXPECT_EQ(model.log, Log{"tuning"});
  EXPECT_EQ(
      model.sentTuning,
      (core::ControlTuning{
          .emaAlpha = 0.25, .hysteresisCelsius = 4.5, .maxDeltaRPMPerTick = 400, .minDwellSeconds = 7}));
}

TEST_F(CurveEditor, ResponseGovernsTheRateLimit) {
  struct Row {
    double alpha;
    double rpmPerTick;
  };
  const Row rows[] = {{0, 200}, {0.5, 600}, {1, 1000}};
  for (const Row& row : rows) {
    editing.setResponseAlpha(row.alpha);
    editing.commitTuning();
    EXPECT_EQ(model.sentTuning.maxDeltaRPMPerTick, row.rpmPerTick);
  }
}

} // namespace
} // namespace ventolith::ui
