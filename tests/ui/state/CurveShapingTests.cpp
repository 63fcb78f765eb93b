#include "ui/state/CurveShaping.h"

#include "support/Plans.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ventolith::ui {
namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

CurvePoints points(std::vector<std::pair<double, double>> values) {
  return support::curve(std::move(values)).points;
}

std::vector<double> temperatures(const CurvePoints& points) {
  std::vector<double> celsius;
  for (const core::CurvePoint& point : points)
    celsius.push_back(point.celsius);
  return celsius;
}

TEST(CurveShaping, SortingKeepsTheOrderOfEqualTemperatures) {
  const CurvePoints unsorted = points({{60, 1}, {40, 2}, {60, 3}, {50, 4}});
  const CurvePoints ascending = sorted(unsorted);
  EXPECT_EQ(temperatures(ascending), (std::vector<double>{40, 50, 60, 60}));
  EXPECT_EQ(ascending[2].id, unsorted[0].id);
  EXPECT_EQ(ascending[3].id, unsorted[2].id);
}

TEST(CurveShaping, SortingPutsWhatIsNotANumberLast) {
  const CurvePoints ascending = sorted(points({{notANumber, 0}, {60, 0}, {notANumber, 0}, {40, 0}}));
  EXPECT_EQ(ascending[0].celsius, 40);
  EXPECT_EQ(ascending[1].celsius, 60);
  EXPECT_TRUE(std::isnan(ascending[2].celsius));
}

TEST(CurveShaping, PressReachesSixDegreesAndTwelvePercent) {
  const CurvePoints one = points({{60, 40}});
  struct Row {
    ChartValue press;
    bool reaches;
  };
  const Row rows[] = {
      {{60, 40}, true},     {{66, 52}, true},     {{54, 28}, true},     {{66.01, 40}, false},
      {{53.99, 40}, false}, {{60, 52.01}, false}, {{60, 27.99}, false}, {{notANumber, 40}, false},
  };
  for (const Row& row : rows)
    EXPECT_EQ(nearestPoint(row.press, one).has_value(), row.reaches)
        << row.press.celsius << ", " << row.press.percent;
}

TEST(CurveShaping, PressWeighsDegreesAgainstPercentByTheirReach) {
  const CurvePoints two = points({{60, 40}, {64, 50}});
  // 3 of 6 degrees are farther than 5 of 12 percent, and 8 percent are nearer than 5 degrees.
  EXPECT_EQ(nearestPoint({.celsius = 63, .percent = 45}, two), two[1].id);
  EXPECT_EQ(nearestPoint({.celsius = 61, .percent = 45}, two), two[0].id);
  const CurvePoints apart = points({{60, 40}, {65, 48}});
  EXPECT_EQ(nearestPoint({.celsius = 60, .percent = 48}, apart), apart[0].id);
}

TEST(CurveShaping, PressBetweenTwoEquallyNearPointsTakesTheFirst) {
  const CurvePoints two = points({{60, 40}, {64, 40}});
  EXPECT_EQ(nearestPoint({.celsius = 62, .percent = 40}, two), two[0].id);
}

TEST(CurveShaping, DragSnapsToWholeDegreesAndStepsOfFivePercent) {
  const CurvePoints three = points({{40, 15}, {60, 40}, {80, 75}});
  struct Row {
    ChartValue to;
    double celsius;
    double percent;
  };
  const Row rows[] = {
      {{62.4, 42.4}, 62, 40},
      {{62.5, 42.5}, 63, 45},
      {{50, 97.5}, 50, 100},
      {{50, 2.4}, 50, 0},
  };
  for (const Row& row : rows) {
    const core::CurvePoint moved = draggedPoint(row.to, 1, three);
    EXPECT_EQ(moved.celsius, row.celsius);
    EXPECT_EQ(moved.percent, row.percent);
    EXPECT_EQ(moved.id, three[1].id);
  }
}

TEST(CurveShaping, DragStopsAtTheEndsOfTheAxes) {
  const CurvePoints two = points({{40, 15}, {80, 75}});
  EXPECT_EQ(draggedPoint({.celsius = -500, .percent = 20}, 0, two).celsius, 30);
  EXPECT_EQ(draggedPoint({.celsius = 500, .percent = 20}, 1, two).celsius, 105);
  EXPECT_EQ(draggedPoint({.celsius = 40, .percent = 1000}, 0, two).percent, 100);
  EXPECT_EQ(draggedPoint({.celsius = 40, .percent = -1000}, 0, two).percent, 0);
}

TEST(CurveShaping, DragBelowTheAxisLeavesNoSignOnTheZero) {
  const CurvePoints two = points({{40, 15}, {80, 75}});
  EXPECT_FALSE(std::signbit(draggedPoint({.celsius = 40, .percent = -1}, 0, two).percent));
}

TEST(CurveShaping, DragAgainstANeighbourLeavesExactlyOneDegree) {
  const CurvePoints three = points({{40, 15}, {60, 40}, {80, 75}});
  EXPECT_EQ(draggedPoint({.celsius = 20, .percent = 40}, 1, three).celsius, 41);
  EXPECT_EQ(draggedPoint({.celsius = 99, .percent = 40}, 1, three).celsius, 79);
  EXPECT_EQ(draggedPoint({.celsius = 99, .percent = 15}, 0, three).celsius, 59);
  EXPECT_EQ(draggedPoint({.celsius = 20, .percent = 75}, 2, three).celsius, 61);
}

