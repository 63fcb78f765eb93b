#include "core/FanCurve.h"
#include "support/Plans.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ventolith::core {
namespace {

using support::curve;

struct Row {
  double celsius;
  double percent;
};

TEST(FanCurve, IsLinearBetweenItsPointsAndFlatOutside) {
  const FanCurve rising = curve({{30, 0}, {50, 30}, {80, 100}});
  for (const auto& [celsius, percent] : {Row{20, 0}, Row{30, 0}, Row{40, 15}, Row{50, 30}, Row{65, 65},
                                         Row{80, 100}, Row{95, 100}, Row{-40, 0}}) {
    SCOPED_TRACE(celsius);
    EXPECT_EQ(rising.percent(celsius), percent);
  }
}

TEST(FanCurve, MayFall) {
  const FanCurve falling = curve({{30, 100}, {50, 20}});
  EXPECT_EQ(falling.percent(20), 100);
  EXPECT_EQ(falling.percent(40), 60);
  EXPECT_EQ(falling.percent(60), 20);
}

TEST(FanCurve, WithoutPointsIsZeroEverywhere) {
  for (const double celsius : {-300.0, 0.0, 50.0, 1000.0})
    EXPECT_EQ(FanCurve().percent(celsius), 0);
}

TEST(FanCurve, OfOnePointIsFlat) {
  for (const double celsius : {10.0, 50.0, 90.0})
    EXPECT_EQ(curve({{50, 40}}).percent(celsius), 40);
}

TEST(FanCurve, OrderOfTheStoredPointsDoesNotMatter) {
  const FanCurve ascending = curve({{30, 0}, {50, 30}, {80, 100}});
  const FanCurve descending = curve({{80, 100}, {50, 30}, {30, 0}});
  const FanCurve mixed = curve({{50, 30}, {80, 100}, {30, 0}});
  for (double celsius = 20; celsius <= 90; celsius += 0.25) {
    EXPECT_EQ(descending.percent(celsius), ascending.percent(celsius));
    EXPECT_EQ(mixed.percent(celsius), ascending.percent(celsius));
  }
}

TEST(FanCurve, EvaluationLeavesTheStoredOrder) {
  const FanCurve stored = curve({{80, 100}, {30, 0}});
  const FanCurve before = stored;
  EXPECT_EQ(stored.percent(55), 50);
  EXPECT_EQ(stored, before);
}

TEST(FanCurve, PointsOfEqualTemperatureFormAStep) {
  const FanCurve step = curve({{40, 0}, {50, 10}, {50, 90}, {60, 100}});
  EXPECT_EQ(step.percent(50), 10);
  EXPECT_EQ(step.percent(45), 5);
  EXPECT_EQ(step.percent(55), 95);
  const double justAbove = step.percent(std::nextafter(50.0, 60.0));
  EXPECT_GE(justAbove, 90);
  EXPECT_LT(justAbove, 90.001);
}

TEST(FanCurve, StepKeepsItsStoredOrderWhenItIsSorted) {
  const FanCurve step = curve({{60, 100}, {50, 10}, {50, 90}, {40, 0}});
  EXPECT_EQ(step.percent(50), 10);
  EXPECT_EQ(step.percent(55), 95);
  const FanCurve reversed = curve({{60, 100}, {50, 90}, {50, 10}, {40, 0}});
  EXPECT_EQ(reversed.percent(50), 90);
  EXPECT_EQ(reversed.percent(55), 55);
}

TEST(FanCurve, StepAtTheFirstPointGivesTheFirstOfThePair) {
  EXPECT_EQ(curve({{50, 10}, {50, 90}, {60, 100}}).percent(50), 10);
}

TEST(FanCurve, StepAtTheLastPointGivesTheLastOfThePair) {
  const FanCurve step = curve({{40, 0}, {50, 10}, {50, 90}});
  EXPECT_EQ(step.percent(50), 90);
  EXPECT_EQ(step.percent(45), 5);
}

TEST(FanCurve, MiddleOfThreeEqualTemperaturesPlaysNoPart) {
  const FanCurve step = curve({{40, 0}, {50, 10}, {50, 99}, {50, 80}, {60, 100}});
  EXPECT_EQ(step.percent(50), 10);
  EXPECT_EQ(step.percent(55), 90);
}

TEST(FanCurve, ResultIsClampedOnEveryPath) {
  const FanCurve wide = curve({{30, -5}, {50, 140}, {60, -100}, {70, 200}});
  EXPECT_EQ(wide.percent(20), 0);   // Flat on the left,
  EXPECT_EQ(wide.percent(30.1), 0); // on a line below,
  EXPECT_EQ(wide.percent(50), 100); // on a line above,
  EXPECT_EQ(wide.percent(60), 0);
  EXPECT_EQ(wide.percent(90), 100); // and flat on the right.
}

TEST(FanCurve, LineIsDrawnBeforeTheClamp) {
  EXPECT_EQ(curve({{0, -100}, {100, 100}}).percent(75), 50);
}

TEST(FanCurve, ResultIsNeverNegativeZero) {
  EXPECT_FALSE(std::signbit(curve({{30, -0.0}}).percent(20)));
}

TEST(FanCurve, InterpolationChangesNothing) {
  FanCurve monotone = curve({{30, 0}, {45, 10}, {50, 80}, {80, 100}});
  FanCurve linear = monotone;
  monotone.interpolation = CurveInterpolation::monotone;
  linear.interpolation = CurveInterpolation::linear;
  for (double celsius = 20; celsius <= 90; celsius += 0.5)
    EXPECT_EQ(monotone.percent(celsius), linear.percent(celsius));
}

TEST(FanCurve, SourceSensorChangesNothing) {
  EXPECT_EQ(curve({{30, 0}, {80, 100}}, "SMC-TCHP").percent(55), 50);
}

TEST(FanCurve, ExtremeInputStaysInRange) {
  constexpr double inf = std::numeric_limits<double>::infinity();
  constexpr double big = std::numeric_limits<double>::max();
  const FanCurve curves[] = {curve({{30, 0}, {80, 100}}), curve({{-big, -big}, {big, big}}),
                             curve({{0, 0}, {5e-324, 100}}), curve({{-big, 0}, {big, 100}})};
  for (const FanCurve& each : curves) {
    for (const double celsius : {-inf, -big, -1.0, 0.0, 3e-324, 50.0, big, inf, std::nan("")}) {
      const double percent = each.percent(celsius);
      EXPECT_TRUE(percent >= 0 && percent <= 100) << percent << " at " << celsius;
    }
  }
}

} // namespace
} // namespace ventolith::core
