#include "platform/linux/HwmonTree.h"

#include "platform/linux/HwmonMachine.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

namespace ventolith::platform {
namespace {

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

TEST(HwmonUserClient, ListsEveryKeyOnceInAStableOrder) {
  const HwmonTree tree;
  tree.addIntelMac("hwmon1");
  tree.addProcessor("hwmon0");
  Driver driver(tree);

  const Names keys = driver.keys.all();

  EXPECT_EQ(keys, (Names{"#KEY", "FNum", "F0Ac", "F0Mn", "F0Mx", "F0Md", "F0Tg", "Ftst", "TCHP"}));
  EXPECT_EQ(driver.keys.all(), keys);
}

TEST(HwmonUserClient, TypesItsKeysAsTheSMCDoes) {
  const HwmonTree tree;
  tree.addIntelMac("hwmon0");
  tree.addProcessor("hwmon1");
  Driver driver(tree);

  EXPECT_EQ(driver.keys.typeOf("#KEY"), "ui32");
  for (const char* key : {"FNum", "Ftst", "F0Md"})
    EXPECT_EQ(driver.keys.typeOf(key), "ui8 ") << key;
  for (const char* key : {"F0Ac", "F0Mn", "F0Mx", "F0Tg", "TCHP"}) {
    EXPECT_EQ(driver.keys.typeOf(key), "flt ") << key;
  }
  EXPECT_EQ(driver.keys.typeOf("F1Ac"), "");
}

TEST(HwmonUserClient, OrdersFansByTheMacsOwnDriversThenByNameThenByNumber) {
  const HwmonTree tree;
  for (const auto& [hwmon, driver] :
       std::vector<std::pair<std::string, std::string>>{{"hwmon0", "zz_chip"},
                                                        {"hwmon1", "aa_chip"},
                                                        {"hwmon2", "macsmc_hwmon"},
                                                        {"hwmon10", "applesmc"}}) {
    tree.set(hwmon + "/name", driver);
  }
  tree.set("hwmon0/fan1_input", "1");
  tree.set("hwmon1/fan10_input", "3");
  tree.set("hwmon1/fan2_input", "2");
  tree.set("hwmon2/fan1_input", "4");
  tree.set("hwmon10/fan1_input", "5");
  Driver driver(tree);

  std::vector<double> speeds;
  for (const char* key : {"F0Ac", "F1Ac", "F2Ac", "F3Ac", "F4Ac"})
    speeds.push_back(driver.keys.read(key).value());
  EXPECT_EQ(speeds, (std::vector<double>{5, 4, 2, 3, 1}));
}

TEST(HwmonUserClient, NamesTenFansAtTheMost) {
  const HwmonTree tree;
  tree.set("hwmon0/name", "nct6798");
  for (int fan = 1; fan <= 14; ++fan)
    tree.set("hwmon0/fan" + std::to_string(fan) + "_input", "700");
  Driver driver(tree);

  EXPECT_EQ(driver.keys.read("FNum"), 10);
  EXPECT_EQ(driver.keys.read("F9Ac"), 700);
}

TEST(HwmonUserClient, ForceTestReadsBackAndDoesNothing) {
  const HwmonTree tree;
  tree.addIntelMac("hwmon0");
  Driver driver(tree);
  FileWatch watch(tree.root() / "hwmon0");

  EXPECT_EQ(driver.keys.write("Ftst", 1), applied);

  EXPECT_EQ(driver.keys.read("Ftst"), 1);
  EXPECT_EQ(watch.written(), Names{});
}

TEST(HwmonUserClient, RefusesToWriteWhatIsOnlyRead) {
  const HwmonTree tree;
  tree.addIntelMac("hwmon0");
  tree.addProcessor("hwmon1");
  Driver driver(tree);

  for (const char* key : {"#KEY", "FNum", "F0Ac", "F0Mn", "F0Mx", "TCHP"}) {
    EXPECT_EQ(driver.keys.write(key, 1), notWritable) << key;
  }
  EXPECT_EQ(driver.keys.write("F0Md", 2), notWritable);
  EXPECT_EQ(driver.keys.write("F7Md", 1), gone);
}

TEST(HwmonUserClient, RefusesConnectionsThatAreNotOpen) {
  const HwmonTree tree;
  HwmonUserClient client(tree.root(), std::nullopt, [] { return runtime::Duration(); });
  const hardware::IOConnect connection = client.open().value();
  hardware::SMCParamStruct input;
  input.key = hardware::packKey("FNum");
  input.data8 = static_cast<std::uint8_t>(hardware::SMCParamStruct::Selector::readKey);
  hardware::SMCParamStruct output;
  ASSERT_EQ(client.call(connection, input, output), hardware::kernSuccess);

  client.close(connection);

  EXPECT_EQ(client.call(connection, input, output), ioReturnBadArgument);
  EXPECT_EQ(client.call(0, input, output), ioReturnBadArgument);
}

TEST(HwmonUserClient, RefusesSelectorsThatItDoesNotKnow) {
  const HwmonTree tree;
  tree.addIntelMac("hwmon0");
  Driver driver(tree);
  for (const int selector : {0, 2, 7, 255}) {
    hardware::SMCParamStruct input;
    input.key = hardware::packKey("FNum");
    input.data8 = static_cast<std::uint8_t>(selector);
    hardware::SMCParamStruct output;
    EXPECT_EQ(driver.keys.call(input, output).returned, ioReturnBadArgument) << selector;
  }
}

TEST(HwmonUserClient, MissingLimitsAreKeysThatAreNotFound) {
  const HwmonTree tree;
  tree.addIntelMac("hwmon0");
  tree.remove("hwmon0/fan1_min");
  tree.set("hwmon0/fan1_max", "none");
  Driver driver(tree);

  EXPECT_EQ(driver.keys.read("F0Mn"), std::nullopt);
  EXPECT_EQ(driver.keys.read("F0Mx"), std::nullopt);
  EXPECT_EQ(driver.keys.read("F0Ac"), 2000);
}

TEST(HwmonUserClient, ReadsValuesFresh) {
  const HwmonTree tree;
  tree.addIntelMac("hwmon0");
  tree.addProcessor("hwmon1");
  Driver driver(tree);

  tree.set("hwmon0/fan1_input", "719"); // Below its own minimum, as some fans run.
  tree.set("hwmon1/temp1_input", "61500");

  EXPECT_EQ(driver.keys.read("F0Ac"), 719);
  EXPECT_EQ(driver.keys.read("TCHP"), 61.5);
}

TEST(HwmonUserClient, FilesInTheDeviceFolderAreUsedWhereTheNameStandsThere) {
  const HwmonTree tree;
  tree.addIntelMac("hwmon0/device");
  tree.set("hwmon0/fan1_input", "1");
  Driver driver(tree);

  EXPECT_EQ(driver.keys.read("F0Ac"), 2000);
  EXPECT_EQ(driver.keys.write("F0Md", 1), applied);
  EXPECT_EQ(tree.text("hwmon0/device/fan1_manual"), "1");
}

TEST(HwmonUserClient, DeviceWithoutANameIsShownAllTheSame) {
  const HwmonTree tree;
  tree.set("hwmon0/fan1_input", "1234");
  Driver driver(tree);

  EXPECT_EQ(driver.keys.read("F0Ac"), 1234);
}

TEST(HwmonUserClient, FindsDevicesThatComeAfterItsStart) {
  const HwmonTree tree;
  Driver driver(tree);
  ASSERT_EQ(driver.keys.read("FNum"), std::nullopt);

  tree.addIntelMac("hwmon0");

  EXPECT_EQ(driver.keys.read("FNum"), 1);
  EXPECT_EQ(driver.keys.read("F0Ac"), 2000);
}

TEST(HwmonUserClient, SurvivesARootThatIsNotThere) {
  HwmonUserClient client("/nonexistent/hwmon", std::nullopt, [] { return runtime::Duration(); });
  Keys keys(client);

  EXPECT_EQ(keys.read("FNum"), std::nullopt);
  EXPECT_EQ(keys.write("Ftst", 0), gone);
  EXPECT_TRUE(keys.all().empty());
}

// Hostile files

struct HostileCase {
  const char* name;
  std::string text;
};

class HostileNumbers : public testing::TestWithParam<HostileCase> {};

TEST_P(HostileNumbers, AreNoValue) {
  const HwmonTree tree;
  tree.addIntelMac("hwmon0");
  tree.addProcessor("hwmon1");
  Driver driver(tree);
  std::ofstream(tree.root() / "hwmon0/fan1_input") << GetParam().text;
  std::ofstream(tree.root() / "hwmon1/temp1_input") << GetParam().text;

  EXPECT_EQ(driver.keys.read("F0Ac"), std::nullopt);
  EXPECT_EQ(driver.keys.read("TCHP"), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Table, HostileNumbers,
                         testing::Values(HostileCase{"Empty", ""}, HostileCase{"LineEnd", "\n"},
                                         HostileCase{"Word", "nan\n"}, HostileCase{"Fraction", "12.5\n"},
                                         HostileCase{"Hexadecimal", "0x10\n"}, HostileCase{"Plus", "+5\n"},
                                         HostileCase{"TwoNumbers", "50000 60000\n"},
                                         HostileCase{"Overflow", "99999999999999999999\n"},
                                         HostileCase{"Underflow", "-99999999999999999999\n"},
                                         HostileCase{"Megabyte", std::string(1 << 20, '7')},
                                         HostileCase{"MegabyteOfBlanks", "7" + std::string(1 << 20, ' ')},
                                         HostileCase{"Binary", std::string("\0\xFF\x01", 3)}),
                         [](const testing::TestParamInfo<HostileCase>& info) { return info.param.name; });

TEST(HwmonUserClient, FoldersPipesAndEndlessFilesInPlaceOfNumbersAreNoValue) {
  const HwmonTree tree;
  tree.addIntelMac("hwmon0");
  for (int fan = 2; fan <= 5; ++fan)
    tree.set("hwmon0/fan" + std::to_string(fan) + "_input", "1");
  Driver driver(tree);
  for (int fan = 2; fan <= 5; ++fan)
    tree.remove("hwmon0/fan" + std::to_string(fan) + "_input");
  const fs::path folder = tree.root() / "hwmon0";
  fs::create_directory(folder / "fan2_input");
  ASSERT_EQ(::mkfifo((folder / "fan3_input").c_str(), 0644), 0);
  fs::create_symlink("/dev/zero", folder / "fan4_input");
  fs::create_symlink("fan5_input", folder / "fan5_input");

  for (const char* key : {"F1Ac", "F2Ac", "F3Ac", "F4Ac"})
    EXPECT_EQ(driver.keys.read(key), std::nullopt) << key;
}

TEST(HwmonUserClient, PassesOverEntriesThatAreNoDevices) {
  const HwmonTree tree;
  tree.addIntelMac("hwmon3");
  for (const char* name :
       {"hwmon", "hwmonX/fan1_input", "hwmon03/fan1_input", "hwmon99999999999/fan1_input", "other/fan1_input",
        "hwmon3/fan_input", "hwmon3/fan01_input", "hwmon3/fan-1_input"}) {
    tree.set(name, "1");
  }
  tree.set("hwmon7", "a file");
  fs::create_directory_symlink("nowhere", tree.root() / "hwmon8");
  Driver driver(tree);

  EXPECT_EQ(driver.keys.read("FNum"), 1);
  EXPECT_EQ(driver.keys.read("F0Ac"), 2000);
}

// What refusals of the system come back as

struct RefusalCase {
  const char* name;
  void (*spoil)(const fs::path& file);
  Answer answer;
};

class Refusals : public testing::TestWithParam<RefusalCase> {};

TEST_P(Refusals, ComeBackAsResults) {
  const HwmonTree tree;
  tree.addIntelMac("hwmon0");
  Driver driver(tree);
  ASSERT_EQ(driver.keys.write("F0Md", 1), applied);
  const fs::path file = tree.root() / "hwmon0/fan1_output";
  fs::remove(file);
  GetParam().spoil(file);

  EXPECT_EQ(driver.keys.writeFloat("F0Tg", 3000), GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Refusals,
    testing::Values(
        RefusalCase{"NoSuchFile", [](const fs::path&) {}, gone},
        RefusalCase{"NoSuchDevice", [](const fs::path& file) { ::mkfifo(file.c_str(), 0644); }, gone},
        RefusalCase{"IsAFolder", [](const fs::path& file) { fs::create_directory(file); }, {0, EISDIR}},
        RefusalCase{"Loop", [](const fs::path& file) { fs::create_symlink(file, file); }, {0, ELOOP}},
        RefusalCase{
            "NoSpace", [](const fs::path& file) { fs::create_symlink("/dev/full", file); }, {0, ENOSPC}},
        // A file of the kernel's that takes numbers up to 1000 and no further.
        RefusalCase{"Invalid",
                    [](const fs::path& file) { fs::create_symlink("/proc/self/oom_score_adj", file); },
                    {0, EINVAL}}),
    [](const testing::TestParamInfo<RefusalCase>& info) { return info.param.name; });

/// Becomes somebody without rights, if the tests run as root.
class Unprivileged {
public:
  Unprivileged() {
    if (::geteuid() == 0) isDropped_ = ::seteuid(65534) == 0;
  }
  Unprivileged(const Unprivileged&) = delete;
  Unprivileged& operator=(const Unprivileged&) = delete;
  ~Unprivileged() {
    if (isDropped_ && ::seteuid(0) != 0) std::abort();
  }

private:
  bool isDropped_ = false;
};

TEST(HwmonUserClient, WriteWithoutPermissionComesBackAsNotPrivileged) {
  const HwmonTree tree;
  tree.addIntelMac("hwmon0");
  Driver driver(tree);
  ASSERT_EQ(driver.keys.write("F0Md", 1), applied);
  for (const char* file : {"fan1_manual", "fan1_output"})
    ::chmod((tree.root() / "hwmon0" / file).c_str(), 0444);

  const Unprivileged unprivileged;

  EXPECT_EQ(driver.keys.write("F0Md", 1), notPrivileged);
  EXPECT_EQ(driver.keys.writeFloat("F0Tg", 3000), notPrivileged);
  EXPECT_EQ(driver.keys.write("F0Md", 0), notPrivileged);
}

TEST(HwmonUserClient, ReleaseThatIsRefusedLeavesTheClaimToBeReleasedAgain) {
  const HwmonTree tree;
  tree.addMainBoard("hwmon0");
  Driver driver(tree);
  driver.keys.write("F0Md", 1);
  tree.remove("hwmon0/pwm1_enable");
  fs::create_symlink("/dev/full", tree.root() / "hwmon0/pwm1_enable");
  ASSERT_EQ(driver.keys.write("F0Md", 0), (Answer{0, ENOSPC}));

  tree.remove("hwmon0/pwm1_enable");
  tree.set("hwmon0/pwm1_enable", "1");
  EXPECT_EQ(driver.keys.write("F0Md", 0), applied);

  EXPECT_EQ(tree.text("hwmon0/pwm1_enable"), "5");
}

// Privileges

TEST(HwmonPrivileges, UserMayControlFansWhereEveryControlFileIsWritable) {
  const HwmonTree tree;
  tree.addIntelMac("hwmon0");
  const HwmonPrivileges privileges(tree.root());
  for (const char* file : {"fan1_manual", "fan1_output"})
    ::chmod((tree.root() / "hwmon0" / file).c_str(), 0666);

  const Unprivileged unprivileged;

  EXPECT_TRUE(privileges.mayControlFans());
}

TEST(HwmonPrivileges, UserMayNotControlFansWhereOneControlFileIsOthers) {
  const HwmonTree tree;
  tree.addIntelMac("hwmon0");
  const HwmonPrivileges privileges(tree.root());
  ::chmod((tree.root() / "hwmon0/fan1_manual").c_str(), 0666);
  // For others than the owner alone, so that an owner without root is kept out too.
  ::chmod((tree.root() / "hwmon0/fan1_output").c_str(), ::geteuid() == 0 ? 0644 : 0046);

  const Unprivileged unprivileged;

  EXPECT_FALSE(privileges.mayControlFans());
}

TEST(HwmonPrivileges, MachineWithoutControllableFansNeedsRoot) {
  const HwmonTree tree;
  tree.addProcessor("hwmon0");
  const HwmonPrivileges privileges(tree.root());

  EXPECT_EQ(privileges.mayControlFans(), ::geteuid() == 0);
  const Unprivileged unprivileged;
  EXPECT_FALSE(privileges.mayControlFans());
}

} // namespace
} // namespace ventolith::platform
