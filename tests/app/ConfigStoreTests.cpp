#include "app/ConfigFiles.h"
#include "app/ConfigStore.h"
#include "support/FaultyFiles.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ventolith::app {
namespace {

namespace fs = std::filesystem;
using core::AutoSwitchSettings;
using core::FanControlPlan;
using core::FanPreset;
using support::FaultyFiles;
using Log = std::vector<std::string>;

FanControlPlan planOf(double rpm) {
  FanControlPlan plan;
  plan.fans = {{0, core::FanControlModePlan::fixedRPM(rpm)}};
  return plan;
}

TEST(ConfigStore, FreshUserHasNothingAndLoadingMakesNothing) {
  ConfigFiles files;
  EXPECT_EQ(files.store.loadPlan(), std::nullopt);
  EXPECT_EQ(files.store.loadPresets(), std::nullopt);
  EXPECT_EQ(files.store.loadActivePresetID(), std::nullopt);
  EXPECT_EQ(files.store.loadAutoSwitch(), std::nullopt);
  EXPECT_TRUE(files.disk.files().empty());
  EXPECT_TRUE(files.disk.folders().empty());
}

TEST(ConfigStore, FirstSaveMakesTheFolder) {
  ConfigFiles files;
  files.store.saveAutoSwitch(samples::autoSwitch());
  EXPECT_TRUE(files.disk.folders().contains("/home/user/config/Ventolith"));
  EXPECT_TRUE(files.has("autoswitch.json"));
}

TEST(ConfigStore, EachFileGivesBackWhatWasSaved) {
  ConfigFiles files;
  files.store.savePlan(samples::plan());
  files.store.savePresets(samples::presets());
  files.store.saveActivePresetID(samples::secondID);
  files.store.saveAutoSwitch(samples::autoSwitch());
  EXPECT_EQ(files.store.loadPlan(), samples::plan()); // Identifiers of points and rules included.
  EXPECT_EQ(files.store.loadPresets(), samples::presets());
  EXPECT_EQ(files.store.loadActivePresetID(), samples::secondID);
  EXPECT_EQ(files.store.loadAutoSwitch(), samples::autoSwitch());
}

TEST(ConfigStore, PresetsKeepTheirOrder) {
  ConfigFiles files;
  auto presets = samples::presets();
  std::swap(presets[0], presets[1]);
  files.store.savePresets(presets);
  EXPECT_EQ(files.store.loadPresets(), presets);
}

TEST(ConfigStore, NoPresetsAreAnEmptyListAndNotNothing) {
  ConfigFiles files;
  files.store.savePresets({});
  EXPECT_EQ(files.store.loadPresets(), std::vector<FanPreset>());
}

TEST(ConfigStore, LaterSaveReplacesTheEarlierOne) {
  ConfigFiles files;
  files.store.savePlan(samples::plan());
  files.store.savePlan(planOf(3000));
  EXPECT_EQ(files.store.loadPlan(), planOf(3000));
  EXPECT_EQ(files.disk.files().size(), 1U);
}

TEST(ConfigStore, ActivePresetNeedNotBeThere) {
  ConfigFiles files;
  files.store.savePresets({});
  files.store.saveActivePresetID(samples::firstID);
  EXPECT_EQ(files.store.loadActivePresetID(), samples::firstID);
}

TEST(ConfigStore, NoActivePresetRemovesTheFile) {
  ConfigFiles files;
  files.store.saveActivePresetID(samples::firstID);
  files.store.saveActivePresetID(std::nullopt);
  EXPECT_FALSE(files.has("active.json"));
  EXPECT_EQ(files.store.loadActivePresetID(), std::nullopt);
}

TEST(ConfigStore, NoActivePresetMakesNoFolder) {
  ConfigFiles files;
  FaultyFiles observed(files.disk);
  const ConfigStore store(observed, [&] { return files.userFolder; });
  store.saveActivePresetID(std::nullopt);
  EXPECT_EQ(observed.log(), Log{"remove"});
  EXPECT_TRUE(files.disk.folders().empty());
}

TEST(ConfigStore, ActivePresetThatCannotBeRemovedStays) {
  ConfigFiles files;
  files.store.saveActivePresetID(samples::firstID);
  FaultyFiles broken(files.disk, {.failingOperation = 0});
  ConfigStore(broken, [&] { return files.userFolder; }).saveActivePresetID(std::nullopt);
  EXPECT_EQ(files.store.loadActivePresetID(), samples::firstID);
}

TEST(ConfigStore, SaveMakesTheFolderAndReplacesTheFile) {
  ConfigFiles files;
  FaultyFiles observed(files.disk);
  ConfigStore(observed, [&] { return files.userFolder; }).savePlan(planOf(1));
  EXPECT_EQ(observed.log(),
            (Log{"createFolders", "create", "append", "flush", "close", "rename", "flushFolder"}));
}

TEST(ConfigStore, SaveGoesOnWhenTheFolderCannotBeMade) {
  ConfigFiles files;
  files.put("plan.json", "");
  FaultyFiles broken(files.disk, {.failingOperation = 0});
  ConfigStore(broken, [&] { return files.userFolder; }).savePlan(planOf(2000));
  EXPECT_EQ(files.store.loadPlan(), planOf(2000));
}

TEST(ConfigStore, SaveThatFailsOrCrashesAnywhereLeavesTheOldValueOrTheNew) {
  constexpr std::size_t operations = 7;
  for (std::size_t operation = 0; operation <= operations; ++operation) {
    for (const bool isCrash : {false, true}) {
      SCOPED_TRACE(operation);
      ConfigFiles files;
      files.store.savePlan(planOf(2000));
      support::FileFaults faults;
      (isCrash ? faults.deadFrom : faults.failingOperation) = operation;
      FaultyFiles broken(files.disk, faults);
      ConfigStore(broken, [&] { return files.userFolder; }).savePlan(planOf(3000));
      // The first makes the folder, which is there; only the last comes after the file has its name.
      const bool isNew = operation >= operations - 1 || (operation == 0 && !isCrash);
      EXPECT_EQ(files.store.loadPlan(), planOf(isNew ? 3000 : 2000));
    }
  }
}

TEST(ConfigStore, SaveAfterOneThatFailedSucceeds) {
  ConfigFiles files;
  FaultyFiles broken(files.disk, {.failingOperation = 3});
  const ConfigStore store(broken, [&] { return files.userFolder; });
  store.savePlan(planOf(2000));
  ASSERT_EQ(store.loadPlan(), std::nullopt);
  store.savePlan(planOf(2000));
  EXPECT_EQ(store.loadPlan(), planOf(2000));
}

TEST(ConfigStore, ValueWithoutAFormWritesNothing) {
  for (const double rpm : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    ConfigFiles files;
    files.store.savePlan(planOf(2000));
    files.store.savePlan(planOf(rpm));
    files.store.savePresets({{.name = "x", .plan = planOf(rpm)}});
    EXPECT_EQ(files.store.loadPlan(), planOf(2000));
    EXPECT_FALSE(files.has("presets.json"));
  }
}

TEST(ConfigStore, ValueWithoutAFormMakesTheFolderAllTheSame) {
  ConfigFiles files;
  files.store.savePlan(planOf(std::nan("")));
  EXPECT_TRUE(files.disk.folders().contains("/home/user/config/Ventolith"));
}

TEST(ConfigStore, ValueThatCouldNotBeReadBackLeavesTheOldFile) {
  const std::string longName(4'200'000, 'x');
  FanControlPlan ofManyFans;
  ofManyFans.fans.assign(66'000, {0, core::FanControlModePlan::automatic()});
  ConfigFiles files;
  files.store.savePlan(samples::plan());
  files.store.savePresets(samples::presets());
  files.store.savePlan({.rules = {{.name = longName}}});
  files.store.savePlan(ofManyFans);
  files.store.savePresets({{.name = longName}});
  EXPECT_EQ(files.store.loadPlan(), samples::plan());
  EXPECT_EQ(files.store.loadPresets(), samples::presets());
}

TEST(ConfigStore, FolderIsLookedForAtEveryUse) {
  support::VirtualDisk disk;
  fs::path folder = "/first";
  const ConfigStore store(disk, [&] { return folder; });
  store.savePlan(planOf(1000));
  folder = "/second";
  EXPECT_EQ(store.loadPlan(), std::nullopt);
  store.savePlan(planOf(2000));
  EXPECT_EQ(store.loadPlan(), planOf(2000));
  folder = "/first";
  EXPECT_EQ(store.loadPlan(), planOf(1000));
}

TEST(ConfigStore, FilesAreReadWithoutTouchingAnything) {
  ConfigFiles files;
  FaultyFiles observed(files.disk);
  const ConfigStore store(observed, [&] { return files.userFolder; });
  (void)store.loadPlan();
  (void)store.loadPresets();
  (void)store.loadActivePresetID();
  (void)store.loadAutoSwitch();
  EXPECT_EQ(observed.log(), (Log{"read", "read", "read", "read"}));
}

TEST(ConfigStore, NumbersComeBackToTheLastBit) {
  ConfigFiles files;
  for (const double number : {0.1 + 0.2, 1.0 / 3, 5e-324, std::numeric_limits<double>::max(), -1e300, 0.0}) {
    files.store.savePlan(planOf(number));
    EXPECT_EQ(files.store.loadPlan(), planOf(number));
  }
}

TEST(ConfigStore, HundredsOfPresetsOfTenFansComeBack) {
  ConfigFiles files;
  FanControlPlan plan;
  for (core::FanID fan = 0; fan < 10; ++fan)
    plan.fans.push_back({fan, samples::plan().fans.front().mode});
  const std::vector<FanPreset> presets(200, {.name = "One of many", .plan = plan});
  files.store.savePresets(presets);
  EXPECT_EQ(files.store.loadPresets(), presets);
}

TEST(ConfigStore, NamesOfAnySignsComeBack) {
  ConfigFiles files;
  for (const std::string& name :
       {std::string("a\"/\\\n\t\x01\x7f"), std::string("\0x", 2), std::string("🌀 Lüfter 風")}) {
    const std::vector<FanPreset> presets = {{.name = name}};
    files.store.savePresets(presets);
    EXPECT_EQ(files.store.loadPresets(), presets);
  }
}

TEST(ConfigStore, FilesOnThisComputerStandInTheFolderVentolith) {
  const support::TemporaryFolder folder;
  runtime::SystemFiles system;
  const ConfigStore store(system, [&] { return folder / "a/b"; });
  store.savePlan(samples::plan());
  store.savePresets(samples::presets());
  store.saveActivePresetID(samples::secondID);
  store.saveAutoSwitch(samples::autoSwitch());

  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder / "a/b/Ventolith"))
    names.insert(entry.path().filename().string());
  EXPECT_EQ(names, (std::set<std::string>{"active.json", "autoswitch.json", "plan.json", "presets.json"}));
  EXPECT_EQ(store.loadPlan(), samples::plan());
  EXPECT_EQ(store.loadPresets(), samples::presets());
  EXPECT_EQ(store.loadActivePresetID(), samples::secondID);
  EXPECT_EQ(store.loadAutoSwitch(), samples::autoSwitch());

  store.saveActivePresetID(std::nullopt);
  EXPECT_FALSE(fs::exists(folder / "a/b/Ventolith/active.json"));
}

} // namespace
} // namespace ventolith::app
