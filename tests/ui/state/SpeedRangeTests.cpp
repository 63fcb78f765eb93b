#include "ui/state/SpeedRange.h"

#include "support/Plans.h"
#include "ui/state/Text.h"

#include <gtest/gtest.h>

#include <limits>

namespace ventolith::ui {
namespace {

using support::fan;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

TEST(SpeedRange, RunsFromMinimumToMaximum) {
  EXPECT_EQ(speedRange(fan(0, 2000, 8000)), (SpeedRange{.lower = 2000, .upper = 8000}));
}

TEST(SpeedRange, FanWhoseMaximumIsNotAboveItsMinimumStillHasARange) {
  EXPECT_EQ(speedRange(fan(0, 2000, 2000)), (SpeedRange{.lower = 2000, .upper = 2001}));
  EXPECT_EQ(speedRange(fan(0, 2000, 100)), (SpeedRange{.lower = 2000, .upper = 2001}));
  EXPECT_EQ(speedRange(fan(0, 0, 0)), (SpeedRange{.lower = 0, .upper = 1}));
}

TEST(SpeedRange, PercentageIsRoundedAndStaysBetweenNoneAndAll) {
  const SpeedRange range{.lower = 2000, .upper = 8000};
  struct Row {
    double rpm;
    std::int64_t percent;
  };
  const Row rows[] = {
      {2000, 0},   {8000, 100}, {5000, 50},  {2029, 0},      {2030, 1},       {7969, 99},
      {7970, 100}, {1999, 0},   {8001, 100}, {-infinity, 0}, {infinity, 100}, {notANumber, 0},
  };
  for (const Row& row : rows)
    EXPECT_EQ(range.percent(row.rpm), row.percent) << row.rpm;
}

TEST(SpeedRange, SpeedsTooLargeToTellOneApartGiveNoPercentage) {
  const SpeedRange range = speedRange(fan(0, largest, largest));
  for (const double rpm : {0.0, 9.2e18, 1e19})
    EXPECT_EQ(range.percent(rpm), 0) << rpm;
}

TEST(SpeedRange, PercentageIsWrittenWithItsSign) {
  EXPECT_EQ(support::utf8(percentText(40)), "40%");
}

} // namespace
} // namespace ventolith::ui
