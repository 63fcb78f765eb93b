#include "core/Excerpt.h"

#include <gtest/gtest.h>

namespace ventolith::core {
namespace {

TEST(Excerpt, ShortTextIsShownAsItIs) {
  for (const std::string_view text : {"", "fans", "Lüfter 高温 \xF0\x9F\x8C\x80", "a \"quoted\" \\ word"}) {
    EXPECT_EQ(excerpt(text), text);
  }
}

TEST(Excerpt, SixtyCharactersAreShownAndWhatFollowsIsAnEllipsis) {
  EXPECT_EQ(excerpt(std::string(60, 'x')), std::string(60, 'x'));
  EXPECT_EQ(excerpt(std::string(61, 'x')), std::string(60, 'x') + "…");
  EXPECT_EQ(excerpt(std::string(1 << 20, 'x')), std::string(60, 'x') + "…");
}

TEST(Excerpt, LengthIsOfCharactersAndNoneIsCutInTwo) {
  EXPECT_EQ(excerpt("üüü", 3), "üüü");
  EXPECT_EQ(excerpt("高温高", 2), "高温…");
  EXPECT_EQ(excerpt("\xF0\x9F\x8C\x80\xF0\x9F\x8C\x80", 1), "\xF0\x9F\x8C\x80…");
}

TEST(Excerpt, ControlCharacterIsReplaced) {
  for (const std::string_view control :
       {std::string_view("\0", 1), std::string_view("\x01"), std::string_view("\n"), std::string_view("\x1B"),
        std::string_view("\x1F"), std::string_view("\x7F"), std::string_view("\xC2\x80"),
        std::string_view("\xC2\x9F")}) {
    SCOPED_TRACE(static_cast<int>(control.back()));
    EXPECT_EQ(excerpt("a" + std::string(control) + "b"), "a\uFFFDb");
  }
}

TEST(Excerpt, NeighboursOfTheControlCharactersStay) {
  for (const std::string_view text : {" ", "~", "\xC2\xA0", "\xC3\x80"}) {
    EXPECT_EQ(excerpt(text), text);
  }
}

TEST(Excerpt, EachByteThatIsNoUTF8IsReplaced) {
  EXPECT_EQ(excerpt("a\xFFz"), "a\uFFFDz");
  EXPECT_EQ(excerpt("\xC3"), "\uFFFD");
  EXPECT_EQ(excerpt("\xC3z"), "\uFFFDz");
  EXPECT_EQ(excerpt("\xE9\xAB"), "\uFFFD\uFFFD");
  EXPECT_EQ(excerpt("\x80\xC0\xAF\xF5"), "\uFFFD\uFFFD\uFFFD\uFFFD");
}

} // namespace
} // namespace ventolith::core
