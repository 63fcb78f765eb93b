// What holds of the files that stay open from one read to the next.
#include "platform/linux/HwmonTree.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <chrono>

namespace ventolith::platform {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

std::ptrdiff_t openDescriptors() {
  return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

/// A processor in hwmon0 and a main board's fan, fan 0, in hwmon2.
struct Computer {
  HwmonTree tree;

  Computer() {
    tree.addProcessor("hwmon0");
    tree.addMainBoard("hwmon2");
  }

  /// As though no file had come or gone for a long time.
  void age() const {
    for (const char* hwmon : {"hwmon0", "hwmon2"})
      fs::last_write_time(tree.root() / hwmon, fs::file_time_type::clock::now() - std::chrono::hours(1));
  }

  /// Puts another file in the place of one.
  void replace(const std::string& path, const std::string& text) const {
    tree.set("draft", text);
    fs::rename(tree.root() / "draft", tree.root() / path);
  }
};

struct Values {
  std::optional<double> fans;
  std::optional<double> speed;
  std::optional<double> celsius;

  bool operator==(const Values&) const = default;
};

void PrintTo(const Values& values, std::ostream* stream) {
  *stream << values.fans.value_or(-1) << " fans, " << values.speed.value_or(-1) << " RPM, "
          << values.celsius.value_or(-1) << " degrees";
}

/// In the order of a reader.
Values snapshot(Driver& driver) {
  const auto fans = driver.keys.read("FNum");
  const auto speed = driver.keys.read("F0Ac");
  return {fans, speed, driver.keys.read("TCHP")};
}

struct OpenFilesCase {
  const char* name;
  bool isHeld;
  bool isOld; // No file has come or gone for a long time.
};

struct OpenFiles : testing::TestWithParam<OpenFilesCase> {
  Computer computer;
  Driver driver{computer.tree};

  void SetUp() override {
    if (GetParam().isHeld) ASSERT_EQ(driver.keys.write("F0Md", 1), applied);
    if (GetParam().isOld) computer.age();
    for (int count = 0; count < 3; ++count)
      ASSERT_EQ(snapshot(driver), (Values{1, 900, 50}));
  }
};

TEST_P(OpenFiles, ThatAreRemovedGiveNoValueAtTheNextSnapshot) {
  computer.tree.remove("hwmon2/fan1_input");
  computer.tree.remove("hwmon0/temp1_input");

  EXPECT_EQ(snapshot(driver), (Values{1, std::nullopt, std::nullopt}));
}

TEST_P(OpenFiles, ThatAreReplacedGiveTheNewValueAtTheNextSnapshot) {
  computer.replace("hwmon2/fan1_input", "1111");
  computer.replace("hwmon0/temp1_input", "71000");

  EXPECT_EQ(snapshot(driver), (Values{1, 1111, 71}));
}

// File systems tell time in ticks, and many of these fall into one.
TEST_P(OpenFiles, ThatAreReplacedInQuickSuccessionGiveTheNewValueEachTime) {
  for (int celsius = 1; celsius <= 100; ++celsius) {
    computer.replace("hwmon2/fan1_input", std::to_string(1000 + celsius));
    computer.replace("hwmon0/temp1_input", std::to_string(1000 * celsius));
    ASSERT_EQ(snapshot(driver), (Values{1, 1000 + celsius, celsius}));
  }
}

TEST_P(OpenFiles, ThatComeBackGiveTheirValueAtTheNextSnapshot) {
  computer.tree.remove("hwmon2/fan1_input");
  computer.tree.remove("hwmon0/temp1_input");
  static_cast<void>(snapshot(driver));

  computer.tree.set("hwmon2/fan1_input", "1111");
  computer.tree.set("hwmon0/temp1_input", "71000");

  EXPECT_EQ(snapshot(driver), (Values{1, 1111, 71}));
}

TEST_P(OpenFiles, ThatAreWrittenGiveTheNewValueAtOnce) {
  computer.tree.set("hwmon2/fan1_input", "1111");
  computer.tree.set("hwmon0/temp1_input", "71000");

  EXPECT_EQ(driver.keys.read("F0Ac"), 1111);
  EXPECT_EQ(driver.keys.read("TCHP"), 71);
}

INSTANTIATE_TEST_SUITE_P(Table, OpenFiles,
                         testing::Values(OpenFilesCase{"IdleAndJustChanged", false, false},
                                         OpenFilesCase{"IdleAndUnchanged", false, true},
                                         OpenFilesCase{"HeldAndJustChanged", true, false},
                                         OpenFilesCase{"HeldAndUnchanged", true, true}),
                         [](const testing::TestParamInfo<OpenFilesCase>& info) { return info.param.name; });

TEST(OpenFiles, StayOpenWhileNoFileComesOrGoes) {
  const Computer computer;
  Driver driver(computer.tree);
  driver.keys.write("F0Md", 1);
  computer.age();
  for (int count = 0; count < 2; ++count) // The first still finds the folders changed by the aging.
    ASSERT_EQ(snapshot(driver), (Values{1, 900, 50}));
  FileWatch processor(computer.tree.root() / "hwmon0");
  FileWatch board(computer.tree.root() / "hwmon2");

  ASSERT_EQ(snapshot(driver), (Values{1, 900, 50}));

  EXPECT_EQ(processor.opened(), Names{});
  EXPECT_EQ(board.opened(), Names{});
}

TEST(OpenFiles, DoNotIncludeOneThatDidNotRead) {
  const Computer computer;
  computer.tree.remove("hwmon0/temp1_input");
  computer.tree.set("hwmon0/temp2_input", "40000");
  ASSERT_EQ(::mkfifo((computer.tree.root() / "hwmon0/temp1_input").c_str(), 0644), 0);
  Driver driver(computer.tree);
  ASSERT_EQ(driver.keys.read("TCHP"), 40);

  computer.replace("hwmon0/temp1_input", "60000");

  EXPECT_EQ(driver.keys.read("TCHP"), 60);
}

TEST(OpenFiles, AreClosedWhenDevicesAreFoundAnew) {
  const Computer computer;
  Driver driver(computer.tree);
  const fs::path root = computer.tree.root();
  const auto renumberTwice = [&] {
    fs::rename(root / "hwmon2", root / "hwmon5");
    ASSERT_EQ(snapshot(driver), (Values{1, 900, 50}));
    fs::rename(root / "hwmon5", root / "hwmon2");
    ASSERT_EQ(snapshot(driver), (Values{1, 900, 50}));
  };
  renumberTwice();
  const auto before = openDescriptors();

  for (int count = 0; count < 500; ++count)
    renumberTwice();

  EXPECT_EQ(openDescriptors(), before);
}

TEST(OpenFiles, AreClosedWhenDevicesAreLookedThroughWhileAFanIsHeld) {
  const Computer computer;
  Driver driver(computer.tree);
  driver.keys.write("F0Md", 1);
  ASSERT_EQ(snapshot(driver), (Values{1, 900, 50}));
  const auto before = openDescriptors();

  // A new device at each snapshot that looks for one.
  for (int count = 0; count < 1000; ++count) {
    const std::string hwmon = "hwmon" + std::to_string(100 + count / 8);
    if (count % 8 == 0) computer.tree.set(hwmon + "/name", "nvme");
    ASSERT_EQ(snapshot(driver), (Values{1, 900, 50}));
  }

  EXPECT_EQ(openDescriptors(), before);
}

TEST(OpenFiles, AreNotMoreThanAFewWhateverADeviceHas) {
  const HwmonTree tree;
  tree.set("hwmon0/name", "coretemp");
  for (int core = 1; core <= 300; ++core)
    tree.set("hwmon0/temp" + std::to_string(core) + "_input", std::to_string(40'000 + core * 100));
  const auto before = openDescriptors();
  Driver driver(tree);

  EXPECT_EQ(driver.keys.read("TCHP"), 70);
  EXPECT_LT(openDescriptors(), before + 70);
}

} // namespace
} // namespace ventolith::platform
