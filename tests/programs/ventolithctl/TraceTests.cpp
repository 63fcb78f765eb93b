#include "core/JSON.h"
#include "programs/ventolithctl/Fixture.h"
#include "programs/ventolithctl/Trace.h"

#include <random>

namespace ventolith::ctl {
namespace {

constexpr const char* fanText =
    R"({"id":0,"name":"Fan 0","currentRPM":2317,"minRPM":2000,"maxRPM":8000,"mode":0})";
constexpr const char* tempText =
    R"({"key":"TCHP","name":"CPU","celsius":61.53,"category":"CPU","source":"SMC"})";

std::string lineOf(const std::string& t, const std::string& fans = fanText,
                   const std::string& temps = tempText, const std::string& more = "") {
  return fmt::format(R"({{"t":{},"fans":[{}],"temps":[{}]{}}})", t, fans, temps, more);
}

/// What reading `text` fails with.
std::string failureOf(const std::string& text) {
  std::istringstream in(text);
  TraceReader trace(in, "run.jsonl");
  try {
    while (trace.next() != nullptr)
      continue;
  } catch (const InputError& error) {
    return error.what();
  }
  return "no failure";
}

TEST(TraceReader, ReadsWhatARecordingHas) {
  std::istringstream in(lineOf("0.0") + "\n" + lineOf("1.5") + "\n");
  TraceReader trace(in, "run.jsonl");
  const TraceTick* tick = trace.next();
  ASSERT_NE(tick, nullptr);
  const core::Fan fan{
      .id = 0, .name = "Fan 0", .currentRPM = 2317, .minRPM = 2000, .maxRPM = 8000, .mode = 0};
  const core::TempSensor sensor{.key = "TCHP",
                                .name = "CPU",
                                .celsius = 61.53,
                                .category = core::SensorCategory::cpu,
                                .source = core::SensorSource::smc};
  EXPECT_EQ(tick->seconds, 0);
  EXPECT_EQ(tick->snapshot.fans, std::vector{fan});
  EXPECT_EQ(tick->snapshot.temps, std::vector{sensor});
  EXPECT_FALSE(tick->reset);
  EXPECT_FALSE(tick->plan);
  ASSERT_NE(trace.next(), nullptr);
  EXPECT_EQ(tick->seconds, 1.5);
  EXPECT_EQ(trace.next(), nullptr);
}

TEST(TraceReader, TheLastLineNeedsNoEnd) {
  EXPECT_EQ(failureOf(lineOf("0") + "\n" + lineOf("1")), "no failure");
}

TEST(TraceReader, AFanMayHaveNoMode) {
  std::istringstream in(lineOf("0", R"({"id":0,"name":"","currentRPM":1,"minRPM":2,"maxRPM":3})"));
  TraceReader trace(in, "run.jsonl");
  EXPECT_EQ(trace.next()->snapshot.fans.at(0).mode, std::nullopt);
}

TEST(TraceReader, AFanThatLosesItsModeHasNoneLeft) {
  std::istringstream in(lineOf("0") + "\n" +
                        lineOf("1", R"({"id":0,"name":"","currentRPM":1,"minRPM":2,"maxRPM":3})"));
  TraceReader trace(in, "run.jsonl");
  EXPECT_EQ(trace.next()->snapshot.fans.at(0).mode, 0);
  EXPECT_EQ(trace.next()->snapshot.fans.at(0).mode, std::nullopt);
}

TEST(TraceReader, SaysWhereWhatIsWrong) {
  struct Row {
    std::string line;
    std::string failure;
  };
  const Row rows[] = {
      {R"({"fans":[],"temps":[]})", "t: required key not found"},
      {lineOf("\"now\""), "t: expected a number, found a string"},
      {R"({"t":0,"temps":[]})", "fans: required key not found"},
      {R"({"t":0,"fans":{},"temps":[]})", "fans: expected a list, found an object"},
      {lineOf("0", R"({"id":0,"currentRPM":1,"minRPM":2,"maxRPM":3})"),
       "fans[0].name: required key not found"},
      {lineOf("0", std::string(fanText) + R"(,{"id":1,"name":"","currentRPM":1.5,"minRPM":2,"maxRPM":3})"),
       "fans[1].currentRPM: expected a whole number of at most 64 bits"},
      {lineOf("0", fanText, R"({"key":"T","name":"","celsius":1,"category":"GPU","source":"USB"})"),
       "temps[0].source: \"USB\" is not known"},
      {lineOf("0", fanText, R"({"key":"T","name":"","celsius":1,"category":"cpu","source":"HID"})"),
       "temps[0].category: \"cpu\" is not known"},
      {lineOf("0", fanText, tempText, R"(,"reset":1)"), "reset: expected a boolean, found a number"},
      {lineOf("0", fanText, tempText, R"(,"plan":{"fans":[{"fanID":0}],"rules":[]})"),
       "plan.fans[0].mode: required key not found"},
      {lineOf("-1"), "t: goes back from 0.0 to -1.0"},
      {lineOf("1000000001"), "t: 1000000001 lies beyond 1000000000 seconds"},
      {lineOf("0", fanText, tempText, R"(,"t":1)"), "the key \"t\" stands twice in one object"},
  };
  const std::string good = lineOf("0.0") + "\n";
  for (const Row& row : rows)
    EXPECT_EQ(failureOf(good + row.line + "\n"), "run.jsonl:2: " + row.failure) << row.line;
}

TEST(TraceReader, WhatIsNoJSONIsNamedByItsLine) {
  for (const char* line : {"", "{", "[]x", "{\"t\":0,", "null\x01"}) {
    const std::string failure = failureOf(lineOf("0") + "\n" + lineOf("1") + "\n" + line + "\n");
    EXPECT_EQ(failure.rfind("run.jsonl:3: ", 0), 0U) << failure;
  }
}

TEST(TraceReader, ALineOverTheBoundIsRefusedAndOneAtTheBoundIsRead) {
  const std::string line = lineOf("0");
  const std::string longest = line + std::string(maxTraceLineBytes - line.size(), ' ');
  EXPECT_EQ(failureOf(longest + "\n" + longest), "no failure");
  EXPECT_EQ(failureOf(longest + " \n"), "run.jsonl:1: longer than 1048576 bytes");
}

TEST(TraceReader, TimeMayStandStillAndReachItsBounds) {
  EXPECT_EQ(failureOf(lineOf("-1000000000") + "\n" + lineOf("5") + "\n" + lineOf("5") + "\n" + lineOf("1e9")),
            "no failure");
}

TEST(TraceLineParser, ReadsTheRecordedFormAsTheDecoderDoes) {
  const std::string lines[] = {
      lineOf("0.0"),
      lineOf("12"),
      lineOf("-0"),
      lineOf("1.5e2", "", ""),
      lineOf("0.1", std::string(fanText) + "," + fanText, std::string(tempText) + "," + tempText),
      lineOf(
          "0.30000000000000004", fanText,
          R"({"source":"HID","key":"a\u00e9\n\"b","name":"\\","celsius":-12.345678901234567,"category":"SSD"})"),
      lineOf("3", fanText, tempText, R"(,"reset":true)"),
      " { \"t\" : 7 , \"fans\" : [ ] , \"temps\" : [ ] }",
  };
  TraceLineParser parser;
  TraceTick fast;
  for (const std::string& line : lines) {
    ASSERT_TRUE(parser.parse(line, fast)) << line;
    TraceTick decoded;
    decodeTraceLine(line, decoded);
    EXPECT_EQ(fast, decoded) << line;
  }
}

TEST(TraceLineParser, LeavesEverythingElseToTheDecoder) {
  const std::string lines[] = {
      "",
      "{}",
      "[]",
      "5",
      "{\"t\":0",
      lineOf("0") + "x",
      lineOf("null"),
      lineOf("1e999"),
      lineOf("0", fanText, tempText, R"(,"plan":{})"),
      lineOf("0", fanText, tempText, R"(,"other":1)"),
      lineOf("0", fanText, tempText, R"(,"t":1)"),
      lineOf("0", R"({"id":0.0,"name":"","currentRPM":1,"minRPM":2,"maxRPM":3})"),
      lineOf("0", R"({"id":18446744073709551615,"name":"","currentRPM":1,"minRPM":2,"maxRPM":3})"),
      lineOf("0", R"({"id":0,"currentRPM":1,"minRPM":2,"maxRPM":3})"),
      lineOf("0", "[]"),
      lineOf("0", "7"),
      lineOf("0", fanText, R"({"key":"T","name":"","celsius":"1","category":"GPU","source":"SMC"})"),
      lineOf("0", fanText,
             "{\"key\":\"\xff\",\"name\":\"\",\"celsius\":1,\"category\":\"GPU\",\"source\":\"SMC\"}"),
  };
  TraceLineParser parser;
  TraceTick tick;
  for (const std::string& line : lines)
    EXPECT_FALSE(parser.parse(line, tick)) << line;
  EXPECT_TRUE(parser.parse(lineOf("0"), tick)); // None of them leaves anything behind.
}

TEST(TraceLineParser, AgreesWithTheDecoderOnWhateverItAccepts) {
  const std::string good = lineOf("1.5", fanText, tempText, R"(,"reset":false)");
  constexpr std::string_view pieces = R"({}[]":,.-+eE0123456789 tfnulrs\x)";
  std::mt19937 random(7);
  const auto below = [&random](std::size_t count) { return random() % count; };
  TraceLineParser parser;
  TraceTick fast;
  int accepted = 0;
  for (int round = 0; round < 20000; ++round) {
    std::string line = good;
    for (std::size_t change = below(3) + 1; change > 0; --change) {
      const std::size_t place = below(line.size());
      const std::string piece(1, pieces[below(pieces.size())]);
      line.replace(place, below(3), piece);
    }
    if (!parser.parse(line, fast)) continue;
    ++accepted;
    TraceTick decoded;
    ASSERT_NO_THROW(decodeTraceLine(line, decoded)) << line;
    ASSERT_EQ(fast, decoded) << line;
  }
  EXPECT_GT(accepted, 500);
}

