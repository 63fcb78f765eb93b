// Hold on a simulated Mac of another process, while things go wrong with that.
#include "e2e/Hold.h"
#include "e2e/Machines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <set>

namespace ventolith::e2e {
namespace {

using nlohmann::json;

const std::map<int, int> oneFan = {{0, 3000}};
const std::map<int, int> bothFans = {{0, 3000}, {1, 2500}};

/// Every fan of the machine, by the machine itself and by the last writes in its journal.
void expectEveryFanBack(const Simulator& simulator,
                        const std::set<std::string>& modeKeys = {"F0Md", "F1Md"}) {
  EXPECT_EQ(simulator.fanModes(), std::vector<int>(modeKeys.size(), 0));
  for (const std::string& key : modeKeys)
    EXPECT_EQ(simulator.lastWrite(key), "00") << key;
  EXPECT_EQ(simulator.lastWrite("Ftst"), "00");
}

void endAndExpectEveryFanBack(Hold& hold, const Simulator& simulator) {
  hold.signal(SIGTERM);
  const Ended ended = hold.wait();
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_TRUE(ended.out.ends_with(everyFanIsBack)) << ended.out;
  expectEveryFanBack(simulator);
}

/// A hold that ended of its own accord, having said why.
void expectReleased(Hold& hold, const std::string& reason) {
  const Ended ended = hold.wait();
  EXPECT_EQ(ended.status, 3) << ended.err;
  EXPECT_NE(ended.out.find(reason), std::string::npos) << ended.out;
  EXPECT_TRUE(ended.out.ends_with(everyFanIsBack)) << ended.out;
}

std::vector<JournalLine> since(std::size_t place, const Simulator& simulator) {
  const auto journal = simulator.journal();
  return {journal.begin() + static_cast<std::ptrdiff_t>(place), journal.end()};
}

/// A write of manual mode that the machine took, in what was journalled from `place` on.
bool isTakenAgain(std::size_t place, const Simulator& simulator, const std::string& modeKey) {
  return std::ranges::any_of(since(place, simulator), [&](const JournalLine& line) {
    return line.operation == "write" && line.key == modeKey && line.bytes == "01" && line.result == 0 &&
           !line.isDriverFailure;
  });
}

/// How many passes have set fan 0's speed, in what was journalled from `place` on.
std::ptrdiff_t passesSince(std::size_t place, const Simulator& simulator) {
  return std::ranges::count_if(since(place, simulator), [](const JournalLine& line) {
    return line.operation == "write" && line.key == "F0Tg" && line.result == 0;
  });
}

// The road without faults

TEST(HoldOnSimulator, WaitsForTheLatchToLetGoAndHoldsBothFans) {
  const Simulator simulator(std::string("macbook-pro"));
  Hold hold(simulator.environment(), bothFans);
  hold.waitUntilHolding();

  EXPECT_EQ(simulator.fanModes(), (std::vector<int>{1, 1}));
  EXPECT_EQ(simulator.lastWrite("F0Tg"), "00803b45"); // 3000 and 2500 as they stand in memory.
  EXPECT_EQ(simulator.lastWrite("F1Tg"), "00401c45");
  endAndExpectEveryFanBack(hold, simulator);
}

TEST(HoldOnSimulator, GivesTheFanBackInTheMiddleOfAReading) {
  const Simulator simulator(std::string("mac-mini")); // Its keys take long to read.
  Hold hold(simulator.environment(), oneFan);
  hold.waitUntilHolding();
  const std::size_t held = simulator.journal().size();
  waitUntil("a reading", [&] {
    return std::ranges::any_of(since(held, simulator),
                               [](const JournalLine& line) { return line.key == "FNum"; });
  });

  hold.signal(SIGTERM);

  const Ended ended = hold.wait();
  EXPECT_EQ(ended.status, 0) << ended.err;
  expectEveryFanBack(simulator, {"F0md"});
}

/// The writes of the keys that a pass is about, and the readings of the mode.
std::vector<std::string> passSteps(const Simulator& simulator) {
  std::vector<std::string> steps;
  for (const JournalLine& line : simulator.journal()) {
    if (line.operation == "write") steps.push_back(line.key + "=" + line.bytes);
    if (line.operation == "read" && line.key == "F0Md") steps.push_back("read F0Md");
  }
  return steps;
}

TEST(HoldOnSimulator, WritesLatchThenModeThenTargetAndReadsTheModeInEveryPass) {
  const Simulator simulator(quickMacBookPro());
  Hold hold(simulator.environment(), oneFan);
  const std::string target = "F0Tg=00803b45";
  waitUntil("three passes", [&] { return std::ranges::count(passSteps(simulator), target) >= 3; });
  endAndExpectEveryFanBack(hold, simulator);

  const auto steps = passSteps(simulator);
  const std::vector<std::string> pass = {"Ftst=01", "F0Md=01", target, "read F0Md"};
  for (auto place = std::ranges::find(steps, target); place != steps.end();
       place = std::find(place + 1, steps.end(), target)) {
    EXPECT_EQ(std::vector<std::string>(place - 2, place + 2), pass);
  }
}

TEST(HoldOnSimulator, SharesTheMachineWithAClientThatWatches) {
  const Simulator simulator(quickMacBookPro());
  Hold hold(simulator.environment(), bothFans);
  hold.waitUntilHolding();
  const Ended watch = run("ventolithctl", {"watch", "--seconds", "2"}, simulator.environment());
  EXPECT_EQ(watch.status, 0) << watch.err;
  EXPECT_NE(watch.out.find("2 of 2 fans held"), std::string::npos) << watch.out;
  endAndExpectEveryFanBack(hold, simulator);

  std::set<int> writers;
  std::set<int> readers;
  for (const JournalLine& line : simulator.journal()) {
    if (line.operation == "write") writers.insert(line.client);
    if (line.operation == "read") readers.insert(line.client);
  }
  EXPECT_EQ(writers.size(), 1u);
  EXPECT_GE(readers.size(), 2u);
  EXPECT_TRUE(std::ranges::includes(readers, writers));
}

// Temperatures

TEST(HoldOnSimulator, ReleasesAMachineWhoseHubIsTooHot) {
  const Simulator simulator(quickMacBookPro());
  Hold hold(simulator.environment(), bothFans);
  hold.waitUntilHolding();
  simulator.send(R"({"temps":{"PMU tdie1":96.7}})");
  expectReleased(hold, "thermal ceiling 96°C exceeded — released to Auto");
  expectEveryFanBack(simulator);
}

TEST(HoldOnSimulator, ReleasesAMachineWhoseProcessorKeyIsTooHot) {
  const Simulator simulator(std::string("mac-mini"));
  Hold hold(simulator.environment(), oneFan);
  hold.waitUntilHolding();
  simulator.send(R"({"temps":{"TCHP":96.7}})");
  expectReleased(hold, "thermal ceiling 96°C exceeded — released to Auto");
  expectEveryFanBack(simulator, {"F0md"});
}

TEST(HoldOnSimulator, ReleasesAMachineWhoseSensorsAreGone) {
  const Simulator simulator(quickMacBookPro());
  Hold hold(simulator.environment(), bothFans);
  hold.waitUntilHolding();
  simulator.send(R"({"sensors":"gone"})");
  expectReleased(hold, "temperature data unavailable — released to Auto");
  EXPECT_TRUE(hold.hasSaid("temperature data unavailable (1/2)"));
  expectEveryFanBack(simulator);
}

std::set<std::string> keysOf(const json& temperatures) {
  std::set<std::string> keys;
  for (const json& sensor : temperatures)
    keys.insert(sensor.at("key").get<std::string>());
  return keys;
}

TEST(HoldOnSimulator, GoesOnWithTheSensorsThatMayStandStillWhenTheHubIsFrozen) {
  const Simulator simulator(quickMacBookPro());
  Hold hold(simulator.environment(), bothFans);
  hold.waitUntilHolding();
  simulator.send(R"({"sensors":"frozen"})");
  const std::size_t frozen = simulator.journal().size();
  waitUntil("two rounds", [&] { return passesSince(frozen, simulator) >= 2; });

  EXPECT_EQ(keysOf(simulator.snapshot().at("temps")),
            (std::set<std::string>{"NAND CH0 temp", "gas gauge battery"}));
  EXPECT_FALSE(hold.hasSaid("temperature data unavailable"));
  endAndExpectEveryFanBack(hold, simulator);
}

/// A hub without the two kinds of sensor that may stand still.
json withoutStillSensors(json machine) {
  json hub = json::array();
  for (const json& sensor : machine.at("hub")) {
    const auto label = sensor.at("label").get<std::string>();
    if (label != "NAND CH0 temp" && label != "gas gauge battery") hub.push_back(sensor);
  }
  machine["hub"] = std::move(hub);
  return machine;
}

TEST(HoldOnSimulator, GoesOnWithTheKeysWhenTheHubIsFrozenAltogether) {
  const Simulator simulator(withoutStillSensors(quickMacBookPro()));
  Hold hold(simulator.environment(), bothFans);
  hold.waitUntilHolding();
  simulator.send(R"({"sensors":"frozen"})");
  const std::size_t frozen = simulator.journal().size();
  waitUntil("two rounds", [&] { return passesSince(frozen, simulator) >= 2; });

  EXPECT_EQ(keysOf(simulator.snapshot().at("temps")), (std::set<std::string>{"TCHP", "TB0T"}));
  EXPECT_FALSE(hold.hasSaid("temperature data unavailable"));
  endAndExpectEveryFanBack(hold, simulator);
}

// Fans that the firmware takes back or does not let go

TEST(HoldOnSimulator, SaysThatAFanWasReclaimedAndHoldsItAgain) {
  const Simulator simulator(quickMacBookPro());
  Hold hold(simulator.environment(), bothFans, {"--json"});
  hold.waitUntilHolding();
  simulator.send(R"({"reclaim":{"0":2}})");
  hold.waitUntilSaid("reclaimed: fan(s) [0] reverted to mode 3");
  waitUntil("a fan that is held again",
            [&] { return hold.lines().back().find(R"("isHolding":true)") != std::string::npos; });

  EXPECT_EQ(simulator.fanModes(), (std::vector<int>{1, 1}));
  for (const std::string& line : hold.lines()) {
    const json state = json::parse(line);
    if (state.contains("lastError")) EXPECT_FALSE(state.at("isHolding").get<bool>()) << line;
  }
  hold.signal(SIGTERM);
  EXPECT_EQ(hold.wait().status, 0);
  expectEveryFanBack(simulator);
}

TEST(HoldOnSimulator, SaysThatAClaimWasRejectedAndClaimsTheFanOnceItCan) {
  const Simulator simulator(quickMacBookPro());
  simulator.send(R"({"refuse":{"F0Md":5}})");
  Hold hold(simulator.environment(), bothFans);
  hold.waitUntilSaid("ventolithctl: rejected(code: 5)\n");
  hold.waitUntilHolding(); // The other fan.
  EXPECT_EQ(simulator.lastWrite("F0Md"), std::nullopt);

  simulator.send(R"({"refuse":{"F0Md":null}})");
  hold.waitUntilSaid("holding; Fan 0: Manual, 3000 RPM; Fan 1: Manual, 2500 RPM\n");

  EXPECT_EQ(simulator.fanModes(), (std::vector<int>{1, 1}));
  endAndExpectEveryFanBack(hold, simulator);
}

TEST(HoldOnSimulator, OutlastsADriverThatFailsForAWhile) {
  const Simulator simulator(quickMacBookPro());
  Hold hold(simulator.environment(), bothFans);
  hold.waitUntilHolding();
  const std::size_t failing = simulator.journal().size();
  simulator.send(R"({"driverFailure":{"F0Md":true}})");
  waitUntil("a call that fails",
            [&] { return std::ranges::any_of(since(failing, simulator), &JournalLine::isDriverFailure); });
  const std::size_t cured = simulator.journal().size();
  simulator.send(R"({"driverFailure":{"F0Md":false}})");
  waitUntil("a fan that is taken again", [&] { return isTakenAgain(cured, simulator, "F0Md"); });
  endAndExpectEveryFanBack(hold, simulator);
}

TEST(HoldOnSimulator, EndsRightAwayWhereNoFanOfThePlanHasAModeKey) {
  const Simulator simulator(quickMacBookPro());
  simulator.send(R"({"removeKeys":["F0Md"]})");
  Hold hold(simulator.environment(), oneFan);
  const Ended ended = hold.wait();
  EXPECT_EQ(ended.status, 3);
  EXPECT_NE(ended.err.find("neither F<n>Md nor F<n>md exists on this machine"), std::string::npos)
      << ended.err;
  EXPECT_EQ(simulator.lastWrite("F0Tg"), std::nullopt);
}

TEST(HoldOnSimulator, GivesTheFansBackInTheMiddleOfAClaimThatGetsNowhere) {
  const Simulator simulator(quickMacBookPro());
  simulator.send(R"({"refuse":{"F0Md":130}})"); // "Not yet", for ever.
  Hold hold(simulator.environment(), oneFan);
  const auto attempts = [&] {
    return std::ranges::count_if(simulator.journal(), [](const JournalLine& line) {
      return line.operation == "write" && line.key == "F0Md" && line.bytes == "01";
    });
  };
  waitUntil("a claim under way", [&] { return attempts() > 3; });
  const auto place = simulator.journal().size();
  hold.signal(SIGTERM);
  waitUntil("a try to give the fan back", [&] {
    return std::ranges::any_of(since(place, simulator), [](const JournalLine& line) {
      return line.operation == "write" && line.key == "F0Md" && line.bytes == "00";
    });
  });
  simulator.send(R"({"refuse":{"F0Md":null}})");
  EXPECT_EQ(hold.wait().status, 0);
  expectEveryFanBack(simulator);
  EXPECT_LT(attempts(), 100); // The claim was not waited for: its budget is a hundred attempts.
}

// Fans that do not come back

struct Obstacle {
  std::string name;
  std::string fault;
  std::string cure;
};

void PrintTo(const Obstacle& obstacle, std::ostream* stream) {
  *stream << obstacle.name;
}

class HandingBack : public testing::TestWithParam<Obstacle> {};

TEST_P(HandingBack, IsTriedAgainWhateverSignalsComeUntilTheFanIsBack) {
  const Simulator simulator(quickMacBookPro());
  Hold hold(simulator.environment(), bothFans);
  hold.waitUntilHolding();
  simulator.send(GetParam().fault);
  hold.signal(SIGINT);
  hold.waitUntilSaid("trying again\n");
  hold.signal(SIGINT);
  hold.signal(SIGTERM);
  simulator.send(GetParam().cure);

  const Ended ended = hold.wait();

  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_TRUE(ended.out.ends_with(everyFanIsBack)) << ended.out;
  expectEveryFanBack(simulator);
}

INSTANTIATE_TEST_SUITE_P(
    Obstacles, HandingBack,
    testing::Values(Obstacle{"Refusal", R"({"refuse":{"F0Md":5}})", R"({"refuse":{"F0Md":null}})"},
                    Obstacle{"DriverFailure", R"({"driverFailure":{"F0Md":"write"}})",
                             R"({"driverFailure":{"F0Md":false}})"},
                    Obstacle{"MissingKey", R"({"removeKeys":["F0Md"]})", R"({"restoreKeys":["F0Md"]})"},
                    Obstacle{"Latch", R"({"refuse":{"Ftst":5}})", R"({"refuse":{"Ftst":null}})"}),
    [](const testing::TestParamInfo<Obstacle>& info) { return info.param.name; });

TEST(HandingBack, IsTriedAgainEvenIfThatCannotBeSaid) {
  const Simulator simulator(quickMacBookPro());
  Hold hold(simulator.environment(), bothFans, {}, {.isErrBroken = true});
  hold.waitUntilHolding();
  simulator.send(R"({"refuse":{"F0Md":5}})");
  hold.signal(SIGTERM);
  waitUntil("a refusal", [&] {
    return std::ranges::any_of(simulator.journal(), [](const JournalLine& line) {
      return line.key == "F0Md" && line.bytes == "00" && line.result == 5;
    });
  });
  simulator.send(R"({"refuse":{"F0Md":null}})");

  EXPECT_EQ(hold.wait().status, 0);
  expectEveryFanBack(simulator);
}

TEST(HandingBack, IsGivenUpInTheEndAndThatIsSaidWhateverElseFailed) {
  const Simulator simulator(quickMacBookPro());
  simulator.send(R"({"refuse":{"F0Md":5}})");
  Hold hold(simulator.environment(), bothFans, {}, {.isOutBroken = true});
  const Ended ended = hold.wait();
  EXPECT_EQ(ended.status, 3);
  EXPECT_NE(
      ended.err.find("not every fan is back: failed(\"failed to restore Auto: F0Md=0 rejected (SMC 0x5)\")"),
      std::string::npos)
      << ended.err;
  EXPECT_NE(ended.err.find("standard output"), std::string::npos) << ended.err;
  EXPECT_EQ(simulator.lastWrite("F1Md"), "00"); // The other one.
}

TEST(HoldOnSimulator, EndsWhenTheMachineIsGone) {
  Simulator simulator(quickMacBookPro());
  Hold hold(simulator.environment(), bothFans);
  hold.waitUntilHolding();
  simulator.kill();
  const Ended ended = hold.wait();
  EXPECT_EQ(ended.status, 3);
  EXPECT_NE(ended.err.find("not every fan is back"), std::string::npos) << ended.err;
}

} // namespace
} // namespace ventolith::e2e
