#include "app/selftest/HardwareReport.h"
#include "app/selftest/SelfTest.h"

#include "app/ReportText.h"
#include "app/ScriptedController.h"
#include "hardware/doubles/KeyTableSMC.h"
#include "hardware/doubles/ScriptedHIDBridge.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

namespace ventolith::app {
namespace {

using doubles::flt;
using doubles::Log;
using doubles::ui8;

class SelfTestRunTest : public testing::Test {
protected:
  SelfTestRunTest() {
    auto smc = std::make_unique<doubles::KeyTableSMC>(log_);
    auto bridge = std::make_unique<doubles::ScriptedHIDBridge>(log_);
    smc_ = smc.get();
    bridge_ = bridge.get();
    bridge_->isResolved = false;
    machine_.smc = std::move(smc);
    machine_.hid = std::move(bridge);
  }

  /// The whole run. What the sensor reader says about a missing hub goes to the process's standard error.
  bool run() {
    testing::internal::CaptureStderr();
    const bool passed = time_.clock.run(runSelfTest(time_.executor(), time_.clock, machine_, text_.output));
    standardError_ = testing::internal::GetCapturedStderr();
    return passed;
  }

  /// A machine with two fans, one without mode key, and temperatures at the hub.
  void addFansAndSensors() {
    smc_->keys = {{"FNum", ui8(2)}, {"F0Ac", flt(2317)}, {"F0Mn", flt(2000)}, {"F0Mx", flt(8000)},
                  {"F0Md", ui8(0)}, {"F1Ac", flt(2290)}, {"F1Mn", flt(2100)}, {"F1Mx", flt(7900)}};
    bridge_->isResolved = true;
    bridge_->add("NAND CH0 temp", {38.0});
    bridge_->add("PMU tdie1", {43.0, 43.5, 44.0});
  }

  /// The report up to the control sequence.
  [[nodiscard]] Lines hardwareLines() const {
    Lines lines = text_.lines();
    const auto end = std::find(lines.begin(), lines.end(), "[PreviewController] automatic()");
    lines.erase(end, lines.end());
    return lines;
  }

