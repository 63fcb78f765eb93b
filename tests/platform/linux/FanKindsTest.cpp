// What holds of fans of every kind of driver.
#include "platform/linux/HwmonTree.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <limits>

namespace ventolith::platform {
namespace {

using Names = std::vector<std::string>;

struct FanKinds : testing::Test {
  HwmonTree tree;

  [[nodiscard]] std::string text(const std::string& file) const { return tree.text("hwmon0/" + file); }
};

struct SpeedCase {
  const char* name;
  void (HwmonTree::*add)(const std::string&) const;
  const char* file;
  double rpm;
  const char* written;
};

class Speeds : public testing::TestWithParam<SpeedCase> {};

TEST_P(Speeds, StayWithinWhatFanAndDriverCanDo) {
  const HwmonTree tree;
  (tree.*GetParam().add)("hwmon0");
  Driver driver(tree);
  ASSERT_EQ(driver.keys.write("F0Md", 1), applied);

  ASSERT_EQ(driver.keys.writeFloat("F0Tg", GetParam().rpm), applied);

  EXPECT_EQ(tree.text(std::string("hwmon0/") + GetParam().file), GetParam().written);
}

constexpr auto intelMac = &HwmonTree::addIntelMac;
constexpr auto appleSilicon = &HwmonTree::addAppleSilicon;
constexpr auto graphicsCard = &HwmonTree::addGraphicsCard;
constexpr auto mainBoard = &HwmonTree::addMainBoard;

INSTANTIATE_TEST_SUITE_P(
    Kinds, Speeds,
    testing::Values(SpeedCase{"IntelMacStopped", intelMac, "fan1_output", 0, "0"},
                    SpeedCase{"IntelMacNegative", intelMac, "fan1_output", -5, "0"},
                    SpeedCase{"IntelMacAboveItsMaximum", intelMac, "fan1_output", 9000, "6000"},
                    SpeedCase{"AppleSiliconStopped", appleSilicon, "fan1_target", 0, "1200"},
                    SpeedCase{"AppleSiliconWithin", appleSilicon, "fan1_target", 3333.6, "3334"},
                    SpeedCase{"AppleSiliconAboveItsMaximum", appleSilicon, "fan1_target", 9000, "5000"},
                    SpeedCase{"GraphicsCardStopped", graphicsCard, "fan1_target", 0, "400"},
                    SpeedCase{"GraphicsCardAboveItsMaximum", graphicsCard, "fan1_target", 1e9, "3300"},
                    SpeedCase{"MainBoardStopped", mainBoard, "pwm1", 0, "0"},
                    SpeedCase{"MainBoardBarelyTurning", mainBoard, "pwm1", 1, "1"},
                    SpeedCase{"MainBoardRoundedUp", mainBoard, "pwm1", 1001, "128"},
                    SpeedCase{"MainBoardOneDutyMore", mainBoard, "pwm1", 1004, "129"},
                    SpeedCase{"MainBoardAtItsMaximum", mainBoard, "pwm1", 2000, "255"},
                    SpeedCase{"MainBoardAboveItsMaximum", mainBoard, "pwm1", 9000, "255"}),
    [](const testing::TestParamInfo<SpeedCase>& info) { return info.param.name; });

TEST_F(FanKinds, IntelMacOfUnknownMaximumTakesWhatItsDriverCanWrite) {
  tree.addIntelMac("hwmon0");
  tree.remove("hwmon0/fan1_max");
  Driver driver(tree);
  driver.keys.write("F0Md", 1);

  driver.keys.writeFloat("F0Tg", 99999);

  EXPECT_EQ(text("fan1_output"), "16383");
}

struct WritesCase {
  const char* name;
  void (HwmonTree::*add)(const std::string&) const;
  Names written;
};

class AfterSleep : public testing::TestWithParam<WritesCase> {};

TEST_P(AfterSleep, NextTargetTakesTheFanAnewOnce) {
  const HwmonTree tree;
  (tree.*GetParam().add)("hwmon0");
  Driver driver(tree);
  driver.keys.write("F0Md", 1);
  driver.keys.writeFloat("F0Tg", 1500);
  driver.asleep += std::chrono::seconds(60);
  FileWatch watch(tree.root() / "hwmon0");

  EXPECT_EQ(driver.keys.writeFloat("F0Tg", 1600), applied);
  EXPECT_EQ(watch.written(), GetParam().written);

  driver.keys.writeFloat("F0Tg", 1700);
  EXPECT_EQ(watch.written(), Names{GetParam().written.back()});
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, AfterSleep,
    testing::Values(WritesCase{"IntelMac", intelMac, {"fan1_manual", "fan1_output"}},
                    WritesCase{"AppleSilicon", appleSilicon, {"fan1_target", "fan1_target"}},
                    WritesCase{"GraphicsCard", graphicsCard, {"fan1_enable", "fan1_target"}},
                    WritesCase{"MainBoard", mainBoard, {"pwm1_enable", "pwm1"}}),
    [](const testing::TestParamInfo<WritesCase>& info) { return info.param.name; });

class Reassertions : public testing::TestWithParam<WritesCase> {};

TEST_P(Reassertions, WriteOneFileAndReadNone) {
  const HwmonTree tree;
  (tree.*GetParam().add)("hwmon0");
  Driver driver(tree);
  driver.keys.write("F0Md", 1);
  FileWatch writes(tree.root() / "hwmon0");
  FileWatch reads(tree.root() / "hwmon0");

  EXPECT_EQ(driver.keys.write("F0Md", 1), applied);

  EXPECT_EQ(writes.written(), GetParam().written);
  EXPECT_EQ(reads.read(), Names{});
}

INSTANTIATE_TEST_SUITE_P(Kinds, Reassertions,
                         testing::Values(WritesCase{"IntelMac", intelMac, {"fan1_manual"}},
                                         WritesCase{"AppleSilicon", appleSilicon, {"fan1_target"}},
                                         WritesCase{"GraphicsCard", graphicsCard, {"fan1_enable"}},
                                         WritesCase{"MainBoard", mainBoard, {"pwm1_enable"}}),
                         [](const testing::TestParamInfo<WritesCase>& info) { return info.param.name; });

TEST_F(FanKinds, ClaimGoesByTheLimitsAsTheyAreThen) {
  tree.addGraphicsCard("hwmon0");
  Driver driver(tree);
  tree.set("hwmon0/fan1_max", "2500");
  ASSERT_EQ(driver.keys.write("F0Md", 1), applied);

  driver.keys.writeFloat("F0Tg", 9000);

  EXPECT_EQ(text("fan1_target"), "2500");
}

TEST_F(FanKinds, ClocksThatDifferByLessThanHalfASecondAreNoSleep) {
  tree.addIntelMac("hwmon0");
  Driver driver(tree);
  driver.keys.write("F0Md", 1);
  driver.keys.writeFloat("F0Tg", 1500);
  driver.asleep += std::chrono::milliseconds(500);
  FileWatch watch(tree.root() / "hwmon0");

  driver.keys.writeFloat("F0Tg", 1600);

  EXPECT_EQ(watch.written(), Names{"fan1_output"});
}

TEST_F(FanKinds, FanThatTheFirmwareTookBackReadsReclaimed) {
  tree.addIntelMac("hwmon0");
  Driver driver(tree);
  driver.keys.write("F0Md", 1);
  tree.set("hwmon0/fan1_manual", "0");

  EXPECT_EQ(driver.keys.read("F0Md"), 3);

  driver.keys.write("F0Md", 1);
  EXPECT_EQ(driver.keys.read("F0Md"), 1);
}

TEST_F(FanKinds, FanInSomebodyElsesManualControlReadsManual) {
  tree.addMainBoard("hwmon0");
  tree.set("hwmon0/pwm1_enable", "1");
  Driver driver(tree);

  EXPECT_EQ(driver.keys.read("F0Md"), 1);
}

TEST_F(FanKinds, TargetForAFanThatNobodyTookIsRefused) {
  tree.addAppleSilicon("hwmon0");
  Driver driver(tree);

  EXPECT_EQ(driver.keys.writeFloat("F0Tg", 3000), notWritable);

  EXPECT_EQ(text("fan1_target"), "0");
}

TEST_F(FanKinds, TargetThatIsNoNumberIsRefused) {
  tree.addAppleSilicon("hwmon0");
  Driver driver(tree);
  driver.keys.write("F0Md", 1);

  EXPECT_EQ(driver.keys.writeFloat("F0Tg", std::numeric_limits<double>::quiet_NaN()), notWritable);
  EXPECT_EQ(driver.keys.writeFloat("F0Tg", std::numeric_limits<double>::infinity()), notWritable);

  EXPECT_EQ(text("fan1_target"), "2000");
}

struct ControlFileCase {
  void (HwmonTree::*add)(const std::string&) const;
  const char* file;
};

TEST_F(FanKinds, FanIsOnlyShownWhereAControlFileHasNoWriteBit) {
  for (const ControlFileCase& one :
       {ControlFileCase{intelMac, "fan1_manual"}, ControlFileCase{intelMac, "fan1_output"},
        ControlFileCase{appleSilicon, "fan1_target"}, ControlFileCase{mainBoard, "pwm1"},
        ControlFileCase{mainBoard, "pwm1_enable"}}) {
    const HwmonTree shown;
    (shown.*one.add)("hwmon0");
    ::chmod((shown.root() / "hwmon0" / one.file).c_str(), 0444);
    Driver driver(shown);
    EXPECT_EQ(driver.keys.typeOf("F0Md"), "") << one.file;
    EXPECT_EQ(driver.keys.typeOf("F0Tg"), "") << one.file;
    EXPECT_TRUE(driver.keys.read("F0Ac")) << one.file;
  }
}

TEST_F(FanKinds, FanIsOnlyShownWhereItsDutyCannotBeReckoned) {
  for (const char* missing : {"fan1_max", "pwm1", "pwm1_enable"}) {
    const HwmonTree one;
    one.addMainBoard("hwmon0");
    one.remove(std::string("hwmon0/") + missing);
    Driver driver(one);
    EXPECT_EQ(driver.keys.typeOf("F0Md"), "") << missing;
  }
  tree.addMainBoard("hwmon0");
  tree.set("hwmon0/fan1_max", "0");
  Driver driver(tree);
  EXPECT_EQ(driver.keys.typeOf("F0Md"), "");
}

TEST_F(FanKinds, DutyOfAnotherNumberIsNotTheFans) {
  tree.set("hwmon0/name", "nct6798");
  tree.set("hwmon0/fan1_input", "900");
  tree.set("hwmon0/fan1_max", "2000");
  tree.set("hwmon0/pwm2", "128");
  tree.set("hwmon0/pwm2_enable", "5");
  Driver driver(tree);

  EXPECT_EQ(driver.keys.read("F0Ac"), 900);
  EXPECT_EQ(driver.keys.typeOf("F0Md"), "");
}

} // namespace
} // namespace ventolith::platform
