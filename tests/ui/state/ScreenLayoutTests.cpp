#include "ui/state/ScreenLayout.h"

#include <gtest/gtest.h>

namespace ventolith::ui {
namespace {

TEST(ScreenLayout, ChartGrowsInStepsWithTheWindow) {
  struct Row {
    int windowHeight;
    int chart;
  };
  const Row rows[] = {{640, 300}, {759, 300}, {760, 342}, {999, 342}, {1000, 420}, {2000, 420}};
  for (const Row& row : rows)
    EXPECT_EQ(chartHeight(row.windowHeight), row.chart) << row.windowHeight;
}

TEST(ScreenLayout, TuningSlidersStandUnderEachOtherInNarrowContent) {
  EXPECT_EQ(tuningColumns(639), 1);
  EXPECT_EQ(tuningColumns(640), 2);
}

} // namespace
} // namespace ventolith::ui
