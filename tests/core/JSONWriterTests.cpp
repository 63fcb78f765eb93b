#include "core/JSON.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

namespace ventolith::core {
namespace {

TEST(JSONWriter, DocumentStandsOnOneLineWithoutSpaces) {
  JSON document = JSON::object();
  document["b"] = JSON::array({1, JSON::array(), JSON::object()});
  document["a"] = nullptr;
  document["t"] = true;
  EXPECT_EQ(writeJSON(document), R"({"b":[1,[],{}],"a":null,"t":true})");
}

TEST(JSONWriter, WholeFloatHasNoFraction) {
  struct Row {
    double value;
    const char* text;
  };
  const Row rows[] = {{2, "2"},      {400, "400"}, {-5, "-5"}, {0, "0"},
                      {2.5, "2.5"},  {0.3, "0.3"}, {85, "85"}, {1e15, "1000000000000000"},
                      {99.9, "99.9"}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(writeJSON(JSON(row.value)), row.text);
  }
}

TEST(JSONWriter, FloatReadsBackToTheSameValue) {
  for (const double value : {0.1, 0.1 + 0.2, 1.0 / 3, 1e300, -1e-300, 5e-324,
                             std::numeric_limits<double>::max(), 9007199254740993.0, 1e21, 123456789.125}) {
    EXPECT_EQ(parseJSON(writeJSON(JSON(value))).get<double>(), value);
  }
}

TEST(JSONWriter, NumberThatIsNotFiniteIsRefused) {
  for (const double value : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    EXPECT_THROW((void)writeJSON(JSON(value)), std::invalid_argument);
    EXPECT_THROW((void)writeJSON(JSON::array({JSON::object({{"a", value}})})), std::invalid_argument);
  }
}

TEST(JSONWriter, IntegersAreWrittenInFull) {
  EXPECT_EQ(writeJSON(JSON(std::numeric_limits<std::int64_t>::min())), "-9223372036854775808");
  EXPECT_EQ(writeJSON(JSON(std::numeric_limits<std::int64_t>::max())), "9223372036854775807");
}

TEST(JSONWriter, StringsAreEscapedAndStayUTF8) {
  EXPECT_EQ(writeJSON(JSON("a\"b\\c\n\x01 Lüfter")), "\"a\\\"b\\\\c\\n\\u0001 Lüfter\"");
  EXPECT_EQ(writeJSON(JSON({{"k\"", 1}})), "{\"k\\\"\":1}");
}

TEST(JSONWriter, InvalidUTF8IsReplaced) {
  EXPECT_EQ(writeJSON(JSON("a\xFF"
                           "b")),
            "\"a\xEF\xBF\xBD"
            "b\"");
  JSON document = JSON::object();
  document["\xFF"] = "x";
  EXPECT_EQ(writeJSON(document), "{\"\xEF\xBF\xBD\":\"x\"}");
}

TEST(PrettyJSONWriter, EachMemberAndElementHasALineOfItsOwn) {
  const JSON document = parseJSON(R"({"b":[1,true,{"x":"y"}],"a":null,"c":{"d":[[2.5]]}})");
  EXPECT_EQ(writePrettyJSON(document), R"({
  "b" : [
    1,
    true,
    {
      "x" : "y"
    }
  ],
  "a" : null,
  "c" : {
    "d" : [
      [
        2.5
      ]
    ]
  }
})");
}

TEST(PrettyJSONWriter, EmptyListsAndObjectsHoldAnEmptyLine) {
  EXPECT_EQ(writePrettyJSON(JSON::array()), "[\n\n]");
  EXPECT_EQ(writePrettyJSON(JSON::object()), "{\n\n}");
  EXPECT_EQ(writePrettyJSON(parseJSON(R"({"a":[],"b":[{}]})")),
            "{\n  \"a\" : [\n\n  ],\n  \"b\" : [\n    {\n\n    }\n  ]\n}");
}

TEST(PrettyJSONWriter, LoneValueStandsAsItIs) {
  EXPECT_EQ(writePrettyJSON(JSON("a")), "\"a\"");
  EXPECT_EQ(writePrettyJSON(JSON(400.0)), "400");
}

TEST(PrettyJSONWriter, StringsAreEscapedAndStayUTF8) {
  struct Row {
    const char* string;
    const char* text;
  };
  const Row rows[] = {
      {"a/b", R"("a\/b")"},
      {"//", R"("\/\/")"},
      {"\\/", R"("\\\/")"},
      {"say \"/\"", R"("say \"\/\"")"},
      {"Lüfter 🌀", "\"Lüfter 🌀\""},
      {"\b\f\n\r\t", R"("\b\f\n\r\t")"},
      {"\x01\x1f", R"("\u0001\u001f")"},
      {"\x7f", "\"\x7f\""},
      {"a\xFF", "\"a\xEF\xBF\xBD\""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(writePrettyJSON(JSON(row.string)), row.text);
  }
}

TEST(PrettyJSONWriter, KeysAreEscapedLikeStrings) {
  EXPECT_EQ(writePrettyJSON(JSON({{"a/\"b", 1}})), "{\n  \"a\\/\\\"b\" : 1\n}");
}

TEST(PrettyJSONWriter, TextReadsBackToTheSameDocument) {
  const JSON document = parseJSON(R"([{"k/":"/\\\"\u0000é","n":[0.1,-7,1e300,9007199254740993]},[],{}])");
  EXPECT_EQ(parseJSON(writePrettyJSON(document)), document);
}

TEST(PrettyJSONWriter, NumberThatIsNotFiniteIsRefused) {
  EXPECT_THROW((void)writePrettyJSON(JSON::array({HUGE_VAL})), std::invalid_argument);
}

} // namespace
} // namespace ventolith::core
