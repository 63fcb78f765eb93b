#include "CurvesFixture.h"
#include "ui/CurveLiveLine.h"

#include <QAccessible>

namespace ventolith::ui {
namespace {

using core::FanControlModePlan;

constexpr auto noReading = "No live sensor reading yet.";

// What is shown

TEST_F(CurvesTest, WithoutFansThereIsNothingButTheHeaderAndALine) {
  readings.next = app::snapshot({}, {support::sensor("TCHP", 50)});
  beginAndShow();
  EXPECT_EQ(
      textsIn(*view),
      (QStringList{QStringLiteral("Fan Curves"),
                   QStringLiteral("Drag points on the temperature→speed curve to shape exactly how this "
                                  "fan responds."),
                   QStringLiteral("No fans detected")}));
  EXPECT_TRUE(seenIn<Button>(*view).empty());
  EXPECT_TRUE(seenIn<CurveChart>(*view).empty());
}

TEST_F(CurvesTest, ShowsItsTextsLetterForLetter) {
  beginAndShow();
  for (const char* text :
       {"Fan", "Source sensor", "This fan follows this sensor.",
        "Curves take effect once fan control is enabled (Dashboard → Enable…).", "Response tuning",
        "Applies to every curve- and rule-driven fan, not just this one.", "Hysteresis", "Response", "Slow",
        "Fast", "2.0 °C"})
    EXPECT_TRUE(shows(*view, text)) << text;
  for (const char* title : {"Add Point", "Delete Point", "Reset", "Save as Preset…"})
    EXPECT_TRUE(hasButton(*view, title)) << title;
  EXPECT_FALSE(shows(*view, "No fans detected"));
}

TEST_F(CurvesTest, OneFanIsNoChoiceAndHasNoLink) {
  readings.next = app::snapshot({app::fan(0)}, {support::sensor("TCHP", 50)});
  beginAndShow();
  EXPECT_EQ(picker("Fan"), nullptr);
  EXPECT_FALSE(shows(*view, "Fan"));
  EXPECT_TRUE(seenIn<CheckBox>(*view).empty());
  EXPECT_NE(picker("Source sensor"), nullptr);
}

TEST_F(CurvesTest, PickersListFansAndSensorsByName) {
  readings.next = app::snapshot({{.id = 4, .name = "Left"}, {.id = 2, .name = "Right"}},
                                {{.key = "B", .name = "GPU"}, {.key = "A", .name = "CPU"}});
  beginAndShow();
  EXPECT_EQ(picker("Fan")->titles(), (QStringList{QStringLiteral("Left"), QStringLiteral("Right")}));
  EXPECT_EQ(picker("Fan")->current(), 0);
  EXPECT_EQ(picker("Source sensor")->titles(),
            (QStringList{QStringLiteral("Hottest"), QStringLiteral("GPU"), QStringLiteral("CPU")}));
  EXPECT_EQ(picker("Source sensor")->current(), 0);
}

TEST_F(CurvesTest, ShortNamesLeaveThePickersAsWideAsUsual) {
  beginAndShow();
  EXPECT_EQ(picker("Fan")->width(), 150);
  EXPECT_EQ(picker("Source sensor")->width(), 180);
}

TEST_F(CurvesTest, LongNamesWidenThePickersUpToTheirLimits) {
  const std::string name(80, 'w');
  readings.next = app::snapshot({{.id = 0, .name = name}, {.id = 1, .name = "Right"}},
                                {{.key = "A", .name = name, .celsius = 40}});
  beginAndShow();
  EXPECT_EQ(picker("Fan")->width(), 200);
  EXPECT_EQ(picker("Source sensor")->width(), 220);
}

TEST_F(CurvesTest, TheLiveLineCutsItsNumbers) {
  readings.next = app::snapshot({app::fan(0)}, {support::sensor("A", 61.9), support::sensor("B", 40)});
  beginAndShow();
  EXPECT_TRUE(shows(*view, "Live: 61°C → 43%"));
  EXPECT_FALSE(shows(*view, noReading));
  read(app::snapshot({app::fan(0)}));
  EXPECT_TRUE(shows(*view, noReading));
}

TEST_F(CurvesTest, TheLiveLineFadesBetweenAReadingAndNone) {
  beginAndShow();
  theme.force({.reduceMotion = false});
  read(app::snapshot({app::fan(0), app::fan(1)}));
  Transition& motion = view->findChild<CurveLiveLine*>()->motion();
  EXPECT_EQ(motion.duration(), 200);
  EXPECT_EQ(motion.endValue().toDouble(), 0);
}

TEST_F(CurvesTest, DrawingMovesTheLiveLineAtOnce) {
  readings.next = app::snapshot({app::fan(0)}, {support::sensor("A", 60)});
  beginAndShow();
  EXPECT_TRUE(shows(*view, "Live: 60°C → 40%"));
  pressChart(60, 40);
  moveOnChart(60, 70);
  EXPECT_TRUE(shows(*view, "Live: 60°C → 70%"));
}

TEST_F(CurvesTest, AMissingSourceSensorLeavesTheCurveAndHasNoLivePoint) {
  beginAndShow();
  choose(*picker("Source sensor"), 1);
  read(app::snapshot({app::fan(0), app::fan(1)}, {support::sensor("other", 70)}));
  EXPECT_TRUE(shows(*view, noReading));
  EXPECT_EQ(chart().shownLivePoint(), std::nullopt);
  EXPECT_EQ(edited(), (Values{{40, 15}, {60, 40}, {80, 75}, {92, 100}}));
  EXPECT_EQ(picker("Source sensor")->title(), QString());
}

TEST_F(CurvesTest, DeleteIsForPointsBetweenTheEnds) {
  beginAndShow();
  const Button& remove = buttonIn(*view, "Delete Point");
  EXPECT_FALSE(remove.isEnabled());
  select(40, 15);
  EXPECT_FALSE(remove.isEnabled());
  select(60, 40);
  EXPECT_TRUE(remove.isEnabled());
  select(92, 100);
  EXPECT_FALSE(remove.isEnabled());
}

// The fan and its curve

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
  EXPECT_FALSE(editing().isLinked());
  EXPECT_FALSE(seenIn<CheckBox>(*view).front()->isChecked());
  EXPECT_EQ(editing().selectedPointID(), std::nullopt);
}

// Drawing

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
  view->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
  select(60, 40);
  Button& remove = buttonIn(*view, "Delete Point");
  remove.setFocus(Qt::TabFocusReason);
  QTest::keyClick(&remove, Qt::Key_Space);
  EXPECT_EQ(edited().size(), 3U);
  EXPECT_TRUE(chart().hasFocus());
}

