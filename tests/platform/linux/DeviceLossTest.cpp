#include "platform/linux/HwmonTree.h"

#include <gtest/gtest.h>

namespace ventolith::platform {
namespace {

namespace fs = std::filesystem;

/// A processor in hwmon0 and a main board's fan, fan 0, in hwmon2.
struct DeviceLoss : testing::Test {
  HwmonTree tree;

  DeviceLoss() {
    tree.addProcessor("hwmon0");
    tree.addMainBoard("hwmon2");
  }

  /// What a reader does first; devices that have gone are noticed here.
  static void takeSnapshot(Driver& driver) { ASSERT_TRUE(driver.keys.read("FNum")); }

  static void takeSnapshots(Driver& driver, int count) {
    for (; count > 0; --count)
      takeSnapshot(driver);
  }

  /// As many as it takes until a new device is noticed while a fan is held.
  static constexpr int untilListed = 8;

  void rename(const std::string& from, const std::string& to) const {
    fs::rename(tree.root() / from, tree.root() / to);
  }
};

TEST_F(DeviceLoss, TemperaturesEndWhenTheDeviceOfAHeldFanGoes) {
  Driver driver(tree);
  driver.keys.write("F0Md", 1);
  ASSERT_EQ(driver.keys.read("TCHP"), 50);

  tree.remove("hwmon2");

  EXPECT_EQ(driver.keys.read("FNum"), 1);
  EXPECT_EQ(driver.keys.read("TCHP"), std::nullopt);
  EXPECT_EQ(driver.keys.read("F0Ac"), std::nullopt);
}

TEST_F(DeviceLoss, FanOfADeviceThatIsNoMoreIsGivenBackAndTheMachineIsThereAgain) {
  Driver driver(tree);
  driver.keys.write("F0Md", 1);
  tree.remove("hwmon2");
  takeSnapshot(driver);

  EXPECT_EQ(driver.keys.write("F0Md", 0), applied);

  EXPECT_EQ(driver.keys.read("TCHP"), 50);
  EXPECT_EQ(driver.keys.read("FNum"), 0);
}

TEST_F(DeviceLoss, ModeKeyOfAFanThatIsNoMoreCanBeGivenBackButNotTaken) {
  Driver driver(tree);
  tree.remove("hwmon2");
  ASSERT_EQ(driver.keys.read("FNum"), 0);

  EXPECT_EQ(driver.keys.write("F0Md", 0), applied);
  EXPECT_EQ(driver.keys.write("F0Md", 1), gone);
  EXPECT_EQ(driver.keys.read("F0Md"), std::nullopt);
}

TEST_F(DeviceLoss, RenumberedDeviceEndsTheTemperaturesAndIsGivenBackWhereItIs) {
  Driver driver(tree);
  driver.keys.write("F0Md", 1);
  driver.keys.writeFloat("F0Tg", 500);
  rename("hwmon2", "hwmon5");
  takeSnapshot(driver);
  ASSERT_EQ(driver.keys.read("TCHP"), std::nullopt);

  EXPECT_EQ(driver.keys.write("F0Md", 0), applied);

  EXPECT_EQ(tree.text("hwmon5/pwm1_enable"), "5");
  EXPECT_EQ(driver.keys.read("TCHP"), 50);
  EXPECT_EQ(driver.keys.read("F0Ac"), 900);
}

TEST_F(DeviceLoss, RenumberedDeviceIsFoundByItsLinksInACapturedTree) {
  const HwmonTree mac("asahi-j314s-mbp14-m1pro-fancontrol");
  Driver driver(mac);
  ASSERT_EQ(driver.keys.write("F1Md", 1), applied);
  ASSERT_EQ(mac.text("hwmon0/fan2_target"), "1350");
  const fs::path devices = mac.sys() / "devices/platform/soc/smc/macsmc-hwmon/hwmon";
  fs::rename(devices / "hwmon0", devices / "hwmon7");
  fs::remove(mac.root() / "hwmon0");
  fs::create_directory_symlink("../../devices/platform/soc/smc/macsmc-hwmon/hwmon/hwmon7",
                               mac.root() / "hwmon7");
  ASSERT_EQ(driver.keys.read("FNum"), 2);
  ASSERT_EQ(driver.keys.read("TD00"), std::nullopt);

  EXPECT_EQ(driver.keys.write("F1Md", 0), applied);

  EXPECT_EQ(mac.text("hwmon7/fan2_target"), "0");
  EXPECT_EQ(driver.keys.read("TD00"), 34.5);
}

TEST_F(DeviceLoss, DeviceThatTakesOverThePathIsNeverTouched) {
  Driver driver(tree);
  driver.keys.write("F0Md", 1);
  rename("hwmon2", "gone"); // Still open here, as a device is that has just been unplugged.
  tree.addGraphicsCard("hwmon2");

  takeSnapshot(driver);
  driver.keys.write("F0Md", 1);
  driver.keys.writeFloat("F0Tg", 500);
  EXPECT_EQ(driver.keys.write("F0Md", 0), applied);

  EXPECT_EQ(tree.text("hwmon2/fan1_enable"), "0");
  EXPECT_EQ(tree.text("hwmon2/fan1_target"), "530");
  EXPECT_EQ(tree.text("hwmon2/pwm1_enable"), "2");
  EXPECT_EQ(tree.text("hwmon2/pwm1"), "41");
}

TEST_F(DeviceLoss, ControlFileThatIsGoneLosesTheMachine) {
  Driver driver(tree);
  driver.keys.write("F0Md", 1);
  tree.remove("hwmon2/pwm1");

  EXPECT_EQ(driver.keys.writeFloat("F0Tg", 500), gone);

  EXPECT_EQ(driver.keys.read("TCHP"), std::nullopt);
}

TEST_F(DeviceLoss, DeviceThatIsThereButCannotBeGivenBackIsTriedAgain) {
  Driver driver(tree);
  driver.keys.write("F0Md", 1);
  tree.remove("hwmon2/pwm1_enable");
  EXPECT_EQ(driver.keys.write("F0Md", 0), gone);

  tree.set("hwmon2/pwm1_enable", "1");

  EXPECT_EQ(driver.keys.write("F0Md", 0), applied);
  EXPECT_EQ(tree.text("hwmon2/pwm1_enable"), "5");
}

TEST_F(DeviceLoss, MachineStaysLostUntilTheLastFanIsGivenBack) {
  tree.addGraphicsCard("hwmon1"); // Fan 0; the main board's is fan 1.
  Driver driver(tree);
  driver.keys.write("F0Md", 1);
  driver.keys.write("F1Md", 1);
  tree.remove("hwmon2");
  takeSnapshot(driver);

  EXPECT_EQ(driver.keys.write("F1Md", 0), applied);
  EXPECT_EQ(driver.keys.read("TCHP"), std::nullopt);
  EXPECT_EQ(driver.keys.write("F1Md", 1), gone);

  EXPECT_EQ(driver.keys.write("F0Md", 0), applied);
  EXPECT_EQ(driver.keys.read("TCHP"), 50);
  EXPECT_EQ(tree.text("hwmon1/fan1_enable"), "0");
}

TEST_F(DeviceLoss, NewDeviceThatLeavesTheFansAloneIsNoLoss) {
  Driver driver(tree);
  driver.keys.write("F0Md", 1);

  tree.set("hwmon9/name", "nvme");
  tree.set("hwmon9/temp1_input", "40000");

  takeSnapshots(driver, 2 * untilListed);
  EXPECT_EQ(driver.keys.read("FNum"), 1);
  EXPECT_EQ(driver.keys.read("TCHP"), 50);
}

TEST_F(DeviceLoss, NewDevicesAreLookedForAtEveryEighthSnapshotWhileAFanIsHeld) {
  Driver driver(tree);
  takeSnapshots(driver, 3); // Of no account, since nothing is held yet.
  driver.keys.write("F0Md", 1);
  takeSnapshots(driver, untilListed);
  tree.addIntelMac("hwmon9");

  takeSnapshots(driver, untilListed - 1);
  EXPECT_EQ(driver.keys.read("TCHP"), 50);

  takeSnapshot(driver);
  EXPECT_EQ(driver.keys.read("TCHP"), std::nullopt);
}

TEST_F(DeviceLoss, NewDeviceIsNoticedInARootThatWasMadeAnew) {
  const HwmonTree links;
  links.addMainBoard("../../devices/board");
  links.addProcessor("../../devices/processor");
  const auto makeRoot = [&] {
    fs::remove_all(links.root());
    fs::create_directory(links.root());
    fs::create_directory_symlink("../../devices/board", links.root() / "hwmon0");
    fs::create_directory_symlink("../../devices/processor", links.root() / "hwmon1");
  };
  makeRoot();
  Driver driver(links);
  ASSERT_EQ(driver.keys.write("F0Md", 1), applied);
  makeRoot();
  takeSnapshots(driver, untilListed);
  ASSERT_EQ(driver.keys.read("TCHP"), 50);

  links.addIntelMac("hwmon9");

  takeSnapshots(driver, untilListed);
  EXPECT_EQ(driver.keys.read("TCHP"), std::nullopt);
}

TEST_F(DeviceLoss, NewDeviceWhoseFanTakesTheNumberOfAHeldOneIsALoss) {
  Driver driver(tree);
  driver.keys.write("F0Md", 1);

  tree.addIntelMac("hwmon9");

  takeSnapshots(driver, untilListed);
  EXPECT_EQ(driver.keys.read("TCHP"), std::nullopt);
  EXPECT_EQ(driver.keys.write("F0Md", 0), applied);
  EXPECT_EQ(tree.text("hwmon2/pwm1_enable"), "5");
  EXPECT_EQ(driver.keys.read("F0Ac"), 2000); // The number now goes to the new one.
}

TEST_F(DeviceLoss, ClaimAfterDevicesChangedGoesToTheFanThatTheNumberMeansNow) {
  Driver driver(tree);
  tree.addIntelMac("hwmon9");

  EXPECT_EQ(driver.keys.write("F0Md", 1), applied);

  EXPECT_EQ(tree.text("hwmon9/fan1_manual"), "1");
  EXPECT_EQ(tree.text("hwmon2/pwm1_enable"), "5");
}

} // namespace
} // namespace ventolith::platform