TEST(TraceLine, ReadsBackToTheSameSnapshot) {
  core::SensorSnapshot snapshot;
  snapshot.fans = {
      {.id = 0, .name = "Fan \"0\"", .currentRPM = 1, .minRPM = 2, .maxRPM = 3, .mode = std::nullopt},
      {.id = 1, .name = "Fan 1", .currentRPM = 4, .minRPM = 5, .maxRPM = 6, .mode = 3}};
  snapshot.temps = {{.key = "PMU tdie1",
                     .name = "CPU (die é)",
                     .celsius = 1.0 / 3,
                     .category = core::SensorCategory::cpu,
                     .source = core::SensorSource::hid}};
  const std::string line = traceLine(4.5, snapshot);
  EXPECT_EQ(line, R"({"t":4.5,"fans":[{"id":0,"name":"Fan \"0\"","currentRPM":1,"minRPM":2,"maxRPM":3},)"
                  R"({"id":1,"name":"Fan 1","currentRPM":4,"minRPM":5,"maxRPM":6,"mode":3}],)"
                  R"~("temps":[{"key":"PMU tdie1","name":"CPU (die é)","celsius":0.3333333333333333,)~"
                  R"("category":"CPU","source":"HID"}]})"
                  "\n");
  std::istringstream in(line);
  TraceReader trace(in, "line");
  EXPECT_EQ(trace.next()->snapshot, snapshot);
}

} // namespace
} // namespace ventolith::ctl
