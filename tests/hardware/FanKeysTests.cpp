#include "hardware/FanKeys.h"

#include <gtest/gtest.h>

#include <limits>

namespace ventolith::hardware::fankeys {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(FanKeys, EachKeyCarriesTheFansIndex) {
  EXPECT_EQ(measured(0), "F0Ac");
  EXPECT_EQ(minimum(1), "F1Mn");
  EXPECT_EQ(maximum(2), "F2Mx");
  EXPECT_EQ(target(3), "F3Tg");
  EXPECT_EQ(modeFirstChoice(4), "F4Md");
  EXPECT_EQ(modeSecondChoice(9), "F9md");
}

TEST(FanKeys, TheMachinesOwnKeysAndModesAreTheFirmwares) {
  EXPECT_STREQ(keyCount, "#KEY");
  EXPECT_STREQ(fanCount, "FNum");
  EXPECT_STREQ(forceTest, "Ftst");
  EXPECT_EQ(modeAutomatic, 0);
  EXPECT_EQ(modeManual, 1);
  EXPECT_EQ(modeReclaimed, 3);
}

TEST(FanKeys, OnlyAFanOfOneDigitCanBeNamed) {
  EXPECT_TRUE(isNameable(0));
  EXPECT_TRUE(isNameable(9));
  EXPECT_FALSE(isNameable(10));
  EXPECT_FALSE(isNameable(-1));
  EXPECT_FALSE(isNameable(std::numeric_limits<core::FanID>::max()));
  EXPECT_FALSE(isNameable(std::numeric_limits<core::FanID>::min()));
}

TEST(FanKeys, TruncationDropsTheFractionTowardsZero) {
  EXPECT_EQ(truncated(2.0), 2);
  EXPECT_EQ(truncated(2.999), 2);
  EXPECT_EQ(truncated(-1.9), -1);
  EXPECT_EQ(truncated(0.0), 0);
}

TEST(FanKeys, WhatIsNoNumberTruncatesToNothing) {
  EXPECT_EQ(truncated(std::nullopt), std::nullopt);
  EXPECT_EQ(truncated(notANumber), std::nullopt);
}

TEST(FanKeys, WhatDoesNotFitTruncatesToALargeNumberOfItsSign) {
  EXPECT_GT(truncated(1e30), 9'000'000'000'000'000'000);
  EXPECT_GT(truncated(infinity), 9'000'000'000'000'000'000);
  EXPECT_LT(truncated(-infinity), -9'000'000'000'000'000'000);
}

TEST(FanKeys, TheCountOfFansStaysWithinThoseThatCanBeNamed) {
  struct Row {
    std::optional<double> value;
    std::optional<core::FanID> count;
  };
  const Row rows[] = {
      {0.0, 0},
      {1.0, 1},
      {2.9, 2},
      {10.0, 10},
      {11.0, 10},
      {1e30, 10},
      {-3.0, 0},
      {infinity, 10},
      {-infinity, 0},
      {4294967295.0, 10},
      {notANumber, std::nullopt},
      {std::nullopt, std::nullopt},
  };
  for (const auto& [value, count] : rows)
    EXPECT_EQ(fanCountOf(value), count) << value.value_or(-999);
}

} // namespace
} // namespace ventolith::hardware::fankeys
