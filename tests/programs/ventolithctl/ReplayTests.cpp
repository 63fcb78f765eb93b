#include "programs/ventolithctl/Fixture.h"
#include "programs/ventolithctl/StripChart.h"

namespace ventolith::ctl {
namespace {

constexpr const char* automatic = R"({"automatic":{}})";
constexpr const char* curve =
    R"({"curve":{"_0":{"points":[{"id":"6F1C0E52-8C54-4D0B-9B0E-0E4C2C1B7A11","celsius":30,"percent":0},)"
    R"({"id":"0D4A7E10-5A2B-4E57-8B6E-2F1F6C9E3D02","celsius":50,"percent":30},)"
    R"({"id":"0D4A7E10-5A2B-4E57-8B6E-2F1F6C9E3D03","celsius":80,"percent":100}],"interpolation":"linear"}}})";

std::string twoFans(const std::string& first, const std::string& second) {
  return planText(fmt::format(R"({{"fanID":0,"mode":{}}},{{"fanID":1,"mode":{}}})", first, second));
}

std::string fanText(int id) {
  return fmt::format(R"({{"id":{},"name":"Fan {}","currentRPM":2317,"minRPM":2000,"maxRPM":8000,"mode":0}})",
                     id, id);
}

std::string tick(const std::string& t, double celsius, const std::string& more = "",
                 bool hasSecondFan = true) {
  return fmt::format(
      R"({{"t":{},"fans":[{}],"temps":[{{"key":"TCHP","name":"CPU","celsius":{},"category":"CPU",)"
      R"("source":"SMC"}}]{}}})"
      "\n",
      t, hasSecondFan ? fanText(0) + "," + fanText(1) : fanText(0), celsius, more);
}

class ReplayCommand : public CommandTest {
protected:
  ExitStatus replay(const std::string& plan, const std::string& trace, std::vector<std::string> more = {}) {
    std::vector<std::string> arguments = {"replay", "--plan", file("plan.json", plan), "--trace",
                                          file("run.jsonl", trace)};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(std::move(arguments));
  }
};

TEST_F(ReplayCommand, JSONHasATickALineThroughPlanSwitchResetAndRelease) {
  const std::string parked = twoFans(automatic, R"({"fixedPercent":{"_0":0}})");
  const std::string trace = tick("0.0", 50) + tick("1.5", 65) + tick("3", 65, R"(,"plan":)" + parked) +
                            tick("13", 65) + tick("14.5", 65, R"(,"reset":true)") +
                            tick("16.0", 65, "", false);
  ASSERT_EQ(replay(twoFans(curve, automatic), trace, {"--json"}), ExitStatus::done);
  const std::vector<std::string> expected = {
      R"({"t":0.0,"decisions":{"0":{"target":{"rpm":3800}},"1":{"releaseToAuto":{}}},"actions":{"toClaim":[0],"toRelease":[],"targets":{"0":3800},"forceTestEnabled":true,"stoppedFans":[],"isGlobalIdle":false}})",
      R"({"t":1.5,"decisions":{"0":{"target":{"rpm":4200}},"1":{"releaseToAuto":{}}},"actions":{"toClaim":[],"toRelease":[],"targets":{"0":4200},"forceTestEnabled":true,"stoppedFans":[],"isGlobalIdle":false}})",
      R"({"t":3.0,"decisions":{"0":{"releaseToAuto":{}},"1":{"target":{"rpm":2000}}},"actions":{"toClaim":[1],"toRelease":[0],"targets":{"1":2000},"forceTestEnabled":true,"stoppedFans":[],"isGlobalIdle":false}})",
      R"({"t":13.0,"decisions":{"0":{"releaseToAuto":{}},"1":{"idleStopped":{}}},"actions":{"toClaim":[],"toRelease":[],"targets":{"1":0},"forceTestEnabled":true,"stoppedFans":[1],"isGlobalIdle":true}})",
      R"({"t":14.5,"decisions":{"0":{"releaseToAuto":{}},"1":{"target":{"rpm":2000}}},"actions":{"toClaim":[],"toRelease":[],"targets":{"1":2000},"forceTestEnabled":true,"stoppedFans":[],"isGlobalIdle":false}})",
      R"({"t":16.0,"decisions":{"0":{"releaseToAuto":{}}},"actions":{"toClaim":[],"toRelease":[1],"targets":{},"forceTestEnabled":false,"stoppedFans":[],"isGlobalIdle":false}})",
  };
  EXPECT_EQ(linesOf(out.text), expected);
}

TEST_F(ReplayCommand, DoublesAreInTheirShortestForm) {
  ASSERT_EQ(replay(twoFans(curve, automatic), tick("0.30000000000000004", 50.1), {"--json"}),
            ExitStatus::done);
  // 30.1 degrees into the curve's second part: 30 % and 0.1 / 30 of 70 %.
  const double rpm = (30 + ((50.1 - 50) / 30) * 70) * 6000 / 100 + 2000;
  const std::string start =
      fmt::format(R"({{"t":0.30000000000000004,"decisions":{{"0":{{"target":{{"rpm":{}}}}},)", rpm);
  EXPECT_EQ(out.text.substr(0, start.size()), start);
}

TEST_F(ReplayCommand, NothingIsShownFromABadLineOn) {
  const std::string trace = tick("0", 50) + "{\"t\":1}\n" + tick("2", 50);
  EXPECT_EQ(replay(twoFans(curve, automatic), trace, {"--json"}), ExitStatus::invalid);
  EXPECT_EQ(linesOf(out.text).size(), 1U);
  EXPECT_EQ(err.text, "ventolithctl: " + path("run.jsonl") + ":2: fans: required key not found\n");
}

TEST_F(ReplayCommand, InvalidPlanIsReportedBeforeAnyLine) {
  EXPECT_EQ(replay("{}", tick("0", 50), {"--json"}), ExitStatus::invalid);
  EXPECT_EQ(out.text, "");
  EXPECT_EQ(err.text, "ventolithctl: " + path("plan.json") + ": fans: required key not found\n");
}

TEST_F(ReplayCommand, TraceMayComeFromStandardInput) {
  in.str(tick("0", 50));
  EXPECT_EQ(run({"replay", "--plan", file("plan.json", twoFans(curve, automatic)), "--trace", "-", "--json"}),
            ExitStatus::done);
  EXPECT_EQ(linesOf(out.text).size(), 1U);
}

TEST_F(ReplayCommand, TextHasARowAChangeAndAChart) {
  std::string trace;
  for (int place = 0; place < 30; ++place)
    trace += tick(std::to_string(place), place < 20 ? 50 : 65);
  out.extent.columns = 60;
  ASSERT_EQ(replay(twoFans(curve, automatic), trace, {"--every", "0"}), ExitStatus::done);
  const std::vector<std::string> expected = {
      "      0.0 s    50.0 °C  Fan 0 3800 RPM        Fan 1 firmware        claims 0",
      "     21.0 s    65.0 °C  Fan 0 4600 RPM        Fan 1 firmware",
      "     23.0 s    65.0 °C  Fan 0 5400 RPM        Fan 1 firmware",
      "     29.0 s    65.0 °C  Fan 0 5900 RPM        Fan 1 firmware",
      "",
      "Hottest",
      "",
      "              ▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁██████████",
      "30 to 100 °C  ██████████████████████████████",
      "Fan 0                                ▁▂▂▂▂▂▂",
      "to 8000       ▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▆▇████████",
      "Fan 1",
      "to 8000",
      "              0.0 s                   29.0 s",
  };
  EXPECT_EQ(linesOf(out.text), expected) << out.text;
}

TEST_F(ReplayCommand, TextHasARowEveryNTicks) {
  std::string trace;
  for (int place = 0; place < 10; ++place)
    trace += tick(std::to_string(place), 50);
  ASSERT_EQ(replay(twoFans(curve, automatic), trace, {"--every", "4"}), ExitStatus::done);
  const auto lines = linesOf(out.text);
  const auto blank = std::find(lines.begin(), lines.end(), "");
  EXPECT_EQ(blank - lines.begin(), 4); // At 0, 4, 8 and the last, 9.
}

TEST_F(ReplayCommand, AnEmptyTraceSaysSo) {
  EXPECT_EQ(replay(twoFans(curve, automatic), ""), ExitStatus::done);
  EXPECT_EQ(out.text, "The trace is empty.\n");
}

TEST(Course, KeepsTheHighestOfWhatItMerges) {
  Course course(4);
  for (int value = 0; value < 9; ++value)
    course.add(value);
  EXPECT_EQ(course.size(), 9U);
  // Nine values in cells of four: 0 to 3, 4 to 7, and 8.
  EXPECT_EQ(course.cells(10), (std::vector<std::optional<double>>{3, 7, 8}));
  EXPECT_EQ(course.cells(1), (std::vector<std::optional<double>>{8}));
}

TEST(Course, AMissingValueIsBelowEveryOther) {
  Course course(2);
  course.add(std::nullopt);
  course.add(-5);
  course.add(std::nullopt);
  EXPECT_EQ(course.cells(2), (std::vector<std::optional<double>>{-5, std::nullopt}));
}

TEST(DrawColumns, RiseToAnEighthOfALine) {
  const auto lines = drawColumns({0, 50, 56.25, 100, 400, std::nullopt}, 0, 100, 2);
  EXPECT_EQ(lines[0], (std::vector<std::string>{" ", " ", "▁", "█", "█", " "}));
  EXPECT_EQ(lines[1], (std::vector<std::string>{"▁", "█", "█", "█", "█", " "}));
}

} // namespace
} // namespace ventolith::ctl
