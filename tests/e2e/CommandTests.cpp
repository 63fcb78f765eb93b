// The commands of `ventolithctl` that only look, and the status that each ends with.
#include "e2e/Machines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <memory>

namespace ventolith::e2e {
namespace {

using nlohmann::json;

const Environment simulatedMacBook = {{"VENTOLITH_MACHINE", "simulated:macbook-pro"}};
const std::string plans = std::string(VENTOLITH_DATA) + "/plans/";

// Snapshot

/// The degrees in thousandths: a machine carries single floats.
json rounded(json temperatures) {
  for (json& sensor : temperatures)
    sensor["celsius"] = std::llround(sensor.at("celsius").get<double>() * 1000);
  return temperatures;
}

struct SnapshotOfTree {
  explicit SnapshotOfTree(const std::string& treeName) : name(treeName), tree(treeName) {}

  std::string name;
  HwmonTree tree;
  Program program{"ventolithctl", {"snapshot", "--json"}, tree.environment()};
};

TEST(Snapshot, ShowsOfEveryCapturedTreeWhatItsFilesSay) {
  std::vector<std::unique_ptr<SnapshotOfTree>> runs;
  for (const std::string& name : treeNames())
    runs.push_back(std::make_unique<SnapshotOfTree>(name));
  ASSERT_FALSE(runs.empty());
  for (const auto& one : runs) {
    SCOPED_TRACE(one->name);
    const Ended ended = one->program.wait();
    ASSERT_EQ(ended.status, 0) << ended.err;
    const json snapshot = json::parse(ended.out);
    const json expected = expectedSnapshot(one->name);
    EXPECT_EQ(snapshot.at("fans"), expected.at("fans"));
    EXPECT_EQ(rounded(snapshot.at("temps")), rounded(expected.at("temps")));
  }
}

TEST(Snapshot, ChangesNothing) {
  const HwmonTree tree("macbookpro11-5");
  const auto before = tree.contents();
  EXPECT_EQ(run("ventolithctl", {"snapshot"}, tree.environment()).status, 0);
  EXPECT_EQ(tree.contents(), before);
  EXPECT_FALSE(tree.hasClaims());
}

// Watch

TEST(Watch, WritesALineAReadingWhereThereIsNoTerminal) {
  const HwmonTree tree("macbookpro11-5");
  Program watch("ventolithctl", {"watch", "--seconds", "2"}, tree.environment());
  const Ended ended = watch.wait();
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(ended.out.find('\x1b'), std::string::npos) << ended.out;
  const auto lines = watch.outLines();
  ASSERT_EQ(lines.size(), 2u) << ended.out;
  const std::string reading = "  Fan 0 3139 RPM  Fan 1 2901 RPM  hottest GPU 59.0 °C (Normal); "
                              "the firmware drives the fans";
  EXPECT_EQ(lines[0], "t=0.0" + reading);
  EXPECT_EQ(lines[1], "t=2.0" + reading);
}

TEST(Watch, IsDoneAfterAnInterrupt) {
  Program watch("ventolithctl", {"watch"}, simulatedMacBook);
  waitUntil("a reading", [&] { return !watch.outLines().empty(); });
  watch.signal(SIGINT);
  EXPECT_EQ(watch.wait().status, 0);
}

// Record and replay

TEST(Record, WritesATraceThatReplayFollowsTickByTick) {
  const TemporaryFolder folder;
  const std::string trace = (folder.path() / "trace").string();
  const Ended record = run("ventolithctl", {"record", trace, "--seconds", "1.5"}, simulatedMacBook);
  ASSERT_EQ(record.status, 0) << record.err;
  ASSERT_EQ(readLines(trace).size(), 2u) << readText(trace);

  const Ended replay =
      run("ventolithctl", {"replay", "--plan", plans + "full-blast.json", "--trace", trace, "--json"});

  EXPECT_EQ(replay.status, 0) << replay.err;
  EXPECT_EQ(std::ranges::count(replay.out, '\n'), 2) << replay.out;
  EXPECT_NE(replay.out.find("6336"), std::string::npos) << replay.out;
}

TEST(Record, WritesToAPipeWhatReplayReadsFromOne) {
  const TemporaryFolder folder;
  const Ended record = run("ventolithctl", {"record", "-", "--seconds", "0"}, simulatedMacBook);
  ASSERT_EQ(record.status, 0) << record.err;
  const auto trace = folder.write("trace", record.out);

  const Ended replay =
      run("ventolithctl", {"replay", "--plan", plans + "balanced.json", "--trace", "-"}, {}, {.in = trace});

  EXPECT_EQ(replay.status, 0) << replay.err;
  EXPECT_NE(replay.out, "");
}

// Statuses

struct Case {
  std::string name;
  std::vector<std::string> arguments;
  int status = 0;
  std::string says = {}; // On either stream.
};

void PrintTo(const Case& one, std::ostream* stream) {
  *stream << one.name;
}

class Commands : public testing::TestWithParam<Case> {};

TEST_P(Commands, EndWithTheStatusThatTheirHelpPromises) {
  const Ended ended = run("ventolithctl", GetParam().arguments, simulatedMacBook);
  EXPECT_EQ(ended.status, GetParam().status) << ended.out << ended.err;
  EXPECT_NE((ended.out + ended.err).find(GetParam().says), std::string::npos) << ended.out << ended.err;
  EXPECT_EQ(ended.err.empty(), ended.status < 2) << ended.err;
}

const std::string plan = plans + "balanced.json";
const std::string notAPlan = plans + "README.md";

INSTANTIATE_TEST_SUITE_P(
    Statuses, Commands,
    testing::Values(
        Case{"Help", {"--help"}, 0, "Exit status:"},
        Case{"HelpOfSnapshot", {"snapshot", "--help"}, 0, "--json"},
        Case{"HelpOfWatch", {"watch", "--help"}, 0, "--seconds"},
        Case{"HelpOfRecord", {"record", "--help"}, 0, "FILE"},
        Case{"HelpOfReplay", {"replay", "--help"}, 0, "--trace"},
        Case{"HelpOfCheck", {"check", "--help"}, 0, "PLAN"},
        Case{"HelpOfHold", {"hold", "--help"}, 0, "--plan"}, Case{"NoCommand", {}, 2, "ventolithctl: "},
        Case{"UnknownCommand", {"cool"}, 2, "ventolithctl: "},
        Case{"UnknownOption", {"snapshot", "--yaml"}, 2, "--yaml"},
        Case{"Snapshot", {"snapshot"}, 0, "Fan 0"}, Case{"ValidPlan", {"check", plan}, 0},
        Case{"InvalidPlan", {"check", notAPlan}, 2, notAPlan},
        Case{"MissingPlan", {"hold", "--plan", "/nowhere/plan.json"}, 2, "/nowhere/plan.json"},
        Case{"InvalidPlanToHold", {"hold", "--plan", notAPlan}, 2, notAPlan},
        Case{"InvalidTrace", {"replay", "--plan", plan, "--trace", notAPlan}, 2, notAPlan},
        Case{"NowhereToRecord", {"record", "/nowhere/trace", "--seconds", "0"}, 3, "/nowhere/trace"}),
    [](const testing::TestParamInfo<Case>& info) { return info.param.name; });

TEST(Check, EndsWithOneForAPlanThatIsValidAndOdd) {
  const TemporaryFolder folder;
  const auto odd =
      folder.write("plan.json", R"({"fans":[],"rules":[],"tuning":{"emaAlpha":1.5,"hysteresisCelsius":2,)"
                                R"("maxDeltaRPMPerTick":400,"minDwellSeconds":3}})");
  const Ended ended = run("ventolithctl", {"check", odd.string()});
  EXPECT_EQ(ended.status, 1) << ended.err;
  EXPECT_NE(ended.out, "");
}

TEST(Commands, KeepTheirStatusWhereNobodyReadsWhatTheySay) {
  const Streams noReader = {.isOutBroken = true, .isErrBroken = true};
  EXPECT_EQ(run("ventolithctl", {"cool"}, {}, noReader).status, 2);
  EXPECT_EQ(run("ventolithctl", {"check", notAPlan}, {}, noReader).status, 2);
  EXPECT_EQ(run("ventolithctl", {"snapshot"}, simulatedMacBook, noReader).status, 3);
  EXPECT_EQ(run("ventolithctl", {"--help"}, {}, noReader).status, 3);
}

struct UnreachableMachine {
  std::string machine;
  std::string says;
};

TEST(Commands, EndWithThreeWhereTheMachineCannotBeReached) {
  const std::vector<UnreachableMachine> cases = {
      {"simulated:mac-midi", R"(VENTOLITH_MACHINE="simulated:mac-midi")"},
      {"something else", "expected simulated:NAME or socket:PATH"},
      {"socket:/nowhere/mac", "simulator at /nowhere/mac"},
  };
  for (const auto& [machine, says] : cases) {
    SCOPED_TRACE(machine);
    const Ended ended = run("ventolithctl", {"snapshot"}, {{"VENTOLITH_MACHINE", machine}});
    EXPECT_EQ(ended.status, 3);
    EXPECT_EQ(ended.out, "");
    EXPECT_NE(ended.err.find(says), std::string::npos) << ended.err;
  }
}

// The simulator's own command line

TEST(SimulatorProgram, SaysInItsHelpHowItIsUsed) {
  const Ended ended = run("ventolith-simulator", {"--help"});
  EXPECT_EQ(ended.status, 0);
  for (const char* const option : {"--machine", "--socket", "--journal", "--script", "--send"})
    EXPECT_NE(ended.out.find(option), std::string::npos) << option;
}

TEST(SimulatorProgram, RefusesALineThatItDoesNotUnderstand) {
  const Simulator simulator(std::string("mac-mini"));
  EXPECT_THROW(simulator.send(R"({"weather":"fine"})"), std::runtime_error);
  EXPECT_NO_THROW(simulator.send(R"({"load":0.5})"));
}

} // namespace
} // namespace ventolith::e2e
