// What the chart looks like.
#include "CurveChartFixture.h"

namespace ventolith::ui {
namespace {

TEST_F(CurveChartTest, ShowsLinePointsSafetyLineAndLivePointWhereTheirValuesAre) {
  const Palette& its = stage.theme.palette();
  const QImage shown = picture();
  EXPECT_EQ(shown.pixelColor(at(32, 15)), inPicture(its.chartLine));
  EXPECT_EQ(shown.pixelColor(at(60, 40)), inPicture(its.chartLine));
  EXPECT_EQ(shown.pixelColor(at(50, 27.5)), inPicture(its.success));
  int red = 0;
  for (int percent = 5; percent < 95; ++percent)
    red += shown.pixelColor(at(95, percent)).red() > shown.pixelColor(at(95, percent)).blue() + 60 ? 1 : 0;
  EXPECT_GT(red, 35); // Five of nine, here and there half a pixel.
  EXPECT_LT(red, 70);
}

TEST_F(CurveChartTest, TheHaloIsAroundTheChosenPointAlone) {
  const QColor ground = inPicture(stage.theme.palette().cardBackground);
  const QPoint beside = at(60, 40) + QPoint(-6, -6); // Within the halo, off the point and the line.
  EXPECT_EQ(picture().pixelColor(beside), ground);
  choose(60, 40);
  EXPECT_EQ(picture().pixelColor(beside), inPicture(composed(ground, stage.theme.palette().accentSoft)));
}

TEST_F(CurveChartTest, ThereIsNoLivePointWithoutAReading) {
  read({});
  EXPECT_EQ(chart->shownLivePoint(), std::nullopt);
  EXPECT_EQ(picture().pixelColor(at(50, 27.5)), inPicture(stage.theme.palette().chartLine));
}

TEST_F(CurveChartTest, AReadingBeyondTheAxisStandsAtItsEnd) {
  read({support::sensor("TCHP", 21)});
  EXPECT_EQ(picture().pixelColor(at(30, 15)), inPicture(stage.theme.palette().success));
}

TEST_F(CurveChartTest, TheLiveLabelLeavesTheSafetyLabelFree) {
  const auto inkAboveThePlot = [&] {
    const QRectF& plot = chart->chart().plot;
    const QRectF strip(plot.left() + 4, 0, plot.right() - plot.left(), plot.top() - 10);
    const QImage shown = picture();
    int danger = 0;
    for (int y = 0; y < static_cast<int>(strip.bottom()); ++y)
      for (int x = static_cast<int>(strip.left()); x < static_cast<int>(strip.right()); ++x)
        danger += shown.pixelColor(x, y).red() > shown.pixelColor(x, y).green() + 60 ? 1 : 0;
    return danger;
  };
  read({});
  const int whole = inkAboveThePlot();
  ASSERT_GT(whole, 0);
  for (const double celsius : {90.0, 94.0, 99.0, 110.0}) {
    read({support::sensor("TCHP", celsius)});
    EXPECT_EQ(inkAboveThePlot(), whole) << celsius;
  }
}

TEST_F(CurveChartTest, TheGroundFollowsTheLook) {
  const QPoint corner(1, 1);
  EXPECT_EQ(picture().pixelColor(corner), inPicture(Palette::of(Appearance::light).cardBackground));
  stage.theme.force({.appearance = Appearance::dark, .reduceMotion = true});
  EXPECT_EQ(picture().pixelColor(corner), inPicture(Palette::of(Appearance::dark).cardBackground));
}

TEST_F(CurveChartTest, TheLivePointGoesAlongTheCurveToANewReading) {
  stage.theme.force({.reduceMotion = false});
  read({support::sensor("TCHP", 70)});
  EXPECT_EQ(chart->liveMotion().duration(), 300);
  chart->liveMotion().setCurrentTime(120);
  const auto between = chart->shownLivePoint();
  ASSERT_TRUE(between);
  EXPECT_GT(between->celsius, 50);
  EXPECT_LT(between->celsius, 70);
  EXPECT_EQ(between->percent, editing.editingCurve().percent(between->celsius));
  chart->liveMotion().setCurrentTime(300);
  EXPECT_EQ(chart->shownLivePoint()->celsius, 70);
}

TEST_F(CurveChartTest, TheLivePointStandsAtOnceWhileAPointIsHeld) {
  stage.theme.force({.reduceMotion = false});
  press(60, 40);
  read({support::sensor("TCHP", 70)});
  EXPECT_EQ(chart->shownLivePoint()->celsius, 70);
  EXPECT_NE(chart->liveMotion().state(), QAbstractAnimation::Running);
}

TEST_F(CurveChartTest, TheFocusRingIsAroundTheHaloAndGoesWithIt) {
  before->setFocus();
  QTest::keyClick(before, Qt::Key_Tab);
  FocusRing* ring = nullptr;
  for (auto* one : stage.window.findChildren<QFocusFrame*>())
    ring = dynamic_cast<FocusRing*>(one);
  ASSERT_NE(ring, nullptr);
  EXPECT_LT((ring->geometry().center() - chart->mapTo(&stage.window, at(40, 15))).manhattanLength(), 4);
  tap(Qt::Key_Up);
  EXPECT_LT((ring->geometry().center() - chart->mapTo(&stage.window, at(40, 20))).manhattanLength(), 4);
}

} // namespace
} // namespace ventolith::ui