// Saving

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

TEST_F(CurvesTest, ThePopoverGoesWithTheScreen) {
  beginAndShow();
  press("Save as Preset…");
  view->hide();
  EXPECT_FALSE(popover().isVisible());
}

// Tuning

TEST_F(CurvesTest, TuningIsShownAsThePlanHasIt) {
  begin();
  model->setTuning(
      {.emaAlpha = 0.67, .hysteresisCelsius = 3.5, .maxDeltaRPMPerTick = 1, .minDwellSeconds = 9});
  show();
  EXPECT_EQ(slider("Hysteresis").value(), 3.5);
  EXPECT_EQ(slider("Response").value(), 0.67);
  EXPECT_TRUE(shows(*view, "3.5 °C"));
  EXPECT_EQ(textsIn(*view).count(QStringLiteral("Fast")), 2);
}

TEST_F(CurvesTest, TheWordOfTheResponseFollowsItsSlider) {
  beginAndShow();
  struct Case {
    double alpha;
    const char* word;
  };
  for (const auto& [alpha, word] : {Case{0, "Slow"}, Case{0.339, "Slow"}, Case{0.34, "Medium"},
                                    Case{0.669, "Medium"}, Case{0.67, "Fast"}}) {
    slider("Response").slideTo(alpha);
    EXPECT_EQ(slider("Response").spokenText(), QString::fromUtf8(word)) << alpha;
  }
}

TEST_F(CurvesTest, SlidersSendWhenTheyAreLetGoOf) {
  begin();
  model->setTuning({.minDwellSeconds = 9});
  show();
  const auto sent = sentCount();
  Slider& response = slider("Response");
  Q_EMIT response.pressBegan();
  Q_EMIT response.valueChanged(0.5);
  turn();
  EXPECT_TRUE(shows(*view, "Medium"));
  EXPECT_EQ(sentCount(), sent);
  Q_EMIT response.pressEnded();
  turn();
  const core::ControlTuning& tuning = model->activePlan().tuning;
  EXPECT_EQ(tuning.emaAlpha, 0.5);
  EXPECT_EQ(tuning.maxDeltaRPMPerTick, 600);
  EXPECT_EQ(tuning.minDwellSeconds, 9);
  EXPECT_EQ(sentCount(), sent + 1);
}