TEST(CurveShaping, LimitMayBeAFraction) {
  const CurvePoints three = points({{40.5, 15}, {60, 40}, {80.25, 75}});
  EXPECT_EQ(draggedPoint({.celsius = 20, .percent = 40}, 1, three).celsius, 41.5);
  EXPECT_EQ(draggedPoint({.celsius = 99, .percent = 40}, 1, three).celsius, 79.25);
}

TEST(CurveShaping, SafetyLineIsNoLimit) {
  const CurvePoints two = points({{40, 15}, {80, 75}});
  EXPECT_EQ(draggedPoint({.celsius = 100, .percent = 75}, 1, two).celsius, 100);
}

TEST(CurveShaping, PointWithoutRoomDoesNotMoveAtAll) {
  const CurvePoints crowded = points({{60, 40}, {60.5, 45}, {61, 50}});
  EXPECT_EQ(draggedPoint({.celsius = 60.5, .percent = 90}, 1, crowded), crowded[1]);
  for (const Nudge nudge : {Nudge::cooler, Nudge::warmer, Nudge::slower, Nudge::faster})
    EXPECT_EQ(nudgedPoint(nudge, 1, crowded), crowded[1]);
}

TEST(CurveShaping, NeighboursTwoDegreesApartLeaveOnePlace) {
  const CurvePoints three = points({{60, 40}, {60.5, 45}, {62, 50}});
  EXPECT_EQ(draggedPoint({.celsius = 30, .percent = 90}, 1, three).celsius, 61);
  EXPECT_EQ(draggedPoint({.celsius = 99, .percent = 90}, 1, three).celsius, 61);
}

TEST(CurveShaping, ArrowsMoveByTheStepsOfTheDragAndLeaveTheOtherValue) {
  struct Row {
    core::CurvePoint from;
    Nudge nudge;
    double celsius;
    double percent;
  };
  const Row rows[] = {
      {{.celsius = 60, .percent = 40}, Nudge::warmer, 61, 40},
      {{.celsius = 60, .percent = 40}, Nudge::cooler, 59, 40},
      {{.celsius = 60, .percent = 40}, Nudge::faster, 60, 45},
      {{.celsius = 60, .percent = 40}, Nudge::slower, 60, 35},
      {{.celsius = 62.5, .percent = 57.5}, Nudge::warmer, 63, 57.5},
      {{.celsius = 62.5, .percent = 57.5}, Nudge::cooler, 62, 57.5},
      {{.celsius = 62.5, .percent = 57.5}, Nudge::faster, 62.5, 60},
      {{.celsius = 62.5, .percent = 57.5}, Nudge::slower, 62.5, 55},
      {{.celsius = 79, .percent = 100}, Nudge::warmer, 79, 100},
      {{.celsius = 41, .percent = 0}, Nudge::cooler, 41, 0},
      {{.celsius = 79, .percent = 100}, Nudge::faster, 79, 100},
      {{.celsius = 41, .percent = 0}, Nudge::slower, 41, 0},
      {{.celsius = 60, .percent = 98}, Nudge::faster, 60, 100},
  };
  for (const Row& row : rows) {
    CurvePoints three = points({{40, 15}, {60, 40}, {80, 75}});
    three[1] = row.from;
    const core::CurvePoint moved = nudgedPoint(row.nudge, 1, three);
    EXPECT_EQ(moved.celsius, row.celsius) << row.from.celsius;
    EXPECT_EQ(moved.percent, row.percent) << row.from.percent;
  }
}

TEST(CurveShaping, NewPointGoesToTheMiddleOfTheWidestGap) {
  struct Row {
    std::vector<std::pair<double, double>> points;
    double celsius;
  };
  const Row rows[] = {
      {{{40, 15}, {60, 40}, {80, 75}, {92, 100}}, 50}, // The coolest of equally wide gaps.
      {{{40, 15}, {60, 40}, {81, 75}}, 70.5},
      {{{60, 15}, {65, 40}}, 62.5},
      {{{80, 75}, {40, 15}, {60, 40}}, 50}, // In whatever order.
      {{{40, 15}}, 67.5},
      {{}, 67.5},
  };
  for (const Row& row : rows)
    EXPECT_EQ(temperatureOfNewPoint(points(row.points)), row.celsius) << row.points.size();
}

TEST(CurveShaping, EndsAreNeverDeletedNorOneOfTwo) {
  const CurvePoints three = points({{40, 15}, {60, 40}, {80, 75}});
  EXPECT_FALSE(canDelete(0, three));
  EXPECT_TRUE(canDelete(1, three));
  EXPECT_FALSE(canDelete(2, three));
  const CurvePoints two = points({{40, 15}, {80, 75}});
  EXPECT_FALSE(canDelete(0, two));
  EXPECT_FALSE(canDelete(1, two));
}

TEST(CurveShaping, LineHasASampleAtEachStepOfBothBounds) {
  const core::FanCurve curve = support::curve({{40, 10}, {90, 60}});
  const std::vector<ChartValue> line = samples(curve, xDomain, 1);
  ASSERT_EQ(line.size(), 76U);
  EXPECT_EQ(line.front(), (ChartValue{30, 10}));
  EXPECT_EQ(line[20], (ChartValue{50, 20}));
  EXPECT_EQ(line.back(), (ChartValue{105, 60}));
}

} // namespace
} // namespace ventolith::ui
