#include "app/platform-kit/TrimmedText.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

TEST(TrimmedText, BlanksAndLineEndsGoFromBothEnds) {
  EXPECT_EQ(trimmed(" \t\r\n\v\ftwo words\n \t"), "two words");
}

TEST(TrimmedText, UnicodeBlanksGoToo) {
  for (const std::string_view blank : {"\u0085", "\u00A0", "\u1680", "\u2000", "\u2009", "\u200A", "\u2028",
                                       "\u2029", "\u202F", "\u205F", "\u3000"}) {
    const std::string text = std::string(blank).append("x").append(blank).append(blank);
    EXPECT_EQ(trimmed(text), "x") << blank;
  }
}

TEST(TrimmedText, NothingIsLeftOfBlanks) {
  EXPECT_EQ(trimmed(""), "");
  EXPECT_EQ(trimmed(" \u00A0\n"), "");
}

TEST(TrimmedText, OtherCharactersStay) {
  // The last byte of the first is that of a no-break space; the second has no width, but is no blank.
  for (const std::string_view text : {"\u00E0", "\u2060x\u2060", "x\xA0", "\xC2"})
    EXPECT_EQ(trimmed(text), text);
}

} // namespace
} // namespace ventolith::app
