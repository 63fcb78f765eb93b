#include "runtime/Time.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ventolith::runtime {
namespace {

using namespace std::chrono_literals;

TEST(Time, SecondsOfASpanKeepItsFraction) {
  EXPECT_EQ(toSeconds(1500ms), 1.5);
  EXPECT_EQ(toSeconds(-250ms), -0.25);
  EXPECT_EQ(toSeconds(Duration::zero()), 0);
  EXPECT_EQ(toSeconds(1ns), 1e-9);
}

TEST(Time, SpanOfSecondsIsTheNearestNanosecond) {
  struct Row {
    double seconds;
    Duration span;
  };
  const Row rows[] = {
      {0, 0ns},      {1.5, 1500ms},   {-1.5, -1500ms}, {0.1, 100ms},  {1e-9, 1ns},   {0.4e-9, 0ns},
      {0.6e-9, 1ns}, {-0.6e-9, -1ns}, {86400, 24h},    {4.9, 4900ms}, {1e-300, 0ns}, {0.3, 300ms},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.seconds);
    EXPECT_EQ(fromSeconds(row.seconds), row.span);
  }
}

TEST(Time, SecondsBeyondTheRangeGiveTheNearestSpan) {
  EXPECT_EQ(fromSeconds(1e300), Duration::max());
  EXPECT_EQ(fromSeconds(std::numeric_limits<double>::infinity()), Duration::max());
  EXPECT_EQ(fromSeconds(-1e300), -Duration::max());
  EXPECT_EQ(fromSeconds(-std::numeric_limits<double>::infinity()), -Duration::max());
  EXPECT_EQ(fromSeconds(9.3e9), Duration::max());
}

TEST(Time, NotANumberOfSecondsIsNoTime) {
  EXPECT_EQ(fromSeconds(std::nan("")), Duration::zero());
}

TEST(Time, TwoHundredYearsStillFit) {
  constexpr double twoCenturies = 200 * 365.25 * 86400;
  EXPECT_EQ(toSeconds(fromSeconds(twoCenturies)), twoCenturies);
}

TEST(Time, DistantPastIsBeforeEveryInstant) {
  EXPECT_LT(distantPast, Instant());
  EXPECT_LT(distantPast, Instant(-24h * 365 * 100));
  EXPECT_LT(distantPastDate, WallTime());
}

} // namespace
} // namespace ventolith::runtime
