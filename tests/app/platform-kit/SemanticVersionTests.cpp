#include "app/platform-kit/SemanticVersion.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

using Components = std::vector<std::int64_t>;

Components components(std::string_view text) {
  const auto version = SemanticVersion::fromText(text);
  return version ? version->components : Components{};
}

TEST(SemanticVersion, IsThreeNumbers) {
  EXPECT_EQ(components("1.2.3"), (Components{1, 2, 3}));
  EXPECT_EQ(components("0.0.0"), (Components{0, 0, 0}));
  EXPECT_EQ(components("01.002.0"), (Components{1, 2, 0}));
  EXPECT_EQ(components("9223372036854775807.0.1"), (Components{INT64_MAX, 0, 1}));
}

TEST(SemanticVersion, ASuffixIsLeftOut) {
  for (const std::string_view text :
       {"1.2.3-beta", "1.2.3+45", "1.2.3-beta.1+45", "1.2.3+45-x", "1.2.3-", "1.2.3+", "1.2.3-1.2.3.4"})
    EXPECT_EQ(components(text), (Components{1, 2, 3})) << text;
}

TEST(SemanticVersion, OtherTextsAreNone) {
  for (const std::string_view text : {"",           "1",
                                      "1.2",        "1.2.3.4",
                                      "1.2.",       ".1.2",
                                      "1..2",       "..",
                                      "...",        "a.b.c",
                                      "1.2.x",      "v1.2.3",
                                      " 1.2.3",     "1.2.3 ",
                                      "1.2.3\n",    "-1.2.3",
                                      "+1.2.3",     "1.-2.3",
                                      "1.2-3",      "1.2.\u0663",
                                      "1.2.\u00BD", "9223372036854775808.0.0"})
    EXPECT_EQ(SemanticVersion::fromText(text), std::nullopt) << text;
}

TEST(SemanticVersion, TheFirstNumberThatDiffersDecides) {
  const std::string_view ascending[] = {"0.9.9", "1.0.0",  "1.0.2", "1.0.10",
                                        "1.2.0", "1.10.0", "2.0.0", "10.0.0"};
  for (std::size_t low = 0; low < std::size(ascending); ++low) {
    for (std::size_t high = 0; high < std::size(ascending); ++high) {
      EXPECT_EQ(*SemanticVersion::fromText(ascending[low]) < *SemanticVersion::fromText(ascending[high]),
                low < high)
          << ascending[low] << " and " << ascending[high];
    }
  }
}

TEST(SemanticVersion, LeadingZerosAndSuffixesDoNotCount) {
  EXPECT_EQ(SemanticVersion::fromText("1.02.3-beta"), SemanticVersion::fromText("01.2.3+4"));
}

} // namespace
} // namespace ventolith::app
