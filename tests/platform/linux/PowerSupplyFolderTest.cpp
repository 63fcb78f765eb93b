// What the kernel's power supplies say together, in folders of plain files.
#include "platform/linux/desktop/PowerSupplyFolder.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace ventolith::platform {
namespace {

namespace fs = std::filesystem;
using app::PowerSource;
using support::TemporaryFolder;

/// A supply's files, by name.
using Supply = std::map<std::string, std::string>;

Supply mains(const std::string& online) {
  return {{"type", "Mains\n"}, {"online", online + "\n"}};
}
Supply usb(const std::string& online, const std::string& type = "USB") {
  return {{"type", type + "\n"}, {"online", online + "\n"}};
}
Supply battery(const std::string& status) {
  return {{"type", "Battery\n"}, {"status", status + "\n"}, {"scope", "System\n"}, {"present", "1\n"}};
}
Supply ofDevice(Supply supply) {
  supply["scope"] = "Device\n";
  return supply;
}

fs::path addSupply(const TemporaryFolder& folder, const std::string& name, const Supply& supply) {
  fs::create_directory(folder / name);
  for (const auto& [file, text] : supply)
    folder.write(name + "/" + file, text);
  return folder / name;
}

struct Case {
  const char* name;
  std::vector<Supply> supplies;
  PowerSource expected;
};

class PowerSupplies : public testing::TestWithParam<Case> {};

TEST_P(PowerSupplies, SayTogether) {
  const TemporaryFolder folder;
  for (std::size_t index = 0; index < GetParam().supplies.size(); ++index)
    addSupply(folder, "supply" + std::to_string(index), GetParam().supplies[index]);

  EXPECT_EQ(powerSourceIn(folder.path()), GetParam().expected);
}

const std::vector<Case> cases = {
    {"NoSupply", {}, PowerSource::unknown},
    {"MainsOnline", {mains("1")}, PowerSource::ac},
    {"MainsOffline", {mains("0")}, PowerSource::unknown},
    {"MainsOnlineBeforeABatteryThatDischarges", {battery("Discharging"), mains("1")}, PowerSource::ac},
    {"SecondMainsOnline", {mains("0"), battery("Charging"), mains("1")}, PowerSource::ac},
    {"USBOnline", {battery("Discharging"), usb("1")}, PowerSource::ac},
    {"USBWithNegotiatedVoltage", {battery("Charging"), usb("2")}, PowerSource::ac},
    {"USBByAnOlderKernel", {battery("Discharging"), usb("1", "USB_PD")}, PowerSource::ac},
    {"USBOffline", {battery("Discharging"), usb("0")}, PowerSource::battery},
    {"Discharging", {battery("Discharging"), mains("0")}, PowerSource::battery},
    {"DischargingWithoutMains", {battery("Discharging")}, PowerSource::battery},
    {"OneOfTwoBatteriesDischarges",
     {battery("Not charging"), battery("Discharging"), mains("0")},
     PowerSource::battery},
    {"ChargingWithoutMains", {battery("Charging")}, PowerSource::ac},
    {"FullWithoutMains", {battery("Full")}, PowerSource::ac},
    {"RestingWithoutMains", {battery("Not charging")}, PowerSource::ac},
    {"ChargingThroughAPortThatShowsNothing", {battery("Charging"), usb("0")}, PowerSource::ac},
    {"JustUnpluggedFull", {battery("Full"), mains("0")}, PowerSource::unknown},
    {"BatteryOfUnknownStatus", {battery("Unknown")}, PowerSource::unknown},
    {"MouseThatDischarges", {ofDevice(battery("Discharging"))}, PowerSource::unknown},
    {"MouseThatDischargesOnMains", {mains("1"), ofDevice(battery("Discharging"))}, PowerSource::ac},
    {"HeadsetThatCharges", {battery("Discharging"), ofDevice(battery("Charging"))}, PowerSource::battery},
    {"PortThatFeedsATelephone", {battery("Discharging"), ofDevice(usb("1"))}, PowerSource::battery},
    {"UninterruptibleSupply", {{{"type", "UPS\n"}, {"status", "Discharging\n"}}}, PowerSource::unknown},
};

INSTANTIATE_TEST_SUITE_P(All, PowerSupplies, testing::ValuesIn(cases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(PowerSupplyFolder, ThatIsNotThereIsUnknown) {
  const TemporaryFolder folder;

  EXPECT_EQ(powerSourceIn(folder / "absent"), PowerSource::unknown);
  EXPECT_EQ(powerSourceIn(folder.write("file", "Mains\n")), PowerSource::unknown);
}

TEST(PowerSupplyFolder, ListsLinksAsTheKernelDoes) {
  const TemporaryFolder devices;
  const TemporaryFolder folder;
  fs::create_directory_symlink(addSupply(devices, "AC", mains("1")), folder / "AC");
  fs::create_directory_symlink(devices / "gone", folder / "BAT0");

  EXPECT_EQ(powerSourceIn(folder.path()), PowerSource::ac);
}

TEST(PowerSupplyFolder, FilesOfTheFolderItselfAreNoSupply) {
  const TemporaryFolder folder;
  folder.write("type", "Mains\n");
  folder.write("online", "1\n");

  EXPECT_EQ(powerSourceIn(folder.path()), PowerSource::unknown);
}

struct Content {
  const char* name;
  std::string type;
  std::string value; // Of "online" and of "status".
};

class HostileSupply : public testing::TestWithParam<Content> {};

TEST_P(HostileSupply, SaysNothingAndHidesNoOther) {
  const TemporaryFolder folder;
  addSupply(folder, "A",
            {{"type", GetParam().type}, {"online", GetParam().value}, {"status", GetParam().value}});
  EXPECT_EQ(powerSourceIn(folder.path()), PowerSource::unknown);

  addSupply(folder, "B", battery("Discharging"));
  EXPECT_EQ(powerSourceIn(folder.path()), PowerSource::battery);
}

const std::vector<Content> contents = {
    {"Empty", "", ""},
    {"EmptyOnline", "Mains\n", ""},
    {"NoNumber", "Mains\n", "yes\n"},
    {"NegativeNumber", "Mains\n", "-1\n"},
    {"NumberOutOfRange", "Mains\n", "99999999999999999999\n"},
    {"NumberWithoutEnd", "Mains\n", std::string(1 << 20, '1')},
    {"OnlyZeroBytes", std::string(4096, '\0'), std::string(4096, '\0')},
    {"OneEndlessLine", std::string(1 << 20, 'M'), "1\n"},
    {"TypeInAnotherCase", "mains\n", "1\n"},
    {"TypeThatGoesOn", "Mainsail\n", "1\n"},
    {"BytesThatAreNoText", "\xff\xfe\x80Mains\n", "1\n"},
    {"EndlessStatus", "Battery\n", "Charging" + std::string(1 << 20, '!')},
};

INSTANTIATE_TEST_SUITE_P(All, HostileSupply, testing::ValuesIn(contents),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(PowerSupplyFolder, APipeIsNotWaitedFor) {
  const TemporaryFolder folder;
  addSupply(folder, "AC", {});
  ASSERT_EQ(::mkfifo((folder / "AC/type").c_str(), 0600), 0);
  addSupply(folder, "BAT0", battery("Discharging"));

  EXPECT_EQ(powerSourceIn(folder.path()), PowerSource::battery);
}

TEST(PowerSupplyFolder, AFolderInPlaceOfAFileSaysNothing) {
  const TemporaryFolder folder;
  addSupply(folder, "AC", {{"online", "1\n"}});
  fs::create_directory(folder / "AC/type");

  EXPECT_EQ(powerSourceIn(folder.path()), PowerSource::unknown);
}

} // namespace
} // namespace ventolith::platform
