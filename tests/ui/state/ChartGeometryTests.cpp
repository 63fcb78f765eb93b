#include "ui/state/ChartGeometry.h"

#include <gtest/gtest.h>

#include <limits>

namespace ventolith::ui {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

// 10 pixels a degree and 4 a percent.
const ChartGeometry chart{.plot = QRectF(50, 30, 750, 400)};

TEST(ChartGeometry, MapsValuesToPixelsAndBackAlsoBeyondThePlot) {
  struct Row {
    ChartValue value;
    QPointF position;
  };
  const Row rows[] = {
      {{30, 100}, {50, 30}}, {{105, 0}, {800, 430}},  {{67.5, 50}, {425, 230}},
      {{25, 110}, {0, -10}}, {{110, -5}, {850, 450}}, {{31, 99}, {60, 34}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(chart.position(row.value), row.position) << row.value.celsius;
    const auto value = chart.value(row.position);
    ASSERT_TRUE(value);
    EXPECT_DOUBLE_EQ(value->celsius, row.value.celsius);
    EXPECT_DOUBLE_EQ(value->percent, row.value.percent);
  }
}

TEST(ChartGeometry, ThereIsNoValueWithoutAPlotArea) {
  for (const QSizeF size :
       {QSizeF(0, 400), QSizeF(750, 0), QSizeF(-1, 400), QSizeF(750, -1), QSizeF(notANumber, 400)}) {
    const ChartGeometry none{.plot = QRectF(QPointF(50, 30), size)};
    EXPECT_FALSE(none.value({60, 40})) << size.width() << " x " << size.height();
  }
}

TEST(ChartGeometry, ThereIsNoValueForWhatIsNotFinite) {
  for (const QPointF position :
       {QPointF(notANumber, 40), QPointF(60, notANumber), QPointF(infinity, 40), QPointF(60, -infinity)})
    EXPECT_FALSE(chart.value(position));
  const ChartGeometry narrow{.plot = QRectF(0, 0, 1e-300, 400)};
  EXPECT_FALSE(narrow.value({1e300, 40}));
}

TEST(ChartGeometry, SurfaceLeavesRoomForTicksAndLabels) {
  EXPECT_EQ(ChartGeometry::inSurface({696, 342}).plot, QRectF(52, 32, 628, 266));
  EXPECT_FALSE(ChartGeometry::inSurface({60, 60}).value({10, 10}));
}

TEST(ChartGeometry, TicksStandOnTheDrawnValues) {
  EXPECT_EQ(steps(xDomain, temperatureTickStep), (std::vector<double>{30, 45, 60, 75, 90, 105}));
  EXPECT_EQ(steps(yDomain, speedTickStep), (std::vector<double>{0, 25, 50, 75, 100}));
}

TEST(ChartGeometry, StepsEndBeforeABoundThatTheyDoNotMeet) {
  EXPECT_EQ(steps({.lower = 0, .upper = 10}, 4), (std::vector<double>{0, 4, 8}));
}

TEST(ChartGeometry, LiveLabelStandsAboveItsPoint) {
  const QRectF surface(0, 0, 900, 500);
  EXPECT_EQ(chart.liveLabel({400, 200}, 60, surface), QRectF(400 - 38, 200 - 33, 76, 20));
}

TEST(ChartGeometry, LiveLabelStaysInsideItsSurface) {
  const QRectF surface(0, 0, 900, 500);
  EXPECT_EQ(chart.liveLabel({10, 200}, 60, surface).left(), 0);
  EXPECT_EQ(chart.liveLabel({895, 200}, 60, surface).right(), 900);
  EXPECT_EQ(chart.liveLabel({400, 20}, 60, surface).top(), 0);
  EXPECT_EQ(chart.liveLabel({400, 2000}, 60, surface).bottom(), 500);
  EXPECT_EQ(chart.liveLabel({5, 200}, 60, QRectF(0, 0, 10, 500)).left(), 0);
}

} // namespace
} // namespace ventolith::ui
