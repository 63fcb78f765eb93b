#include "ui/state/Numbers.h"

#include "ui/state/Text.h"

#include <gtest/gtest.h>

#include <limits>

namespace ventolith::ui {
namespace {

using support::utf8;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t last = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t first = std::numeric_limits<std::int64_t>::min();

TEST(Numbers, RoundsHalvesAwayFromZeroAndCutsTowardZero) {
  struct Row {
    double value;
    std::int64_t rounded;
    std::int64_t cut;
  };
  const Row rows[] = {
      {0, 0, 0},
      {1234.5, 1235, 1234},
      {-1234.5, -1235, -1234},
      {61.9, 62, 61},
      {-0.9, -1, 0},
      {0.49, 0, 0},
      {infinity, last, last},
      {-infinity, first, first},
      {1e300, last, last},
      {-1e300, first, first},
      {notANumber, 0, 0},
      {9223372036854775808.0, last, last},
      {-9223372036854775808.0, first, first},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(rounded(row.value), row.rounded) << row.value;
    EXPECT_EQ(cut(row.value), row.cut) << row.value;
  }
}

TEST(Numbers, WritesWholeNumbersWithoutGrouping) {
  EXPECT_EQ(utf8(wholeText(-1234567)), "-1234567");
  EXPECT_EQ(utf8(roundedText(1234.5)), "1235");
  EXPECT_EQ(utf8(cutText(1234.9)), "1234");
}

TEST(Numbers, WritesFixedDecimalsAsTheFormatRounds) {
  struct Row {
    double value;
    int decimals;
    const char* text;
  };
  const Row rows[] = {
      {61.7, 0, "62"},    {62.5, 0, "62"}, {63.5, 0, "64"},
      {61.25, 1, "61.2"}, {61, 1, "61.0"}, {-3.06, 1, "-3.1"},
  };
  for (const Row& row : rows)
    EXPECT_EQ(utf8(fixedText(row.value, row.decimals)), row.text) << row.value;
}

TEST(Numbers, WritesWhatIsNotFiniteAsAWord) {
  EXPECT_EQ(utf8(fixedText(notANumber, 1)), "nan");
  EXPECT_EQ(utf8(fixedText(infinity, 0)), "inf");
}

} // namespace
} // namespace ventolith::ui
