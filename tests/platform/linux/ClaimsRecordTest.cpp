#include "platform/linux/HwmonTree.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

namespace ventolith::platform {
namespace {

namespace fs = std::filesystem;

/// Drives the fan of `tree` and ends without giving it back, as a process does that is killed.
void takeAndDie(const HwmonTree& tree) {
  Driver killed(tree);
  ASSERT_EQ(killed.keys.write("F0Md", 1), applied);
  ASSERT_EQ(killed.keys.writeFloat("F0Tg", 500), applied);
}

void leaveRecord(const HwmonTree& tree, const std::string& text) {
  fs::create_directories(tree.stateFolder());
  std::ofstream(tree.stateFolder() / "claims") << text;
}

TEST(Claims, ProcessAfterAKilledOneGivesBackWhatStoodBeforeIt) {
  const HwmonTree tree;
  tree.addMainBoard("hwmon0");
  takeAndDie(tree);
  ASSERT_EQ(tree.text("hwmon0/pwm1_enable"), "1");

  Driver next(tree);
  EXPECT_EQ(next.keys.write("F0Md", 0), applied);

  EXPECT_EQ(tree.text("hwmon0/pwm1_enable"), "5");
}

TEST(Claims, ManualControlBeforeAKilledProcessComesBackWithItsDuty) {
  const HwmonTree tree;
  tree.addMainBoard("hwmon0");
  tree.set("hwmon0/pwm1_enable", "1");
  tree.set("hwmon0/pwm1", "200");
  takeAndDie(tree);
  ASSERT_EQ(tree.text("hwmon0/pwm1"), "64");

  Driver next(tree);
  next.keys.write("F0Md", 0);

  EXPECT_EQ(tree.text("hwmon0/pwm1_enable"), "1");
  EXPECT_EQ(tree.text("hwmon0/pwm1"), "200");
}

TEST(Claims, RecordIsFoundThoughTheDeviceHasAnotherNumberAfterTheKill) {
  const HwmonTree tree;
  tree.addMainBoard("hwmon0");
  takeAndDie(tree);
  fs::rename(tree.root() / "hwmon0", tree.root() / "hwmon4");

  Driver next(tree);
  next.keys.write("F0Md", 0);

  EXPECT_EQ(tree.text("hwmon4/pwm1_enable"), "5");
}

TEST(Claims, ClaimAfterAKilledProcessKeepsWhatThatOneFound) {
  const HwmonTree tree;
  tree.addMainBoard("hwmon0");
  takeAndDie(tree);

  Driver next(tree);
  next.keys.write("F0Md", 1);
  next.keys.write("F0Md", 0);

  EXPECT_EQ(tree.text("hwmon0/pwm1_enable"), "5");
}

TEST(Claims, AreOnRecordForAsLongAsAFanIsHeld) {
  const HwmonTree tree;
  tree.addMainBoard("hwmon0");
  Driver driver(tree);
  EXPECT_FALSE(fs::exists(tree.stateFolder()));

  driver.keys.write("F0Md", 1);
  const auto record = nlohmann::json::parse(std::ifstream(tree.stateFolder() / "claims"));
  EXPECT_EQ(record.size(), 1U);
  EXPECT_EQ(record.at(0).at("enable"), 5);

  driver.keys.write("F0Md", 0);
  EXPECT_TRUE(fs::is_empty(tree.stateFolder()));
}

TEST(Claims, OnRecordAreGoneWhenTheClaimIsRefused) {
  const HwmonTree tree;
  tree.addMainBoard("hwmon0");
  Driver driver(tree);
  tree.remove("hwmon0/pwm1_enable");
  fs::create_symlink("/dev/full", tree.root() / "hwmon0/pwm1_enable");

  EXPECT_EQ(driver.keys.write("F0Md", 1), (Answer{0, ENOSPC}));

  EXPECT_TRUE(fs::is_empty(tree.stateFolder()));
}

TEST(Claims, OfADeviceThatIsAbsentAreCountedAsOutOfReachUntilItIsThere) {
  const HwmonTree tree;
  tree.addMainBoard("hwmon0");
  takeAndDie(tree);
  fs::rename(tree.root() / "hwmon0", tree.sys() / "unplugged");

  Driver next(tree);
  EXPECT_EQ(next.keys.read("FNum"), 0);
  EXPECT_EQ(next.keys.read("FOoR"), 1);

  fs::rename(tree.sys() / "unplugged", tree.root() / "hwmon3");
  EXPECT_EQ(next.keys.read("FNum"), 1);
  EXPECT_EQ(next.keys.write("F0Md", 0), applied);
  EXPECT_EQ(tree.text("hwmon3/pwm1_enable"), "5");
  EXPECT_EQ(next.keys.read("FOoR"), std::nullopt);
}

TEST(Claims, OfAFanThatCannotBeControlledAnyMoreAreOutOfReach) {
  const HwmonTree tree;
  tree.addMainBoard("hwmon0");
  takeAndDie(tree);
  tree.remove("hwmon0/pwm1_enable");

  Driver next(tree);

  EXPECT_EQ(next.keys.read("FNum"), 1);
  EXPECT_EQ(next.keys.read("FOoR"), 1);
}

TEST(Claims, OfFansThatAreThereAreNotOutOfReach) {
  const HwmonTree tree;
  tree.addMainBoard("hwmon0");
  takeAndDie(tree);

  Driver next(tree);

  EXPECT_EQ(next.keys.read("FOoR"), std::nullopt);
}

TEST(Claims, AreOnRecordAgainWithTheNextTakeIfTheirFileIsGone) {
  const HwmonTree tree;
  tree.addMainBoard("hwmon0");
  Driver driver(tree);
  driver.keys.write("F0Md", 1);
  fs::remove_all(tree.stateFolder());

  EXPECT_EQ(driver.keys.write("F0Md", 1), applied);

  const auto record = nlohmann::json::parse(std::ifstream(tree.stateFolder() / "claims"));
  EXPECT_EQ(record.at(0).at("enable"), 5);
}

TEST(Claims, AreComplainedOfOnceHoweverOftenTheyCannotBeWritten) {
  const HwmonTree tree;
  tree.addMainBoard("hwmon0");
  std::ofstream(tree.stateFolder()) << "in the way";
  Driver driver(tree);

  testing::internal::CaptureStderr();
  for (int pass = 0; pass < 5; ++pass)
    EXPECT_EQ(driver.keys.write("F0Md", 1), applied);
  const std::string complaint = testing::internal::GetCapturedStderr();

  EXPECT_EQ(std::ranges::count(complaint, '\n'), 1);
}

/// Puts a device that is always full in the place of standard error.
class FullStandardError {
public:
  FullStandardError() : saved_(::dup(STDERR_FILENO)) {
    const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    ::dup2(full, STDERR_FILENO);
    ::close(full);
  }
  FullStandardError(const FullStandardError&) = delete;
  FullStandardError& operator=(const FullStandardError&) = delete;
  ~FullStandardError() {
    ::dup2(saved_, STDERR_FILENO);
    ::close(saved_);
  }

private:
  int saved_;
};

TEST(Claims, ThatCannotBeWrittenDoNotStopAClaimThoughThatCannotBeSaidEither) {
  const HwmonTree tree;
  tree.addMainBoard("hwmon0");
  std::ofstream(tree.stateFolder()) << "in the way";
  Driver driver(tree);

  const FullStandardError full;
  EXPECT_EQ(driver.keys.write("F0Md", 1), applied);
  EXPECT_EQ(tree.text("hwmon0/pwm1_enable"), "1");
  EXPECT_EQ(driver.keys.write("F0Md", 0), applied);
}

TEST(Claims, OfAnotherRootAreLeftAlone) {
  const HwmonTree tree;
  tree.addMainBoard("hwmon0");
  takeAndDie(tree);
  const HwmonTree other;
  other.addMainBoard("hwmon0");
  other.set("hwmon0/pwm1_enable", "1");
  HwmonUserClient client(other.root(), tree.stateFolder(), [] { return runtime::Duration(); });
  Keys keys(client);

  keys.write("F0Md", 0);
  EXPECT_EQ(other.text("hwmon0/pwm1_enable"), "2");

  keys.write("F0Md", 1);
  keys.write("F0Md", 0);
  Driver next(tree);
  next.keys.write("F0Md", 0);
  EXPECT_EQ(tree.text("hwmon0/pwm1_enable"), "5");
}

TEST(Claims, TwoDevicesOfOneNameAndPathKeepTheirOwn) {
  const HwmonTree tree;
  tree.addMainBoard("hwmon2");
  tree.addMainBoard("hwmon10");
  tree.set("hwmon10/pwm1_enable", "4");
  {
    Driver killed(tree);
    killed.keys.write("F0Md", 1);
    killed.keys.write("F1Md", 1);
  }

  Driver next(tree);
  next.keys.write("F0Md", 0);
  next.keys.write("F1Md", 0);

  EXPECT_EQ(tree.text("hwmon2/pwm1_enable"), "5");
  EXPECT_EQ(tree.text("hwmon10/pwm1_enable"), "4");
}

TEST(Claims, WithoutAStateFolderAnUnknownFanInManualGoesToAutomatic) {
  const HwmonTree tree;
  tree.addMainBoard("hwmon0");
  const auto asleep = [] { return runtime::Duration(); };
  {
    HwmonUserClient killed(tree.root(), std::nullopt, asleep);
    EXPECT_EQ(Keys(killed).write("F0Md", 1), applied);
  }

  HwmonUserClient next(tree.root(), std::nullopt, asleep);
  EXPECT_EQ(Keys(next).write("F0Md", 0), applied);

  EXPECT_EQ(tree.text("hwmon0/pwm1_enable"), "2");
}

TEST(Claims, StateFolderThatCannotBeWrittenIsReportedAndDoesNotStopTheClaim) {
  const HwmonTree tree;
  tree.addMainBoard("hwmon0");
  std::ofstream(tree.stateFolder()) << "in the way";
  Driver driver(tree);

  testing::internal::CaptureStderr();
  EXPECT_EQ(driver.keys.write("F0Md", 1), applied);
  const std::string complaint = testing::internal::GetCapturedStderr();

  EXPECT_EQ(complaint, "[Hwmon] " + (tree.stateFolder() / "claims").string() +
                           " could not be written: Not a directory\n");
  EXPECT_EQ(driver.keys.write("F0Md", 0), applied);
  EXPECT_EQ(tree.text("hwmon0/pwm1_enable"), "5");
}

TEST(Claims, RecordThatCannotBeUnderstoodIsIgnoredWithOneLine) {
  const HwmonTree tree;
  tree.addMainBoard("hwmon0");
  tree.set("hwmon0/pwm1_enable", "1");
  takeAndDie(tree);
  std::string good;
  std::getline(std::ifstream(tree.stateFolder() / "claims"), good, '\0');
  const auto with = [&](const std::string& from, const std::string& to) {
    std::string text = good;
    return text.replace(text.find(from), from.size(), to);
  };
  for (const std::string& text :
       {std::string(), std::string("garbage"), std::string("{}"), std::string("[1]"), std::string("[{}]"),
        good.substr(0, good.size() / 2), with("\"enable\": 1", "\"enable\": -1"),
        with("\"enable\": 1", "\"enable\": \"1\""), with("\"fan\": 1", "\"fan\": 1e300"),
        std::string(1 << 20, '['), std::string("\xFF\xFE\0", 3)}) {
    leaveRecord(tree, text);
    testing::internal::CaptureStderr();
    Driver driver(tree);
    const std::string complaint = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(complaint.starts_with("[Hwmon] ")) << text.substr(0, 80);
    EXPECT_EQ(std::ranges::count(complaint, '\n'), 1) << text.substr(0, 80);
    EXPECT_EQ(driver.keys.read("FNum"), 1);
  }
}

TEST(Claims, RecordThatIsAPipeIsNotWaitedForAndMakesRoom) {
  const HwmonTree tree;
  tree.addMainBoard("hwmon0");
  fs::create_directories(tree.stateFolder());
  ASSERT_EQ(::mkfifo((tree.stateFolder() / "claims").c_str(), 0600), 0);

  testing::internal::CaptureStderr();
  Driver driver(tree);
  const std::string complaint = testing::internal::GetCapturedStderr();

  EXPECT_EQ(std::ranges::count(complaint, '\n'), 1);
  EXPECT_EQ(driver.keys.write("F0Md", 1), applied);
  EXPECT_TRUE(fs::is_regular_file(tree.stateFolder() / "claims"));
}

TEST(Claims, RecordOfAnotherKindOfDriverIsNotUsed) {
  const HwmonTree tree;
  tree.addMainBoard("hwmon0");
  takeAndDie(tree);
  std::string text;
  std::getline(std::ifstream(tree.stateFolder() / "claims"), text, '\0');
  ASSERT_NE(text.find("\"duty\""), std::string::npos);
  leaveRecord(tree, text.replace(text.find("\"duty\""), 6, "\"target\""));

  Driver next(tree);
  next.keys.write("F0Md", 0);

  EXPECT_EQ(tree.text("hwmon0/pwm1_enable"), "2");
}

TEST(StateFolder, IsWhatTheEnvironmentSays) {
  ::setenv("VENTOLITH_STATE_DIR", "/somewhere/else", 1);
  const auto folder = stateFolder();
  ::unsetenv("VENTOLITH_STATE_DIR");
  EXPECT_EQ(folder, fs::path("/somewhere/else"));
}

} // namespace
} // namespace ventolith::platform