TEST_F(CurvesTest, HysteresisMovesInHalfDegrees) {
  beginAndShow();
  Slider& hysteresis = slider("Hysteresis");
  EXPECT_EQ(hysteresis.range(), (SliderRange{.minimum = 0, .maximum = 6, .step = 0.5}));
  hysteresis.slideTo(4.4);
  EXPECT_TRUE(shows(*view, "4.5 °C"));
  EXPECT_EQ(model->activePlan().tuning.hysteresisCelsius, 4.5);
}

// How it behaves

TEST_F(CurvesTest, TheChartIsAsHighAsTheWindowAllows) {
  beginAndShow();
  struct Case {
    int window;
    int chart;
  };
  for (const auto& [window, height] : {Case{640, 300}, Case{760, 342}, Case{1000, 420}}) {
    view->resize(900, window);
    turn();
    EXPECT_EQ(chart().height(), height);
  }
}

TEST_F(CurvesTest, NarrowContentPutsTheSlidersBelowEachOther) {
  beginAndShow();
  EXPECT_EQ(slider("Hysteresis").mapTo(view.get(), QPoint()).y(),
            slider("Response").mapTo(view.get(), QPoint()).y());
  view->resize(640, 900);
  turn();
  EXPECT_LT(slider("Hysteresis").mapTo(view.get(), QPoint()).y(),
            slider("Response").mapTo(view.get(), QPoint()).y());
}

TEST_F(CurvesTest, TheKeyboardGoesFromTopToBottom) {
  beginAndShow();
  view->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
  select(60, 40); // "Delete Point" can be reached then.
  picker("Fan")->setFocus();
  QStringList names;
  for (int step = 0; step < 11; ++step) {
    QWidget* focused = QApplication::focusWidget();
    names << QAccessible::queryAccessibleInterface(focused)->text(QAccessible::Name);
    QTest::keyClick(focused, Qt::Key_Tab);
  }
  names.removeDuplicates(); // The chart has a stop for each further point.
  EXPECT_EQ(names,
            (QStringList{QStringLiteral("Fan"), QStringLiteral("Link fans"), QStringLiteral("Source sensor"),
                         QStringLiteral("Temperature to speed curve"), QStringLiteral("Add Point"),
                         QStringLiteral("Reset"), QStringLiteral("Save as Preset…"),
                         QStringLiteral("Hysteresis"), QStringLiteral("Response")}));
}

TEST_F(CurvesTest, AReadingThatChangesNothingHereRepaintsTheChartAlone) {
  beginAndShow();
  const PaintCount tuning(slider("Response"));
  const PaintCount button(buttonIn(*view, "Add Point"));
  const PaintCount sensor(*picker("Source sensor"));
  const PaintCount curve(chart());
  read(app::snapshot({app::fan(0), app::fan(1)}, {support::sensor("TCHP", 52)}));
  EXPECT_GT(curve.count(), 0);
  EXPECT_EQ(tuning.count() + button.count() + sensor.count(), 0);
}

TEST_F(CurvesTest, AStepOfADragRepaintsTheChartAlone) {
  readings.next = app::snapshot({app::fan(0), app::fan(1)}, {support::sensor("TCHP", 35)});
  beginAndShow();
  pressChart(60, 40);
  turn();
  const PaintCount all(*view);
  const PaintCount line(*view->findChild<CurveLiveLine*>());
  const PaintCount card(*chart().parentWidget());
  const PaintCount curve(chart());
  moveOnChart(60, 55);
  turn();
  EXPECT_EQ(curve.count(), 1);
  EXPECT_EQ(all.count() + card.count() + line.count(), 0);
}

TEST_F(CurvesTest, AHiddenScreenDoesNothingUntilItIsShown) {
  beginAndShow();
  view->hide();
  read(app::snapshot({app::fan(0), app::fan(1)}, {support::sensor("TCHP", 77)}));
  EXPECT_FALSE(shows(*view, "Live: 77°C → 69%"));
  view->show();
  turn();
  EXPECT_TRUE(shows(*view, "Live: 77°C → 69%"));
}

} // namespace
} // namespace ventolith::ui