  support::VirtualTime time_;
  Log log_;
  hardware::Machine machine_;
  doubles::KeyTableSMC* smc_ = nullptr;
  doubles::ScriptedHIDBridge* bridge_ = nullptr;
  ReportText text_;
  std::string standardError_;
};

/// The counts that no check takes part in, made one.
std::string withoutCounts(const std::string& text) {
  const std::regex counts("(stateStream updates observed|byte count): [0-9]+");
  return std::regex_replace(text, counts, "$1: N");
}

TEST_F(SelfTestRunTest, OnAMachineWithoutFansAndSensorsItPassesToTheLetter) {
  EXPECT_TRUE(run());
  EXPECT_EQ(
      linesOf(withoutCounts(text_.printed.str())),
      (Lines{
          "=== Ventolith --selftest ===",
          "HID private API resolved: false",
          "Fans: 0",
          "Sensors: 0  (source: n/a)",
          "[PreviewController] automatic()",
          "[PreviewController] setPercent(fan: 0, percent: 50.0)",
          "[PreviewController] heartbeat()",
          "[PreviewController] fullBlast()",
          "[PreviewController] restoreAuto()",
          "ControlResult sequence: automatic=applied setPercent=applied fullBlast=applied",
          "stateStream updates observed: N",
          "PreviewController log (5 calls): automatic() | setPercent(fan: 0, percent: 50.0) | heartbeat() | "
          "fullBlast() | restoreAuto()",
          "  [PASS] PreviewController control sequence",
          "=== control-config selftest ===",
          "  [PASS] percent(at: 20) == 0 (got 0.0)",
          "  [PASS] percent(at: 30) == 0 (got 0.0)",
          "  [PASS] percent(at: 40) == 15 (got 15.0)",
          "  [PASS] percent(at: 50) == 30 (got 30.0)",
          "  [PASS] percent(at: 65) == 65 (got 65.0)",
          "  [PASS] percent(at: 80) == 100 (got 100.0)",
          "  [PASS] percent(at: 95) == 100 (got 100.0)",
          "  [PASS] plan JSON round-trip",
          "  encoded plan JSON byte count: N",
          "  [PASS] PlanEvaluator decision for fan 0 == .target(rpm: 3800) (got 3800.0)",
          "=== plan plumbing selftest ===",
          "[PreviewController] applyPlan(fans: 2, controlled: 2, rules: 1)",
          "  [PASS] PreviewController.applyPlan == .applied (got applied)",
          "  [PASS] applyConfig JSON round-trip",
          "  encoded plan JSON byte count: N",
          "=== Ventolith --selftest PASSED ===",
      }));
  EXPECT_EQ(text_.errors.str(), "");
}

TEST_F(SelfTestRunTest, TheMissingHubIsToldOnStandardErrorAlone) {
  run();
  EXPECT_EQ(standardError_, "[FanKitCore] HID sensor hub unavailable (private HID symbols did not resolve on "
                            "this OS build) — falling "
                            "back to curated SMC temp keys.\n");
  EXPECT_EQ(text_.printed.str().find("FanKitCore"), std::string::npos);
}

TEST_F(SelfTestRunTest, ZeroFansAreNoFailure) {
  smc_->keys["FNum"] = ui8(0);
  EXPECT_TRUE(run());
  EXPECT_EQ(hardwareLines(), (Lines{"=== Ventolith --selftest ===", "HID private API resolved: false",
                                    "Fans: 0", "Sensors: 0  (source: n/a)"}));
}

TEST_F(SelfTestRunTest, AMachineWithFansAndAHubIsReported) {
  addFansAndSensors();
  EXPECT_TRUE(run());
  EXPECT_EQ(hardwareLines(), (Lines{
                                 "=== Ventolith --selftest ===",
                                 "HID private API resolved: true",
                                 "Fans: 2",
                                 "  Fan 0: 2317 rpm  (min 2000, max 8000, mode 0)",
                                 "  Fan 1: 2290 rpm  (min 2100, max 7900, mode n/a)",
                                 "Sensors: 2  (source: HID)",
                                 "  [CPU]      CPU    43.5°C  (HID: SoC)",
                                 "  [SSD]      SSD    38.0°C  (HID: NAND CH0 temp)",
                             }));
  EXPECT_EQ(text_.lines().back(), "=== Ventolith --selftest PASSED ===");
  EXPECT_EQ(standardError_, "");
}

TEST_F(SelfTestRunTest, AMachineWithoutAHubIsReportedByItsSMCTemperatures) {
  smc_->keys = {{"TB0T", flt(30)}, {"TCHP", flt(50.5)}, {"TC0P", flt(55)}};
  smc_->list({"TB0T", "TC0P", "TCHP"});
  EXPECT_TRUE(run());
  EXPECT_EQ(hardwareLines(), (Lines{
                                 "=== Ventolith --selftest ===",
                                 "HID private API resolved: false",
                                 "Fans: 0",
                                 "Sensors: 2  (source: SMC)",
                                 "  [CPU]      CPU    50.5°C  (SMC: TCHP)",
                                 "  [Battery]  Battery    30.0°C  (SMC: TB0T)",
                             }));
}

TEST_F(SelfTestRunTest, ADriverThatCannotBeOpenedEndsTheRunBeforeItsFirstLine) {
  struct Row {
    hardware::SMCError error;
    const char* line;
  };
  const Row rows[] = {
      {hardware::SMCError::driverNotFound(), "Failed to open AppleSMC: AppleSMC IOKit service not found\n"},
      {hardware::SMCError::openFailed(-536870207),
       "Failed to open AppleSMC: IOServiceOpen failed: -536870207\n"},
  };
  for (const auto& [error, line] : rows) {
    smc_->openFailure = error;
    text_.errors.str("");
    EXPECT_FALSE(run());
    EXPECT_EQ(text_.printed.str(), "");
    EXPECT_EQ(text_.errors.str(), line);
    EXPECT_EQ(standardError_, "");
  }
  EXPECT_EQ(log_, (Log{"open", "open"}));
  EXPECT_EQ(time_.clock.now() - runtime::Instant(std::chrono::hours(1)), std::chrono::seconds(0));
}

TEST_F(SelfTestRunTest, TheHardwareIsOpenedOnceReadOnceAndClosed) {
  addFansAndSensors();
  run();
  EXPECT_EQ(log_.front(), "open");
  EXPECT_EQ(log_.back(), "close");
  EXPECT_EQ(std::count(log_.begin(), log_.end(), "open"), 1);
  EXPECT_EQ(std::count(log_.begin(), log_.end(), "close"), 1);
  EXPECT_EQ(std::count(log_.begin(), log_.end(), "FNum"), 1);
}

TEST_F(SelfTestRunTest, AMachineWhoseEveryCallFailsStillPasses) {
  smc_->driverCode = hardware::ioReturnNotPrivileged;
  EXPECT_TRUE(run());
  EXPECT_EQ(hardwareLines().at(2), "Fans: 0");
}

TEST_F(SelfTestRunTest, TakesTheThreeDelaysOfTheSimulatedController) {
  const auto start = time_.clock.now();
  run();
  EXPECT_EQ(time_.clock.now() - start, std::chrono::milliseconds(1200));
}

TEST_F(SelfTestRunTest, ObservesAtMostTheSixStatesOfTheSequence) {
  run();
  std::smatch match;
  const std::string printed = text_.printed.str();
  ASSERT_TRUE(std::regex_search(printed, match, std::regex("stateStream updates observed: ([0-9]+)\n")));
  const int observed = std::stoi(match[1]);
  EXPECT_GE(observed, 1);
  EXPECT_LE(observed, 6);
}

TEST_F(SelfTestRunTest, ARefusedCommandFailsTheRunAtItsEnd) {
  ScriptedController refusing(time_.clock);
  refusing.percentResult = core::ControlResult::notPrivileged;
  EXPECT_FALSE(
      time_.clock.run(runChecks(time_.executor(), time_.clock, refusing, refusing.log, text_.output)));
  const Lines lines = text_.lines();
  const auto stands = [&lines](const std::string& line) {
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  };
  EXPECT_TRUE(stands("  [FAIL] PreviewController control sequence"));
  EXPECT_TRUE(stands("=== control-config selftest ==="));
  EXPECT_TRUE(stands("  [PASS] plan JSON round-trip"));
  EXPECT_TRUE(stands("=== plan plumbing selftest ==="));
  EXPECT_TRUE(stands("  [PASS] applyConfig JSON round-trip"));
  EXPECT_EQ(lines.back(), "=== Ventolith --selftest FAILED ===");
}

TEST_F(SelfTestRunTest, AControllerThatAppliesEverythingPassesTheRun) {
  ScriptedController willing(time_.clock);
  EXPECT_TRUE(time_.clock.run(runChecks(time_.executor(), time_.clock, willing, willing.log, text_.output)));
  EXPECT_EQ(text_.lines().back(), "=== Ventolith --selftest PASSED ===");
}

TEST_F(SelfTestRunTest, CanBeRunAgain) {
  EXPECT_TRUE(run());
  EXPECT_TRUE(run());
}

TEST_F(SelfTestRunTest, AReadingHasTheTimeOfItsEnd) {
  addFansAndSensors();
  const auto start = time_.clock.wallTime();
  const auto reading = time_.clock.run(readHardware(time_.executor(), time_.clock, machine_, text_.output));
  ASSERT_TRUE(reading.has_value());
  EXPECT_TRUE(reading->isHIDAvailable);
  EXPECT_EQ(reading->snapshot.timestamp, start + std::chrono::milliseconds(80));
}

} // namespace
} // namespace ventolith::app
