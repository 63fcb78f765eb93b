// What the curve editor shows.
#include "CurvesFixture.h"
#include "ui/CurveLiveLine.h"

namespace ventolith::ui {
namespace {

constexpr auto noReading = "No live sensor reading yet.";

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
  EXPECT_FALSE(editing().linked());
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

} // namespace
} // namespace ventolith::ui
