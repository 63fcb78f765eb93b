#include "programs/ventolithctl/Fixture.h"
#include "programs/ventolithctl/ReadingTable.h"
#include "programs/ventolithctl/TextLayout.h"
#include "programs/ventolithctl/Trace.h"

#include <regex>

namespace ventolith::ctl {
namespace {

class SnapshotCommand : public CommandTest {};

TEST_F(SnapshotCommand, ShowsFansSensorsAndWhoDrives) {
  out.extent.columns = 72;
  ASSERT_EQ(run({"snapshot"}), ExitStatus::done);
  const std::vector<std::string> expected = {
      "test machine",
      "",
      "Fan 0         █···················  2317 RPM  2000 to 8000  auto",
      "Fan 1         ██████████··········  5000 RPM  2000 to 8000  manual",
      "",
      "SMC-TCHP                CPU                       61.5 °C  Working",
      "SMC-TG0D                GPU                       48.2 °C  Normal",
      "SMC-TB0T                Battery                   30.0 °C  Idle",
      "",
      "hottest CPU 61.5 °C (Working); 1 of 2 fans held",
  };
  EXPECT_EQ(linesOf(out.text), expected) << out.text;
}

TEST_F(SnapshotCommand, JSONIsOneObject) {
  keys->erase("F1Md");
  keys->erase("TG0D");
  keys->erase("TB0T");
  ASSERT_EQ(run({"snapshot", "--json"}), ExitStatus::done);
  EXPECT_EQ(
      out.text,
      R"({"machine":"test machine","fans":[{"id":0,"name":"Fan 0","currentRPM":2317,"minRPM":2000,"maxRPM":8000,)"
      R"("mode":0},{"id":1,"name":"Fan 1","currentRPM":5000,"minRPM":2000,"maxRPM":8000}],"temps":[{"key":"TCHP",)"
      R"("name":"CPU","celsius":61.5,"category":"CPU","source":"SMC"}]})"
      "\n");
}

TEST_F(SnapshotCommand, AMachineWithoutAnythingSaysSo) {
  keys->clear();
  ASSERT_EQ(run({"snapshot"}), ExitStatus::done);
  EXPECT_EQ(out.text, "test machine\n\nNo fans.\n\nNo temperature sensors.\n\nno temperatures; no fans\n");
}

TEST_F(SnapshotCommand, AMachineThatCannotBeHadIsAFailure) {
  context.selectMachine = []() -> hardware::Machine {
    throw std::runtime_error("simulated:nothing: no such machine");
  };
  EXPECT_EQ(run({"snapshot"}), ExitStatus::failed);
  EXPECT_EQ(err.text, "ventolithctl: simulated:nothing: no such machine\n");
}

TEST_F(SnapshotCommand, AClosedSMCIsAFailure) {
  struct Closed final : hardware::SMCUserClient {
    hardware::SMCResult<hardware::IOConnect> open() override { return hardware::SMCError::driverNotFound(); }
    void close(hardware::IOConnect) override {}
    hardware::KernReturn call(hardware::IOConnect, const hardware::SMCParamStruct&,
                              hardware::SMCParamStruct&) override {
      return hardware::kernSuccess;
    }
  };
  context.selectMachine = [] {
    return hardware::Machine{.name = "closed",
                             .smc = std::make_unique<Closed>(),
                             .hid = std::make_unique<AbsentHub>(),
                             .privileges = {}};
  };
  EXPECT_EQ(run({"snapshot"}), ExitStatus::failed);
  EXPECT_EQ(err.text, "ventolithctl: closed: " + hardware::SMCError::driverNotFound().description() + "\n");
}

core::TempSensor sensorAt(double celsius) {
  return {.key = "T", .name = "CPU", .celsius = celsius, .category = core::SensorCategory::cpu, .source = {}};
}

TEST(ReadingTable, ShowsEachBandFromItsLimitOn) {
  struct Row {
    double celsius;
    std::string_view word;
  };
  const Row rows[] = {{44.9, "Idle"},    {45, "Normal"}, {59.9, "Normal"}, {60, "Working"},
                      {74.9, "Working"}, {75, "Heavy"},  {89.9, "Heavy"},  {90, "Throttle risk"}};
  for (const Row& row : rows) {
    core::SensorSnapshot snapshot;
    snapshot.temps = {sensorAt(row.celsius)};
    const auto lines = readingTable(snapshot, {.columns = 40});
    EXPECT_NE(lines.back().find(row.word), std::string::npos) << lines.back();
  }
}

TEST(ReadingTable, NoLineIsWiderThanItsTerminal) {
  core::SensorSnapshot snapshot;
  snapshot.fans = {{.id = 0,
                    .name = "A fan of a long name",
                    .currentRPM = 99999,
                    .minRPM = 0,
                    .maxRPM = 99999,
                    .mode = 3}};
  for (int count = 0; count < 7; ++count)
    snapshot.temps.push_back(sensorAt(100.5));
  for (const bool showsSensorIDs : {false, true}) {
    for (int columns = 30; columns < 200; ++columns) {
      for (const std::string& line :
           readingTable(snapshot, {.columns = columns, .colors = {}, .showsSensorIDs = showsSensorIDs})) {
        EXPECT_LE(columnsOf(line), columns) << line;
      }
    }
  }
}

TEST(ReadingTable, WideTerminalsShowSensorsSideBySideDownwardsFirst) {
  core::SensorSnapshot snapshot;
  for (const double celsius : {10, 20, 30})
    snapshot.temps.push_back(sensorAt(celsius));
  const auto lines = readingTable(snapshot, {.columns = 80});
  ASSERT_EQ(lines.size(), 4U); // "No fans.", a blank, two rows.
  EXPECT_NE(lines[2].find("10.0 °C"), std::string::npos);
  EXPECT_NE(lines[2].find("30.0 °C"), std::string::npos);
  EXPECT_NE(lines[3].find("20.0 °C"), std::string::npos);
}

TEST(StateLine, TellsWhoDrivesTheFans) {
  struct Row {
    std::vector<std::optional<std::int64_t>> modes;
    std::string_view text;
  };
  const Row rows[] = {{{}, "no fans"},
                      {{0, 0}, "the firmware drives the fans"},
                      {{1, 3}, "1 of 2 fans held"},
                      {{3, 0}, "1 of 2 fans taken back by the firmware"},
                      {{std::nullopt}, "who drives the fans cannot be read"}};
  for (const Row& row : rows) {
    core::SensorSnapshot snapshot;
    for (const auto& mode : row.modes)
      snapshot.fans.push_back({.id = 0, .name = "", .mode = mode});
    EXPECT_EQ(stateLine(snapshot), fmt::format("no temperatures; {}", row.text));
  }
}

TEST(TextLayout, FillsAndCutsByCharacters) {
  EXPECT_EQ(leftIn(5, "né"), "né   ");
  EXPECT_EQ(rightIn(5, "né"), "   né");
  EXPECT_EQ(leftIn(5, "néné n"), "néné…");
  EXPECT_EQ(leftIn(0, "né"), "");
}

TEST(TextLayout, ControlCharactersDoNotReachTheTerminal) {
  EXPECT_EQ(printable("a\x1b[2Jb\n\x7f\xc2\x9b é"), "a?[2Jb??? é");
}

TEST(TextLayout, BarIsFilledToAnEighth) {
  EXPECT_EQ(bar(0, 4), "····");
  EXPECT_EQ(bar(1, 4), "████");
  EXPECT_EQ(bar(2, 2), "██");
  EXPECT_EQ(bar(-1, 2), "··");
  EXPECT_EQ(bar(0.0 / 0.0, 2), "··");
  EXPECT_EQ(bar(0.5 + 1.0 / 32, 4), "██▏·");
}

TEST(TextLayout, ColorFollowsTheScale) {
  EXPECT_EQ(inColorOf(20, ColorDepth::trueColor, "x"), "\x1b[38;2;79;168;255mx\x1b[0m");
  EXPECT_EQ(inColorOf(97, ColorDepth::trueColor, "x"), "\x1b[38;2;255;69;58mx\x1b[0m");
  EXPECT_EQ(inColorOf(97, ColorDepth::none, "x"), "x");
  const std::pair<double, int> basic[] = {{44.9, 94}, {45, 92}, {60, 93}, {75, 33}, {90, 91}};
  for (const auto& [celsius, code] : basic) {
    EXPECT_EQ(inColorOf(celsius, ColorDepth::sixteen, "x"), fmt::format("\x1b[{}mx\x1b[0m", code));
  }
}

TEST(ColorDepth, FollowsTheEnvironment) {
  using Variables = std::map<std::string, std::string>;
  struct Row {
    bool isTerminal;
    Variables variables;
    ColorDepth depth;
  };
  const Row rows[] = {
      {true, {}, ColorDepth::sixteen},
      {true, {{"COLORTERM", "truecolor"}}, ColorDepth::trueColor},
      {true, {{"COLORTERM", "24bit"}}, ColorDepth::trueColor},
      {true, {{"COLORTERM", "yes"}}, ColorDepth::sixteen},
      {true, {{"COLORTERM", "truecolor"}, {"NO_COLOR", "1"}}, ColorDepth::none},
      {true, {{"NO_COLOR", ""}}, ColorDepth::sixteen},
      {false, {{"COLORTERM", "truecolor"}}, ColorDepth::none},
  };
  for (const Row& row : rows) {
    const Environment environment = [&row](const std::string& name) -> std::optional<std::string> {
      const auto found = row.variables.find(name);
      return found == row.variables.end() ? std::nullopt : std::optional(found->second);
    };
    EXPECT_EQ(colorDepth(environment, row.isTerminal), row.depth);
  }
}

class RecordCommand : public CommandTest {};

TEST_F(RecordCommand, WritesATickEveryOneAndAHalfSeconds) {
  ASSERT_EQ(run({"record", "-", "--seconds", "4"}), ExitStatus::done);
  std::istringstream recorded(out.text);
  TraceReader trace(recorded, "recorded");
  for (const double seconds : {0.0, 1.5, 3.0}) {
    const TraceTick* tick = trace.next();
    ASSERT_NE(tick, nullptr);
    EXPECT_EQ(tick->seconds, seconds);
    EXPECT_EQ(tick->snapshot.fans.size(), 2U);
    EXPECT_EQ(tick->snapshot.hottest()->celsius, 61.5);
  }
  EXPECT_EQ(trace.next(), nullptr);
}

TEST_F(RecordCommand, EndsWhenItsTimeIsOver) {
  const auto start = clock.now();
  ASSERT_EQ(run({"record", path("run.jsonl"), "--seconds", "4"}), ExitStatus::done);
  EXPECT_EQ(clock.now() - start, std::chrono::seconds(4));
}

TEST_F(RecordCommand, AStopEndsItAtOnceWithAWholeFile) {
  int lines = 0;
  out.onFlush = [&] {
    if (++lines == 3) stop.requestStop();
  };
  ASSERT_EQ(run({"record", "-"}), ExitStatus::done);
  EXPECT_EQ(linesOf(out.text).size(), 3U);
}

TEST_F(RecordCommand, EachLineIsFlushed) {
  std::vector<std::size_t> sizes;
  out.onFlush = [&] { sizes.push_back(linesOf(out.text).size()); };
  ASSERT_EQ(run({"record", "-", "--seconds", "2"}), ExitStatus::done);
  EXPECT_EQ(std::vector(sizes.begin(), sizes.begin() + 2), (std::vector<std::size_t>{1, 2}));
}

TEST_F(RecordCommand, AFileThatCannotBeWrittenIsAFailure) {
  const std::string nowhere = path("nothing/run.jsonl");
  EXPECT_EQ(run({"record", nowhere, "--seconds", "1"}), ExitStatus::failed);
  EXPECT_EQ(err.text, "ventolithctl: " + nowhere + ": No such file or directory\n");
}

TEST_F(RecordCommand, WhatIsRecordedCanBeReplayed) {
  ASSERT_EQ(run({"record", path("run.jsonl"), "--seconds", "3"}), ExitStatus::done);
  const auto plan = file("plan.json", planText(R"({"fanID":1,"mode":{"fixedPercent":{"_0":50}}})"));
  ASSERT_EQ(run({"replay", "--plan", plan, "--trace", path("run.jsonl"), "--json"}), ExitStatus::done);
  EXPECT_EQ(
      out.text,
      R"({"t":0.0,"decisions":{"1":{"target":{"rpm":5000}}},"actions":{"toClaim":[1],"toRelease":[],"targets":{"1":5000},"forceTestEnabled":true,"stoppedFans":[],"isGlobalIdle":false}}
{"t":1.5,"decisions":{"1":{"target":{"rpm":5000}}},"actions":{"toClaim":[],"toRelease":[],"targets":{"1":5000},"forceTestEnabled":true,"stoppedFans":[],"isGlobalIdle":false}}
{"t":3.0,"decisions":{"1":{"target":{"rpm":5000}}},"actions":{"toClaim":[],"toRelease":[],"targets":{"1":5000},"forceTestEnabled":true,"stoppedFans":[],"isGlobalIdle":false}}
)");
}

class WatchCommand : public CommandTest {};

TEST_F(WatchCommand, WithoutATerminalEachReadingIsALine) {
  ASSERT_EQ(run({"watch", "--seconds", "5"}), ExitStatus::done);
  const std::string rest =
      "  Fan 0 2317 RPM  Fan 1 5000 RPM  hottest CPU 61.5 °C (Working); 1 of 2 fans held";
  EXPECT_EQ(linesOf(out.text), (std::vector{"t=0.0" + rest, "t=2.0" + rest, "t=4.0" + rest}));
}

TEST_F(WatchCommand, OnATerminalItDrawsOverItselfAndGivesTheCursorBack) {
  out.terminal = true;
  ASSERT_EQ(run({"watch", "--seconds", "3"}), ExitStatus::done);
  const std::string hide = "\x1b[?25l";
  const std::string show = "\x1b[?25h";
  EXPECT_EQ(out.text.find(hide), out.text.rfind(hide));
  EXPECT_NE(out.text.find(hide), std::string::npos);
  EXPECT_EQ(out.text.substr(out.text.size() - show.size()), show);
  EXPECT_NE(out.text.find("\x1b[9A\r"), std::string::npos) << out.text; // Two fans, two sensor rows, frame.
  EXPECT_EQ(out.text.find("\x1b[2J"), std::string::npos);
}

TEST_F(WatchCommand, AStopGivesTheCursorBack) {
  out.terminal = true;
  out.onFlush = [this] { stop.requestStop(); };
  ASSERT_EQ(run({"watch"}), ExitStatus::done);
  const std::string show = "\x1b[?25h";
  EXPECT_EQ(out.text.substr(out.text.size() - show.size()), show);
}

TEST_F(WatchCommand, WithoutColoursNoColourIsWritten) {
  out.terminal = true;
  ASSERT_EQ(run({"watch", "--seconds", "1"}), ExitStatus::done);
  EXPECT_EQ(out.text.find("m"),
            out.text.find("machine")); // No escape sequence ends in the letter of colours.
  EXPECT_EQ(out.text.find("[38;2"), std::string::npos);
  EXPECT_EQ(out.text.find("[0m"), std::string::npos);
}

TEST_F(WatchCommand, WithColoursTheTemperaturesHaveThem) {
  out.terminal = true;
  out.depth = ColorDepth::sixteen;
  ASSERT_EQ(run({"watch", "--seconds", "1"}), ExitStatus::done);
  EXPECT_NE(out.text.find("\x1b[93m"), std::string::npos); // The CPU is working.
  EXPECT_NE(out.text.find("\x1b[94m"), std::string::npos); // The battery is idle.
}

TEST_F(WatchCommand, OnALowTerminalTheLastLineStays) {
  out.terminal = true;
  out.extent = {.columns = 40, .rows = 5};
  ASSERT_EQ(run({"watch", "--seconds", "3"}), ExitStatus::done);
  EXPECT_NE(out.text.find("\x1b[4A\r"), std::string::npos);
  EXPECT_NE(out.text.find("hottest CPU"), std::string::npos);
  EXPECT_EQ(out.text.find("Fan 1"), std::string::npos);
}

class CommandLine : public CommandTest {};

TEST_F(CommandLine, HelpNamesTheCommandsAndStatuses) {
  EXPECT_EQ(run({"--help"}), ExitStatus::done);
  for (const char* word :
       {"snapshot", "watch", "record", "replay", "check", "Exit status", "VENTOLITH_MACHINE"}) {
    EXPECT_NE(out.text.find(word), std::string::npos) << word;
  }
}

TEST_F(CommandLine, WhatIsNotUnderstoodIsInvalid) {
  const std::vector<std::vector<std::string>> lines = {{},
                                                       {"fly"},
                                                       {"snapshot", "--jason"},
                                                       {"record"},
                                                       {"watch", "--seconds", "-1"},
                                                       {"replay", "--plan", "x"}};
  for (const auto& arguments : lines) {
    err.text.clear();
    EXPECT_EQ(run(arguments), ExitStatus::invalid);
    EXPECT_EQ(err.text.rfind("ventolithctl: ", 0), 0U) << err.text;
  }
  EXPECT_EQ(out.text, "");
}

} // namespace
} // namespace ventolith::ctl
