#include "platform/linux/HwmonTree.h"

#include <gtest/gtest.h>

namespace ventolith::platform {
namespace {

struct Input {
  std::string driver;
  std::string label;
};

struct PartCase {
  const char* name;
  Input input;
  std::string key; // Empty if such an input has none.
};

class Parts : public testing::TestWithParam<PartCase> {};

TEST_P(Parts, AreToldByDriverAndLabel) {
  const HwmonTree tree;
  tree.set("hwmon0/name", GetParam().input.driver);
  tree.set("hwmon0/temp1_input", "47250");
  tree.set("hwmon0/temp1_label", GetParam().input.label);
  Driver driver(tree);

  std::vector<std::string> keys = driver.keys.all();
  std::erase_if(keys, [](const std::string& key) { return !key.starts_with('T'); });

  if (GetParam().key.empty()) {
    EXPECT_EQ(keys, std::vector<std::string>{});
  } else {
    EXPECT_EQ(keys, std::vector<std::string>{GetParam().key});
    EXPECT_EQ(driver.keys.read(GetParam().key), 47.25);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Table, Parts,
    testing::Values(
        PartCase{"Coretemp", {"coretemp", "Core 0"}, "TCHP"},
        PartCase{"K10temp", {"k10temp", "Tctl"}, "TCHP"}, PartCase{"Zenpower", {"zenpower", ""}, "TCHP"},
        PartCase{"CpuThermal", {"cpu_thermal", ""}, "TCHP"},
        PartCase{"Cpu0Thermal", {"cpu0_thermal", ""}, "TCHP"},
        PartCase{"SocThermal", {"soc_thermal", ""}, "TCHP"},
        PartCase{"SiliconCore", {"macsmc_hwmon", "Performance Core 1 Temp"}, "TCHP"},
        PartCase{"SiliconDie", {"macsmc_hwmon", "SoC Die Temp"}, "TCHP"},
        PartCase{"SiliconGraphics", {"macsmc_hwmon", "GPU Temp"}, "TG0D"},
        PartCase{"SiliconFlash", {"macsmc_hwmon", "NAND Flash Temperature"}, "TD00"},
        PartCase{"SiliconBattery", {"macsmc_hwmon", "Battery Hotspot"}, "TB0T"},
        PartCase{"SiliconCharger", {"macsmc_hwmon", "Charge Regulator Temp"}, ""},
        PartCase{"ThinkPad", {"thinkpad", "CPU"}, "TCHP"}, PartCase{"Dell", {"dell_smm", "cpu"}, "TCHP"},
        PartCase{"AsusController", {"asusec", "CPU   "}, "TCHP"},
        PartCase{"ThinkPadOther", {"thinkpad", "GPU"}, ""}, PartCase{"Acpi", {"acpitz", "CPU"}, ""},
        PartCase{"BoardFloating", {"nct6798", "CPUTIN"}, ""}, PartCase{"BoardCPU", {"nct6798", "CPU"}, ""},
        PartCase{"Amdgpu", {"amdgpu", "edge"}, "TG0D"}, PartCase{"Nouveau", {"nouveau", ""}, "TG0D"},
        PartCase{"Xe", {"xe", "pkg"}, "TG0D"}, PartCase{"Nvme", {"nvme", "Composite"}, "TD00"},
        PartCase{"Drivetemp", {"drivetemp", ""}, "TD00"}, PartCase{"Battery", {"BAT0", ""}, "TB0T"},
        PartCase{"SiliconBatteryDriver", {"macsmc_battery", ""}, "TB0T"},
        PartCase{"Wireless", {"iwlwifi_1", ""}, ""},
        PartCase{"IntelMacAmbient", {"applesmc", "TA0P"}, "TA0P"},
        PartCase{"IntelMacLongLabel", {"applesmc", "TA0PX"}, ""},
        PartCase{"IntelMacOtherLabel", {"applesmc", "XA0P"}, ""},
        PartCase{"IntelMacUnprintableLabel", {"applesmc", "TA\x01P"}, ""},
        PartCase{"IntelMacBlanksAfterLabel", {"applesmc", "TA0P  "}, "TA0P"}),
    [](const testing::TestParamInfo<PartCase>& info) { return info.param.name; });

struct PlausibleCase {
  const char* text;
  bool isPlausible;
};

TEST(HwmonTemperatures, DropOutWhileTheyAreNotPlausible) {
  const HwmonTree tree;
  tree.addProcessor("hwmon0");
  Driver driver(tree);
  for (const PlausibleCase& one :
       {PlausibleCase{"-128000", false}, PlausibleCase{"-127000", false}, PlausibleCase{"-125000", false},
        PlausibleCase{"-40000", false}, PlausibleCase{"-39999", true}, PlausibleCase{"-10000", true},
        PlausibleCase{"0", true}, PlausibleCase{"150000", true}, PlausibleCase{"150001", false},
        PlausibleCase{"65261850", false}, PlausibleCase{"-273150", false}}) {
    tree.set("hwmon0/temp1_input", one.text);
    EXPECT_EQ(driver.keys.read("TCHP").has_value(), one.isPlausible) << one.text;
  }
}

TEST(HwmonTemperatures, ProcessorIsTheHottestOfAllItsSensors) {
  const HwmonTree tree;
  tree.addProcessor("hwmon0");
  tree.set("hwmon0/temp2_input", "71000");
  tree.set("hwmon0/temp3_input", "-127000");
  tree.set("hwmon1/name", "coretemp");
  tree.set("hwmon1/temp1_input", "82000");
  Driver driver(tree);

  EXPECT_EQ(driver.keys.read("TCHP"), 82);
  tree.set("hwmon1/temp1_input", "unreadable");
  EXPECT_EQ(driver.keys.read("TCHP"), 71);
}

TEST(HwmonTemperatures, DevicesOfOneNameHaveAKeyEach) {
  const HwmonTree tree;
  for (const char* hwmon : {"hwmon0", "hwmon1", "hwmon2"}) {
    tree.set(std::string(hwmon) + "/name", "nvme");
    tree.set(std::string(hwmon) + "/temp1_input", std::string("4") + hwmon[5] + "000");
  }
  Driver driver(tree);

  EXPECT_EQ(driver.keys.read("TD00"), 40);
  EXPECT_EQ(driver.keys.read("TD10"), 41);
  EXPECT_EQ(driver.keys.read("TD20"), 42);
}

TEST(HwmonTemperatures, MadeUpNamesGiveWayToTheMacsOwn) {
  const HwmonTree tree;
  tree.set("hwmon0/name", "applesmc");
  tree.set("hwmon0/temp1_label", "TB0T");
  tree.set("hwmon0/temp1_input", "30000");
  tree.set("hwmon1/name", "BAT0");
  tree.set("hwmon1/temp1_input", "33000");
  Driver driver(tree);

  EXPECT_EQ(driver.keys.read("TB0T"), 30);
  EXPECT_EQ(driver.keys.read("TB1T"), 33);
}

TEST(HwmonTemperatures, FirstOfTwoEqualLabelsWins) {
  const HwmonTree tree;
  tree.set("hwmon0/name", "applesmc");
  for (const char* number : {"10", "9"}) {
    tree.set(std::string("hwmon0/temp") + number + "_label", "TB0T");
    tree.set(std::string("hwmon0/temp") + number + "_input", std::string(number) + "000");
  }
  Driver driver(tree);

  EXPECT_EQ(driver.keys.read("TB0T"), 9);
}

TEST(HwmonTemperatures, ProcessorsOwnSensorsGoBeforeTheMacsSpotBesideIt) {
  const HwmonTree tree;
  tree.set("hwmon0/name", "applesmc");
  tree.set("hwmon0/temp1_label", "TCHP");
  tree.set("hwmon0/temp1_input", "48500");
  tree.addProcessor("hwmon1");
  tree.set("hwmon1/temp1_input", "74000");
  Driver driver(tree);

  EXPECT_EQ(driver.keys.read("TCHP"), 74);
}

TEST(HwmonTemperatures, MacsProbesStandInForAProcessorWithoutSensors) {
  const HwmonTree tree;
  tree.set("hwmon0/name", "applesmc");
  tree.set("hwmon0/temp1_label", "TC0D");
  tree.set("hwmon0/temp1_input", "61000");
  tree.set("hwmon0/temp2_label", "TCXC"); // No probe of a numbered core.
  tree.set("hwmon0/temp2_input", "90000");
  Driver driver(tree);

  EXPECT_EQ(driver.keys.read("TCHP"), 61);
  EXPECT_EQ(driver.keys.read("TC0D"), 61);
}

TEST(HwmonTemperatures, ProcessorThatDoesNotReadYetHasItsKeyAndReadsZero) {
  const HwmonTree tree;
  tree.addProcessor("hwmon0");
  tree.set("hwmon0/temp1_input", "-127000");
  Driver driver(tree);
  EXPECT_EQ(driver.keys.typeOf("TCHP"), "flt ");
  EXPECT_EQ(driver.keys.read("TCHP"), 0.0);

  tree.set("hwmon0/temp1_input", "61000");
  EXPECT_EQ(driver.keys.read("TCHP"), 61.0);
}

} // namespace
} // namespace ventolith::platform
