// `ventolith --selftest`, on every machine that there is.
#include "e2e/Machines.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

#include <algorithm>
#include <memory>

namespace ventolith::e2e {
namespace {

const std::string lastLine = "=== Ventolith --selftest PASSED ===\n";

std::string fansOf(const nlohmann::json& snapshot) {
  const auto& fans = snapshot.at("fans");
  std::string text = fmt::format("Fans: {}\n", fans.size());
  for (const auto& fan : fans) {
    const std::string mode = fan.contains("mode") ? fan.at("mode").dump() : "n/a";
    text += fmt::format("  {}: {} rpm  (min {}, max {}, mode {})\n", fan.at("name").get<std::string>(),
                        fan.at("currentRPM").get<int>(), fan.at("minRPM").get<int>(),
                        fan.at("maxRPM").get<int>(), mode);
  }
  return text;
}

std::string expectedStart(const nlohmann::json& snapshot) {
  const auto& sensors = snapshot.at("temps");
  return "=== Ventolith --selftest ===\nHID private API resolved: false\n" + fansOf(snapshot) +
         fmt::format("Sensors: {}  (source: {})\n", sensors.size(), sensors.empty() ? "n/a" : "SMC");
}

TEST(SelfTest, PassesOnAComputerWithoutFansAndSensors) {
  const HwmonTree tree;
  const Ended ended = run("ventolith", {"--selftest"}, tree.environment());
  EXPECT_EQ(ended.status, 0) << ended.out;
  EXPECT_TRUE(ended.out.starts_with("=== Ventolith --selftest ===\n"
                                    "HID private API resolved: false\n"
                                    "Fans: 0\n"
                                    "Sensors: 0  (source: n/a)\n"))
      << ended.out;
  EXPECT_TRUE(ended.out.ends_with(lastLine)) << ended.out;
}

// The runs wait most of the time: those of a test are made side by side.

struct RunOnTree {
  explicit RunOnTree(const std::string& treeName) : name(treeName), tree(treeName) {}

  std::string name;
  HwmonTree tree;
  Program program{"ventolith", {"--selftest"}, tree.environment()};
};

TEST(SelfTest, PassesOnEveryCapturedTreeAndShowsItsFans) {
  std::vector<std::unique_ptr<RunOnTree>> runs;
  for (const std::string& name : treeNames())
    runs.push_back(std::make_unique<RunOnTree>(name));
  ASSERT_FALSE(runs.empty());
  for (const auto& one : runs) {
    SCOPED_TRACE(one->name);
    const Ended ended = one->program.wait();
    EXPECT_EQ(ended.status, 0) << ended.err;
    const std::string start = expectedStart(expectedSnapshot(one->name));
    EXPECT_EQ(ended.out.substr(0, start.size()), start);
    EXPECT_TRUE(ended.out.ends_with(lastLine)) << ended.out;
  }
}

struct RunOnSimulatedMachine {
  std::string name;
  std::string start;
  Program program{"ventolith", {"--selftest"}, {{"VENTOLITH_MACHINE", "simulated:" + name}}};
};

TEST(SelfTest, PassesOnEverySimulatedMachineAndShowsItsFansAsTheFirmwareHasThem) {
  RunOnSimulatedMachine runs[] = {{"macbook-pro", "=== Ventolith --selftest ===\n"
                                                  "HID private API resolved: true\n"
                                                  "Fans: 2\n"
                                                  "  Fan 0: 0 rpm  (min 1250, max 6336, mode 0)\n"
                                                  "  Fan 1: 0 rpm  (min 1350, max 6864, mode 0)\n"
                                                  "Sensors: 5  (source: HID)\n"},
                                  {"mac-mini", "=== Ventolith --selftest ===\n"
                                               "HID private API resolved: false\n"
                                               "Fans: 1\n"
                                               "  Fan 0: 1703 rpm  (min 1700, max 4400, mode 0)\n"
                                               "Sensors: 4  (source: SMC)\n"},
                                  {"mac-pro", "=== Ventolith --selftest ===\n"
                                              "HID private API resolved: true\n"
                                              "Fans: 4\n"
                                              "  Fan 0: 500 rpm  (min 500, max 2900, mode 0)\n"
                                              "  Fan 1: 800 rpm  (min 800, max 2900, mode 0)\n"
                                              "  Fan 2: 600 rpm  (min 600, max 2900, mode 0)\n"
                                              "  Fan 3: 720 rpm  (min 720, max 2800, mode 0)\n"},
                                  {"macbook-air", "=== Ventolith --selftest ===\n"
                                                  "HID private API resolved: true\n"
                                                  "Fans: 0\n"}};
  for (RunOnSimulatedMachine& one : runs) {
    SCOPED_TRACE(one.name);
    const Ended ended = one.program.wait();
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(ended.out.substr(0, one.start.size()), one.start);
    EXPECT_TRUE(ended.out.ends_with(lastLine)) << ended.out;
  }
}

TEST(SelfTest, RunsWhereverItsSwitchStands) {
  const HwmonTree tree;
  const Ended ended = run("ventolith", {"--first", "--selftest", "last"}, tree.environment());
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_TRUE(ended.out.ends_with(lastLine)) << ended.out;
}

TEST(SelfTest, FailsWhenTheMachineCannotBeReached) {
  const Ended ended = run("ventolith", {"--selftest"}, {{"VENTOLITH_MACHINE", "socket:/nowhere"}});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.out, "");
  EXPECT_TRUE(ended.err.starts_with("Failed to open AppleSMC: ")) << ended.err;
}

/// There is no display here, and in some builds no window.
TEST(Ventolith, SaysInASentenceThatItCannotShowItsWindow) {
  const HwmonTree tree;
  const Ended ended = run("ventolith", {}, tree.environment());
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.out, "");
  EXPECT_TRUE(ended.err.starts_with("ventolith: there is no display for the window; --headless") ||
              ended.err.starts_with("ventolith: this build has no window; --headless"))
      << ended.err;
  EXPECT_EQ(std::ranges::count(ended.err, '\n'), 1);
}

} // namespace
} // namespace ventolith::e2e
