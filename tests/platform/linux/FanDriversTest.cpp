// What each kind of driver is told, in which order.
#include "platform/linux/HwmonTree.h"

#include <gtest/gtest.h>

namespace ventolith::platform {
namespace {

using Names = std::vector<std::string>;

/// A tree with one fan of the kind in question as fan 0.
struct FanDrivers : testing::Test {
  HwmonTree tree;

  [[nodiscard]] std::string text(const std::string& file) const { return tree.text("hwmon0/" + file); }
};

// Intel Macs

TEST_F(FanDrivers, IntelMacIsTakenByTheManualFileAndDrivenByTheOutputFile) {
  tree.addIntelMac("hwmon0");
  Driver driver(tree);
  FileWatch watch(tree.root() / "hwmon0");

  EXPECT_EQ(driver.keys.write("F0Md", 1), applied);
  EXPECT_EQ(driver.keys.writeFloat("F0Tg", 3000.4), applied);

  EXPECT_EQ(watch.written(), (Names{"fan1_manual", "fan1_output"}));
  EXPECT_EQ(text("fan1_manual"), "1");
  EXPECT_EQ(text("fan1_output"), "3000");
  EXPECT_EQ(driver.keys.read("F0Tg"), 3000);
}

TEST_F(FanDrivers, ShorterNumberLeavesNothingOfTheLongerOneBefore) {
  tree.addIntelMac("hwmon0");
  tree.set("hwmon0/fan1_max", "16000");
  Driver driver(tree);
  driver.keys.write("F0Md", 1);
  driver.keys.writeFloat("F0Tg", 10000);
  ASSERT_EQ(text("fan1_output"), "10000");

  driver.keys.writeFloat("F0Tg", 300);

  EXPECT_EQ(text("fan1_output"), "300");
}

TEST_F(FanDrivers, IntelMacIsGivenBackByTheManualFileAlone) {
  tree.addIntelMac("hwmon0");
  Driver driver(tree);
  driver.keys.write("F0Md", 1);
  driver.keys.writeFloat("F0Tg", 3000);
  FileWatch watch(tree.root() / "hwmon0");

  EXPECT_EQ(driver.keys.write("F0Md", 0), applied);

  EXPECT_EQ(watch.written(), Names{"fan1_manual"});
  EXPECT_EQ(text("fan1_manual"), "0");
}

TEST_F(FanDrivers, IntelMacThatNobodyHoldsIsSetToAutomaticAllTheSame) {
  tree.addIntelMac("hwmon0");
  tree.set("hwmon0/fan1_manual", "1");
  Driver driver(tree);

  EXPECT_EQ(driver.keys.write("F0Md", 0), applied);

  EXPECT_EQ(text("fan1_manual"), "0");
}

TEST_F(FanDrivers, ManualControlThatStoodBeforeTheClaimComesBackWithItsSpeed) {
  tree.addIntelMac("hwmon0");
  tree.set("hwmon0/fan1_manual", "1");
  tree.set("hwmon0/fan1_output", "4444");
  Driver driver(tree);
  driver.keys.write("F0Md", 1);
  driver.keys.writeFloat("F0Tg", 1500);

  EXPECT_EQ(driver.keys.write("F0Md", 0), applied);
  EXPECT_EQ(driver.keys.write("F0Md", 0), applied); // A second release must not end what was put back.

  EXPECT_EQ(text("fan1_manual"), "1");
  EXPECT_EQ(text("fan1_output"), "4444");
}

// Apple-silicon Macs

TEST_F(FanDrivers, AppleSiliconIsTakenAtTheSpeedThatItRuns) {
  tree.addAppleSilicon("hwmon0");
  Driver driver(tree);

  EXPECT_EQ(driver.keys.write("F0Md", 1), applied);

  EXPECT_EQ(text("fan1_target"), "2000");
  EXPECT_EQ(driver.keys.read("F0Md"), 1);
}

TEST_F(FanDrivers, AppleSiliconFanThatStandsStillIsTakenAtItsMinimum) {
  tree.addAppleSilicon("hwmon0");
  tree.set("hwmon0/fan1_input", "0");
  Driver driver(tree);

  driver.keys.write("F0Md", 1);

  EXPECT_EQ(text("fan1_target"), "1200");
}

TEST_F(FanDrivers, AppleSiliconFanOfUnknownSpeedIsTakenAtItsMaximum) {
  tree.addAppleSilicon("hwmon0");
  tree.set("hwmon0/fan1_input", "garbage");
  Driver driver(tree);

  driver.keys.write("F0Md", 1);

  EXPECT_EQ(text("fan1_target"), "5000");
}

TEST_F(FanDrivers, AppleSiliconTakenAgainIsToldItsLastTarget) {
  tree.addAppleSilicon("hwmon0");
  Driver driver(tree);
  driver.keys.write("F0Md", 1);
  driver.keys.writeFloat("F0Tg", 3100);
  tree.set("hwmon0/fan1_target", "0");

  driver.keys.write("F0Md", 1);

  EXPECT_EQ(text("fan1_target"), "3100");
}

TEST_F(FanDrivers, AppleSiliconIsGivenBackByATargetOfZero) {
  tree.addAppleSilicon("hwmon0");
  Driver driver(tree);
  driver.keys.write("F0Md", 1);

  EXPECT_EQ(driver.keys.write("F0Md", 0), applied);

  EXPECT_EQ(text("fan1_target"), "0");
  EXPECT_EQ(driver.keys.read("F0Md"), 0);
}

TEST_F(FanDrivers, AppleSiliconOfUnknownMinimumIsNotGivenBackByAStopRequest) {
  tree.addAppleSilicon("hwmon0");
  tree.remove("hwmon0/fan1_min");
  Driver driver(tree);
  driver.keys.write("F0Md", 1);

  driver.keys.writeFloat("F0Tg", 0);

  EXPECT_EQ(text("fan1_target"), "1");
}

TEST_F(FanDrivers, AppleSiliconIsShownOnlyWhereTheModuleParameterForbidsControl) {
  struct Case {
    const char* parameter;
    bool isControllable;
  };
  tree.addAppleSilicon("hwmon0");
  for (const Case& one :
       {Case{"Y", true}, Case{"1", true}, Case{"N", false}, Case{"0", false}, Case{"", false}}) {
    tree.set("../../module/macsmc_hwmon/parameters/fan_control", one.parameter);
    Driver driver(tree);
    EXPECT_EQ(driver.keys.read("F0Md").has_value(), one.isControllable) << '"' << one.parameter << '"';
    EXPECT_EQ(driver.keys.read("F0Ac"), 2000);
  }
}

// Graphics cards

TEST_F(FanDrivers, GraphicsCardIsTakenByItsEnableFileAndNotByItsDuty) {
  tree.addGraphicsCard("hwmon0");
  Driver driver(tree);
  FileWatch watch(tree.root() / "hwmon0");

  EXPECT_EQ(driver.keys.write("F0Md", 1), applied);
  EXPECT_EQ(driver.keys.writeFloat("F0Tg", 2000), applied);
  EXPECT_EQ(driver.keys.write("F0Md", 0), applied);

  EXPECT_EQ(watch.written(), (Names{"fan1_enable", "fan1_target", "fan1_enable"}));
  EXPECT_EQ(text("fan1_enable"), "0");
  EXPECT_EQ(text("fan1_target"), "2000");
  EXPECT_EQ(text("pwm1"), "41");
}

TEST_F(FanDrivers, GraphicsCardThatNobodyHoldsStaysUntouched) {
  tree.addGraphicsCard("hwmon0");
  Driver driver(tree);
  FileWatch watch(tree.root() / "hwmon0");

  EXPECT_EQ(driver.keys.write("F0Md", 0), applied);

  EXPECT_EQ(watch.written(), Names{});
}

// Main boards

TEST_F(FanDrivers, MainBoardIsDrivenByDutyAndGetsItsOwnAutomaticModeBack) {
  tree.addMainBoard("hwmon0");
  Driver driver(tree);
  FileWatch watch(tree.root() / "hwmon0");

  EXPECT_EQ(driver.keys.write("F0Md", 1), applied);
  EXPECT_EQ(text("pwm1_enable"), "1");
  EXPECT_EQ(driver.keys.writeFloat("F0Tg", 1000), applied);
  EXPECT_EQ(text("pwm1"), "128");
  EXPECT_EQ(driver.keys.read("F0Tg"), 1000);
  EXPECT_EQ(driver.keys.write("F0Md", 0), applied);

  EXPECT_EQ(watch.written(), (Names{"pwm1_enable", "pwm1", "pwm1_enable"}));
  EXPECT_EQ(text("pwm1_enable"), "5");
}

TEST_F(FanDrivers, MainBoardInManualOfWhichNothingIsKnownIsSetToAutomatic) {
  tree.addMainBoard("hwmon0");
  tree.set("hwmon0/pwm1_enable", "1");
  Driver driver(tree);

  EXPECT_EQ(driver.keys.write("F0Md", 0), applied);

  EXPECT_EQ(text("pwm1_enable"), "2");
}

TEST_F(FanDrivers, MainBoardInAnyOtherModeThatNobodyHoldsStaysUntouched) {
  tree.addMainBoard("hwmon0");
  for (const char* mode : {"0", "2", "5"}) {
    tree.set("hwmon0/pwm1_enable", mode);
    Driver driver(tree);
    EXPECT_EQ(driver.keys.write("F0Md", 0), applied);
    EXPECT_EQ(text("pwm1_enable"), mode);
  }
}

TEST_F(FanDrivers, MainBoardManualBeforeTheClaimGetsItsDutyBack) {
  tree.addMainBoard("hwmon0");
  tree.set("hwmon0/pwm1_enable", "1");
  tree.set("hwmon0/pwm1", "200");
  Driver driver(tree);
  FileWatch watch(tree.root() / "hwmon0");

  driver.keys.write("F0Md", 1);
  driver.keys.writeFloat("F0Tg", 100);
  driver.keys.write("F0Md", 0);
  driver.keys.write("F0Md", 0);

  EXPECT_EQ(watch.written(), (Names{"pwm1_enable", "pwm1", "pwm1_enable", "pwm1"}));
  EXPECT_EQ(text("pwm1_enable"), "1");
  EXPECT_EQ(text("pwm1"), "200");
}

TEST_F(FanDrivers, MainBoardWhoseModeDoesNotReadIsGivenBackToAutomatic) {
  tree.addMainBoard("hwmon0");
  tree.set("hwmon0/pwm1_enable", "unknown");
  Driver driver(tree);
  driver.keys.write("F0Md", 1);

  EXPECT_EQ(driver.keys.write("F0Md", 0), applied);

  EXPECT_EQ(text("pwm1_enable"), "2");
}

} // namespace
} // namespace ventolith::platform
