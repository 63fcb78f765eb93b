// What may come in from anybody: bounded, and never a crash.
#include "core/JSON.h"

#include <gtest/gtest.h>

#include <string>

namespace ventolith::core {
namespace {

/// Why `text` is refused; empty if it is not.
std::string refusal(std::string_view text, const JSONBounds& bounds = {}) {
  try {
    (void)parseJSON(text, bounds);
    return {};
  } catch (const DecodeError& error) {
    EXPECT_EQ(error.kind(), DecodeError::Kind::dataCorrupted);
    EXPECT_EQ(error.path(), "");
    EXPECT_EQ(error.what(), error.description());
    return error.description();
  }
}

bool isRefused(std::string_view text) {
  return !refusal(text).empty();
}

std::string repeated(std::string_view part, std::size_t count) {
  std::string text;
  text.reserve(part.size() * count);
  for (std::size_t i = 0; i < count; ++i)
    text += part;
  return text;
}

std::string nestedLists(std::size_t depth) {
  return repeated("[", depth) + repeated("]", depth);
}

std::string objectOf(std::size_t members) {
  std::string text = "{";
  for (std::size_t i = 0; i < members; ++i) {
    text += (i == 0 ? "\"" : ",\"") + std::to_string(i) + "\":0";
  }
  return text + "}";
}

TEST(JSONParse, KeysKeepTheirOrder) {
  const JSON document = parseJSON(R"({"z":1,"a":2,"m":3})");
  std::string keys;
  for (const auto& item : document.items())
    keys += item.key();
  EXPECT_EQ(keys, "zam");
}

TEST(JSONParse, TextThatIsNoJSONIsRefused) {
  for (const std::string_view text :
       {"",      " ",       "{",       "}",         "[1,]",  "{\"a\":}",   "{\"a\" 1}",
        "{a:1}", "{'a':1}", "nul",     "tru",       "1 2",   "{}{}",       "[1}",
        "+1",    "01",      "1.",      ".5",        "0x10",  "NaN",        "Infinity",
        "-",     "\"",      "\"\\x\"", "\"\\u12\"", "// {}", "{\"a\":1,}", "\"\n\""}) {
    SCOPED_TRACE(text);
    EXPECT_TRUE(isRefused(text));
  }
}

TEST(JSONParse, RefusalOfTextThatIsNoJSONSaysSo) {
  EXPECT_EQ(refusal("{").rfind("not valid JSON: ", 0), 0U);
}

TEST(JSONParse, RefusalNamesLineAndColumnWithoutTheParsersTag) {
  const std::string text = refusal("{\"a\":1,\n \"b\" 2}");
  EXPECT_EQ(text.rfind("not valid JSON: parse error at line 2, column 6: ", 0), 0U) << text;
  EXPECT_EQ(text.find("json.exception"), std::string::npos) << text;
  EXPECT_EQ(refusal("1e999"), "not valid JSON: number overflow parsing '1e999'");
}

TEST(JSONParse, ByteOrderMarkAtTheStartIsSkipped) {
  EXPECT_EQ(parseJSON("\xEF\xBB\xBF{\"a\":1}"), parseJSON("{\"a\":1}"));
}

TEST(JSONParse, ByteOrderMarkElsewhereOrInPartIsRefused) {
  for (const std::string_view text : {"\xEF\xBB\xBF", "\xEF\xBB{}", "\xEF{}", "{}\xEF\xBB\xBF",
                                      "\xEF\xBB\xBF\xEF\xBB\xBF{}", "\xFE\xFF{}"}) {
    EXPECT_TRUE(isRefused(text));
  }
}

TEST(JSONParse, SurroundingSpaceIsAllowed) {
  EXPECT_EQ(parseJSON(" \t\r\n{} \n"), JSON::object());
}

TEST(JSONParse, InvalidUTF8IsRefused) {
  for (const std::string_view text :
       {"\"\x80\"", "\"\xC3\"", "\"\xC0\xAF\"", "\"\xED\xA0\x80\"", "\"\xF5\x80\x80\x80\"", "\"\xFF\"",
        "{\"\xFE\":1}", "\"\\uD800\"", "\"\\uDC00\""}) {
    EXPECT_TRUE(isRefused(text));
  }
}

TEST(JSONParse, ValidUTF8IsKept) {
  EXPECT_EQ(parseJSON("\"Lüfter \xF0\x9F\x8C\x80\"").get<std::string>(), "Lüfter \xF0\x9F\x8C\x80");
  EXPECT_EQ(parseJSON("\"\\uD83C\\uDF00\"").get<std::string>(), "\xF0\x9F\x8C\x80");
}

TEST(JSONParse, ZeroByteIsRefused) {
  EXPECT_TRUE(isRefused(std::string_view("{}\0", 3)));
  EXPECT_TRUE(isRefused(std::string_view("\"a\0b\"", 5)));
}

TEST(JSONParse, NumberBeyondAFloatIsRefused) {
  for (const std::string_view text : {"1e999", "-1e999", "[1,2,1e309]", "{\"a\":1e400}"}) {
    SCOPED_TRACE(text);
    EXPECT_TRUE(isRefused(text));
  }
}

TEST(JSONParse, NumberTooSmallForAFloatIsZero) {
  EXPECT_EQ(parseJSON("1e-999").get<double>(), 0);
}

TEST(JSONParse, NumberOfAMillionDigitsIsRefused) {
  EXPECT_TRUE(isRefused(repeated("9", 1000000)));
}

TEST(JSONParse, KeyThatStandsTwiceIsRefused) {
  EXPECT_EQ(refusal(R"({"a":1,"a":1})"), "the key \"a\" stands twice in one object");
  EXPECT_TRUE(isRefused(R"([{"b":{"a":1,"c":2,"a":3}}])"));
  EXPECT_TRUE(isRefused("{\"a\":1,\"\\u0061\":2}")); // Equal once unescaped.
}

TEST(JSONParse, SameKeyInTwoObjectsIsAllowed) {
  EXPECT_FALSE(isRefused(R"({"a":{"a":{"a":1}},"b":[{"a":1},{"a":2}]})"));
}

TEST(JSONParse, DepthIsAllowedUpToItsBound) {
  EXPECT_FALSE(isRefused(nestedLists(32)));
  EXPECT_EQ(refusal(nestedLists(33)), "nested deeper than 32 levels");
  EXPECT_FALSE(isRefused("[" + nestedLists(31) + "," + nestedLists(31) + "]")); // Side by side is not deeper.
}

TEST(JSONParse, DepthCountsObjectsAndListsAlike) {
  const std::string deep = repeated("[{\"a\":", 16);
  const std::string ends = repeated("}]", 16);
  EXPECT_FALSE(isRefused(deep + "1" + ends));
  EXPECT_TRUE(isRefused(deep + "[]" + ends));
}

TEST(JSONParse, DepthOfAHundredThousandIsRefused) {
  EXPECT_EQ(refusal(nestedLists(100000)), "nested deeper than 32 levels");
  EXPECT_EQ(refusal(repeated("[", 100000)), "nested deeper than 32 levels");
  EXPECT_EQ(refusal(repeated("{\"a\":", 100000)), "nested deeper than 32 levels");
}

TEST(JSONParse, SizeIsAllowedUpToItsBound) {
  constexpr std::size_t bound = 1 << 20;
  const auto stringOf = [](std::size_t bytes) { return '"' + std::string(bytes - 2, 'x') + '"'; };
  EXPECT_FALSE(isRefused(stringOf(bound)));
  EXPECT_EQ(refusal(stringOf(bound + 1)), "1048577 bytes, more than the 1048576 that are read");
}

TEST(JSONParse, TwoMegabytesAreRefusedUnread) {
  EXPECT_EQ(refusal(std::string(2 << 20, '!')), "2097152 bytes, more than the 1048576 that are read");
}

TEST(JSONParse, MembersAreAllowedUpToTheirBound) {
  EXPECT_FALSE(isRefused(objectOf(128)));
  EXPECT_EQ(refusal(objectOf(129)), "an object with more than 128 members");
  EXPECT_TRUE(isRefused(objectOf(60000)));
}

TEST(JSONParse, MembersAreCountedObjectByObject) {
  EXPECT_FALSE(isRefused("[" + objectOf(128) + "," + objectOf(128) + "]"));
}

TEST(JSONParse, ValuesAreAllowedUpToTheirBound) {
  // The list itself is one of them.
  const auto zeros = [](std::size_t count) { return "[0" + repeated(",0", count - 1) + "]"; };
  EXPECT_FALSE(isRefused(zeros(65535)));
  EXPECT_EQ(refusal(zeros(65536)), "more than 65536 values");
}

/// Work that grows with the square of the text would take minutes here, beyond any test's time.
TEST(JSONParse, ManyObjectsTakeTimeInProportion) {
  constexpr std::size_t count = 200'000;
  const std::string text = "[" + repeated("{\"a\":[]},", count) + "{}]";
  const JSON document = parseJSON(text, {.bytes = text.size(), .values = 3 * count});
  EXPECT_EQ(document.size(), count + 1);
  EXPECT_EQ(writeJSON(document), text);
}

TEST(JSONParse, ValuesOfEveryTypeStandWhereTheyStood) {
  const std::string text =
      R"({"a":{"b":[1,-2,2.5,"x",null,true,[],{},[[{"c":false}]]],"d":{}},"e":{"a":"last"}})";
  EXPECT_EQ(writeJSON(parseJSON(text)), text);
  for (const std::string lone : {"1", "-1", "0.5", "\"x\"", "null", "true", "[]", "{}"})
    EXPECT_EQ(writeJSON(parseJSON(lone)), lone);
}

TEST(JSONParse, BoundsAreTheCallers) {
  const JSONBounds narrow{.bytes = 20, .depth = 2, .membersOfAnObject = 2, .values = 4};
  EXPECT_EQ(refusal(R"({"a":1,"b":[2]})", narrow), "");
  EXPECT_EQ(refusal(R"({"a":1,"b":[2,3]})", narrow), "more than 4 values");
  EXPECT_EQ(refusal("[[[]]]", narrow), "nested deeper than 2 levels");
  EXPECT_EQ(refusal(R"({"a":1,"b":2,"c":3})", narrow), "an object with more than 2 members");
  EXPECT_EQ(refusal("\"                   \"", narrow), "21 bytes, more than the 20 that are read");
}

TEST(JSONParse, TruncationsOfADocumentAreRefused) {
  const std::string_view whole = R"({"a":[1,2.5,"x",null,true,{"b":{}}]})";
  for (std::size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    EXPECT_TRUE(isRefused(whole.substr(0, length)));
  }
  EXPECT_FALSE(isRefused(whole));
}

} // namespace
} // namespace ventolith::core
