#include "core/JSON.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace ventolith::core {
namespace {

using Kind = DecodeError::Kind;

/// What reading fails with, as "path: description".
std::string failure(Kind kind, const std::function<void()>& read) {
  try {
    read();
    return "no failure";
  } catch (const DecodeError& error) {
    EXPECT_EQ(error.kind(), kind);
    return error.what();
  }
}

TEST(JSONReader, MissingKeyNamesThePathOfWhatIsMissing) {
  const JSON document = parseJSON(R"({"fans":[{},{"mode":{}}]})");
  const JSONReader root(document);
  EXPECT_EQ(failure(Kind::keyNotFound, [&] { (void)root.at("tuning"); }), "tuning: required key not found");
  const JSONReader fans = root.at("fans");
  const JSONReader second = fans.element(1);
  EXPECT_EQ(failure(Kind::keyNotFound, [&] { (void)second.at("fanID"); }),
            "fans[1].fanID: required key not found");
}

TEST(JSONReader, FailureAtTheRootHasNoPath) {
  const JSON document = parseJSON("[]");
  EXPECT_EQ(failure(Kind::typeMismatch, [&] { (void)JSONReader(document).at("a"); }),
            "expected an object, found a list");
}

TEST(JSONReader, FailureQuotesNoControlCharacter) {
  const std::string escape = "\\u001b[2J\\n\\u007f\\u009b";
  const std::string twice = "{\"" + escape + "\":1,\"" + escape + "\":2}";
  EXPECT_EQ(failure(Kind::dataCorrupted, [&] { (void)parseJSON(twice); }),
            "the key \"\uFFFD[2J\uFFFD\uFFFD\uFFFD\" stands twice in one object");
  const JSON document = parseJSON("{\"" + escape + "\":1}");
  const std::string key = document.begin().key();
  const JSONReader root(document);
  EXPECT_EQ(failure(Kind::typeMismatch, [&] { (void)root.at(key).asString(); }),
            "\uFFFD[2J\uFFFD\uFFFD\uFFFD: expected a string, found a number");
  EXPECT_EQ(failure(Kind::dataCorrupted, [&] { root.at(key).fail(Kind::dataCorrupted, "found " + key); }),
            "\uFFFD[2J\uFFFD\uFFFD\uFFFD: found \uFFFD[2J\uFFFD\uFFFD\uFFFD");
}

TEST(JSONReader, FailureIsShortHoweverLongTheText) {
  const std::string longText(100000, 'x');
  const std::string shown = std::string(60, 'x') + "…";
  const std::string member = "\"" + longText + "\":1";
  EXPECT_EQ(failure(Kind::dataCorrupted, [&] { (void)parseJSON("{" + member + "," + member + "}"); }),
            "the key \"" + shown + "\" stands twice in one object");
  const JSON document = parseJSON("{\"a\":{" + member + "}}");
  const JSONReader root(document);
  const JSONReader a = root.at("a");
  EXPECT_EQ(failure(Kind::typeMismatch, [&] { (void)a.at(longText).asBoolean(); }),
            "a." + shown + ": expected a boolean, found a number");
  EXPECT_EQ(failure(Kind::dataCorrupted, [&] { a.fail(Kind::dataCorrupted, longText); }),
            "a: " + std::string(240, 'x') + "…");
}

TEST(JSONReader, FailureOfTheParserIsShortToo) {
  for (const std::string& text : {"{\"" + std::string(100000, 'x'), std::string(100000, '9'),
                                  "[\"" + std::string(100000, 'x') + "\" \"", std::string(100000, 'x')}) {
    const std::string message = failure(Kind::dataCorrupted, [&] { (void)parseJSON(text); });
    EXPECT_EQ(message.rfind("not valid JSON: ", 0), 0U);
    EXPECT_LE(message.size(), 250U);
  }
}

TEST(JSONReader, PathJoinsKeysByDotsAndPlacesInBrackets) {
  const JSON document = parseJSON(R"({"a":{"b":[[0],[1,{"":2}]]}})");
  const JSONReader root(document);
  const JSONReader a = root.at("a");
  const JSONReader b = a.at("b");
  const JSONReader row = b.element(1);
  const JSONReader cell = row.element(1);
  EXPECT_EQ(root.path(), "");
  EXPECT_EQ(b.path(), "a.b");
  EXPECT_EQ(cell.path(), "a.b[1][1]");
  EXPECT_EQ(cell.at("").path(), "a.b[1][1].");
}

TEST(JSONReader, WrongTypeNamesWhatIsExpectedAndWhatIsThere) {
  const JSON document =
      parseJSON(R"({"null":null,"bool":true,"text":"x","list":[],"object":{},"number":1.5})");
  const JSONReader root(document);
  struct Row {
    std::string key;
    std::function<void(const JSONReader&)> read;
    std::string text;
  };
  const auto asDouble = [](const JSONReader& json) { (void)json.asDouble(); };
  const auto asInteger = [](const JSONReader& json) { (void)json.asInteger(); };
  const auto asBoolean = [](const JSONReader& json) { (void)json.asBoolean(); };
  const auto asString = [](const JSONReader& json) { (void)json.asString(); };
  const auto asUUID = [](const JSONReader& json) { (void)json.asUUID(); };
  const auto asList = [](const JSONReader& json) { (void)json.size(); };
  const auto asObject = [](const JSONReader& json) { json.expectObject(); };
  const Row rows[] = {
      {"text", asDouble, "text: expected a number, found a string"},
      {"bool", asDouble, "bool: expected a number, found a boolean"},
      {"null", asDouble, "null: expected a number, found null"},
      {"list", asInteger, "list: expected a number, found a list"},
      {"bool", asInteger, "bool: expected a number, found a boolean"},
      {"number", asBoolean, "number: expected a boolean, found a number"},
      {"text", asBoolean, "text: expected a boolean, found a string"},
      {"object", asString, "object: expected a string, found an object"},
      {"null", asString, "null: expected a string, found null"},
      {"number", asUUID, "number: expected a string, found a number"},
      {"object", asList, "object: expected a list, found an object"},
      {"list", asObject, "list: expected an object, found a list"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(failure(Kind::typeMismatch, [&] { row.read(root.at(row.key)); }), row.text);
  }
}

TEST(JSONReader, OptionalMemberIsAbsentWhenMissingOrNull) {
  const JSON document = parseJSON(R"({"null":null,"text":"x"})");
  const JSONReader root(document);
  EXPECT_FALSE(root.find("missing"));
  EXPECT_FALSE(root.find("null"));
  ASSERT_TRUE(root.find("text"));
  EXPECT_EQ(root.find("text")->asString(), "x");
}

TEST(JSONReader, OptionalMemberOfNoObjectIsAWrongType) {
  const JSON document = parseJSON("[]");
  EXPECT_EQ(failure(Kind::typeMismatch, [&] { (void)JSONReader(document).find("a"); }),
            "expected an object, found a list");
}

TEST(JSONReader, NumberReadsAsAFloatWhateverItsForm) {
  const JSON document = parseJSON("[2,2.0,-3,1e2,18446744073709551615,0.1]");
  const JSONReader root(document);
  const double values[] = {2, 2, -3, 100, 18446744073709551615.0, 0.1};
  for (std::size_t place = 0; place < std::size(values); ++place) {
    EXPECT_EQ(root.element(place).asDouble(), values[place]);
  }
}

TEST(JSONReader, WholeNumberReadsAsAnInteger) {
  struct Row {
    std::string text;
    std::int64_t value;
  };
  const Row rows[] = {
      {"0", 0},
      {"-1", -1},
      {"3.0", 3},
      {"1e3", 1000},
      {"9223372036854775807", INT64_MAX},
      {"-9223372036854775808", INT64_MIN},
      {"-0", 0},
      {"-9223372036854774784.0", -9223372036854774784}, // The last float before -2^63.
      {"9007199254740993", 9007199254740993},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    const JSON document = parseJSON(row.text);
    EXPECT_EQ(JSONReader(document).asInteger(), row.value);
  }
}

TEST(JSONReader, NumberThatIsNoIntegerOf64BitsIsAWrongType) {
  for (const std::string_view text :
       {"0.5", "-1.25", "9223372036854775808", "-9223372036854775809", "18446744073709551615",
        "18446744073709551616", "-9223372036854775808.0", "1e19", "-1e300"}) {
    SCOPED_TRACE(text);
    const JSON document = parseJSON(text);
    EXPECT_NE(failure(Kind::typeMismatch, [&] { (void)JSONReader(document).asInteger(); }), "no failure");
  }
}

TEST(JSONReader, TextThatIsNoUUIDIsCorrupted) {
  const JSON document = parseJSON(R"({"id":"6F1C0E52"})");
  EXPECT_EQ(failure(Kind::dataCorrupted, [&] { (void)JSONReader(document).at("id").asUUID(); }),
            "id: expected a UUID in its hyphenated form");
}

TEST(JSONReader, OnlyCaseIsTheOneKnownKey) {
  const JSON document = parseJSON(R"({"fan":{}})");
  EXPECT_EQ(JSONReader(document).onlyCase({"all", "fan"}), "fan");
}

TEST(JSONReader, OtherThanOneKnownKeyIsAWrongType) {
  for (const std::string_view text :
       {"{}", R"({"fan":{},"all":{}})", R"({"none":{}})", R"({"FAN":{}})", R"({"":{}})"}) {
    SCOPED_TRACE(text);
    const JSON document = parseJSON(text);
    EXPECT_EQ(failure(Kind::typeMismatch, [&] { (void)JSONReader(document).onlyCase({"all", "fan"}); }),
              "Invalid number of keys found, expected one.");
  }
}

TEST(JSONReader, CaseOfNoObjectIsAWrongType) {
  const JSON document = parseJSON(R"("automatic")");
  EXPECT_EQ(failure(Kind::typeMismatch, [&] { (void)JSONReader(document).onlyCase({"automatic"}); }),
            "expected an object, found a string");
}

TEST(JSONReader, ListIsReadElementByElement) {
  const JSON document = parseJSON("[3,1,2]");
  const auto numbers =
      readList(JSONReader(document), [](const JSONReader& json) { return json.asInteger(); });
  EXPECT_EQ(numbers, (std::vector<std::int64_t>{3, 1, 2}));
}

TEST(JSONReader, FailureInAListNamesThePlace) {
  const JSON document = parseJSON(R"([1,"x"])");
  EXPECT_EQ(failure(Kind::typeMismatch,
                    [&] {
                      (void)readList(JSONReader(document),
                                     [](const JSONReader& json) { return json.asInteger(); });
                    }),
            "[1]: expected a number, found a string");
}

} // namespace
} // namespace ventolith::core
