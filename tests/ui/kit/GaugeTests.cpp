#include "Pictures.h"

#include "ui/kit/Gauge.h"
#include "ui/kit/Theme.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ventolith::ui {
namespace {

struct ShownGauge {
  ShownGauge() { gauge.show(); }
  Theme theme;
  Gauge gauge{theme, Symbol::fan};
  QVariantAnimation& motion() { return *gauge.findChild<QVariantAnimation*>(); }
};

TEST(GaugeGeometry, TheRingGoesClockwiseFromTwelve) {
  const GaugeGeometry it = GaugeGeometry::in(44);
  EXPECT_DOUBLE_EQ(it.radius, 19.5);
  const struct {
    double fraction, sweep;
    QPointF end;
  } table[] = {{0, 0, {22, 2.5}}, {0.25, 90, {41.5, 22}}, {0.5, 180, {22, 41.5}}, {0.75, 270, {2.5, 22}}};
  for (const auto& [fraction, sweep, end] : table) {
    EXPECT_DOUBLE_EQ(GaugeGeometry::sweep(fraction), sweep);
    EXPECT_NEAR(it.end(fraction).x(), end.x(), 1e-9);
    EXPECT_NEAR(it.end(fraction).y(), end.y(), 1e-9);
  }
}

TEST(GaugeGeometry, ALargerGaugeIsTheSameDrawingLarger) {
  const GaugeGeometry it = GaugeGeometry::in(88);
  EXPECT_DOUBLE_EQ(it.radius, 39);
  EXPECT_DOUBLE_EQ(it.stroke, 10);
  EXPECT_DOUBLE_EQ(it.icon, 36);
}

TEST(Gauge, APartIsFilledAndTheRestIsTrack) {
  Theme theme;
  Gauge gauge(theme, Symbol::fan);
  gauge.setFraction(0.5);
  const QImage picture = gauge.grab().toImage();
  EXPECT_EQ(picture.pixelColor(41, 22), theme.palette().accentGraphic);
  EXPECT_NE(picture.pixelColor(2, 22), theme.palette().accentGraphic);
}

TEST(Gauge, WhatIsNoFractionIsBroughtInside) {
  Theme theme;
  Gauge gauge(theme, Symbol::fan);
  const double none = std::numeric_limits<double>::quiet_NaN();
  const double endless = std::numeric_limits<double>::infinity();
  const std::pair<double, double> table[] = {{-1, 0}, {2, 1}, {none, 0}, {endless, 0}, {0.3, 0.3}};
  for (const auto& [given, taken] : table) {
    gauge.setFraction(given);
    EXPECT_DOUBLE_EQ(gauge.fraction(), taken);
    EXPECT_DOUBLE_EQ(gauge.shownFraction(), taken);
  }
}

TEST(Gauge, TheFirstReadingIsThereAtOnce) {
  ShownGauge it;
  it.gauge.setFraction(0.8);
  EXPECT_DOUBLE_EQ(it.gauge.shownFraction(), 0.8);
  EXPECT_FALSE(it.gauge.isMoving());
}

TEST(Gauge, ANewReadingIsReachedInThreeHundredMillisecondsFastAtFirst) {
  ShownGauge it;
  it.gauge.setFraction(0);
  it.gauge.setFraction(1);
  ASSERT_TRUE(it.gauge.isMoving());
  EXPECT_EQ(it.motion().duration(), 300);
  it.motion().setCurrentTime(100);
  EXPECT_GT(it.gauge.shownFraction(), 0.5);
  EXPECT_LT(it.gauge.shownFraction(), 1);
  it.motion().setCurrentTime(300);
  EXPECT_DOUBLE_EQ(it.gauge.shownFraction(), 1);
  EXPECT_FALSE(it.gauge.isMoving());
}

TEST(Gauge, AReadingOnTheWayIsLeftFromWhereTheRingStands) {
  ShownGauge it;
  it.gauge.setFraction(0);
  it.gauge.setFraction(1);
  it.motion().setCurrentTime(100);
  const double there = it.gauge.shownFraction();
  it.gauge.setFraction(0.1);
  EXPECT_DOUBLE_EQ(it.gauge.shownFraction(), there);
  it.motion().setCurrentTime(300);
  EXPECT_DOUBLE_EQ(it.gauge.shownFraction(), 0.1);
}

TEST(Gauge, NothingMovesWhenMotionIsReduced) {
  ShownGauge it;
  it.theme.force({.reduceMotion = true});
  it.gauge.setFraction(0);
  it.gauge.setFraction(1);
  EXPECT_DOUBLE_EQ(it.gauge.shownFraction(), 1);
  EXPECT_FALSE(it.gauge.isMoving());
}

TEST(Gauge, AWayThatNobodyCouldSeeIsNoMotion) {
  ShownGauge it;
  it.gauge.setFraction(0.5);
  it.gauge.setFraction(0.505); // 0.6 of a pixel.
  EXPECT_FALSE(it.gauge.isMoving());
  EXPECT_DOUBLE_EQ(it.gauge.shownFraction(), 0.505);
}

TEST(Gauge, AJumpEndsAMotionAndIsNone) {
  ShownGauge it;
  it.gauge.setFraction(0);
  it.gauge.setFraction(1);
  ASSERT_TRUE(it.gauge.isMoving());
  it.gauge.jumpTo(0.25);
  EXPECT_FALSE(it.gauge.isMoving());
  EXPECT_DOUBLE_EQ(it.gauge.fraction(), 0.25);
  EXPECT_DOUBLE_EQ(it.gauge.shownFraction(), 0.25);
}

TEST(Gauge, AHiddenGaugeRunsNoMotion) {
  ShownGauge it;
  it.gauge.setFraction(0);
  it.gauge.setFraction(1);
  it.gauge.hide();
  EXPECT_FALSE(it.gauge.isMoving());
  EXPECT_DOUBLE_EQ(it.gauge.shownFraction(), 1);
  it.gauge.setFraction(0);
  EXPECT_FALSE(it.gauge.isMoving());
}

} // namespace
} // namespace ventolith::ui
