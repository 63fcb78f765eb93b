// Files that are damaged, hostile, or no files.
#include "app/ConfigFiles.h"
#include "app/ConfigStore.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <functional>
#include <map>

namespace ventolith::app {
namespace {

namespace fs = std::filesystem;

const std::vector<std::string> names = {"plan.json", "presets.json", "active.json", "autoswitch.json"};

void saveAll(const ConfigStore& store) {
  store.savePlan(samples::plan());
  store.savePresets(samples::presets());
  store.saveActivePresetID(samples::secondID);
  store.saveAutoSwitch(samples::autoSwitch());
}

/// All files but the one of that name give back what saveAll saved, and that one gives nothing.
void expectOnlyThisOneLost(const ConfigStore& store, const std::string& lost) {
  const auto expectedOf = [&](const std::string& name, auto value) {
    return lost == name ? std::nullopt : std::optional(value);
  };
  EXPECT_EQ(store.loadPlan(), expectedOf("plan.json", samples::plan()));
  EXPECT_EQ(store.loadPresets(), expectedOf("presets.json", samples::presets()));
  EXPECT_EQ(store.loadActivePresetID(), expectedOf("active.json", samples::secondID));
  EXPECT_EQ(store.loadAutoSwitch(), expectedOf("autoswitch.json", samples::autoSwitch()));
}

bool givesNothing(const ConfigStore& store, const std::string& name) {
  if (name == "plan.json") return !store.loadPlan();
  if (name == "presets.json") return !store.loadPresets();
  if (name == "active.json") return !store.loadActivePresetID();
  return !store.loadAutoSwitch();
}

std::string repeated(const std::string& part, std::size_t count) {
  std::string text;
  text.reserve(part.size() * count);
  for (std::size_t number = 0; number < count; ++number)
    text += part;
  return text;
}

TEST(ConfigStoreDamage, TextThatIsNoSuchRecordGivesNothingAndTheOthersStay) {
  const std::map<std::string, std::string> texts = {
      {"empty", ""},
      {"blank", " \n"},
      {"no JSON", "fans: 3"},
      {"another type", "7"},
      {"null", "null"},
      {"an object of nothing", "{}"},
      {"a list of nothing", "[null]"},
      {"a list of objects of nothing", "[{}]"},
      {"zero bytes", std::string(4096, '\0')},
      {"invalid UTF-8", "{\"id\":\"\xFF\xFE\"}"},
      {"a surrogate alone", R"({"id":"\ud800"})"},
      {"what follows the end", "{}{}"},
      {"deep lists", repeated("[", 100'000)},
      {"deep objects", repeated("{\"a\":", 100'000)},
      {"deep plan", "{\"fans\":" + repeated("[", 40) + repeated("]", 40) + "}"},
      {"many values", "[" + repeated("0,", 300'000) + "0]"},
      {"many objects", "[" + repeated("{\"a\":0},", 30'000) + "{}]"},
      {"a number beyond all", "{\"fans\":[],\"rules\":[],\"tuning\":{\"emaAlpha\":1e999}}"},
      {"a number of many digits", "[" + repeated("9", 100'000) + "]"},
      {"five megabytes of blanks", "[" + std::string(5'000'000, ' ') + "]"},
  };
  ConfigFiles files;
  for (const std::string& name : names) {
    for (const auto& [description, text] : texts) {
      SCOPED_TRACE(name + ": " + description);
      saveAll(files.store);
      files.put(name, text);
      expectOnlyThisOneLost(files.store, name);
      EXPECT_EQ(files.text(name), text);
    }
  }
}

TEST(ConfigStoreDamage, FileThatIsCutOffAnywhereGivesNothing) {
  ConfigFiles files;
  for (const std::string& name : names) {
    saveAll(files.store);
    const std::string whole = files.text(name);
    for (std::size_t length = 0; length < whole.size(); ++length) {
      SCOPED_TRACE(name + " of " + std::to_string(length) + " bytes");
      files.put(name, whole.substr(0, length));
      ASSERT_TRUE(givesNothing(files.store, name));
    }
    files.put(name, whole);
    EXPECT_FALSE(givesNothing(files.store, name));
  }
}

TEST(ConfigStoreDamage, KeyThatStandsTwiceGivesNothing) {
  const std::map<std::string, std::string> keys = {{"plan.json", "\"fans\""},
                                                   {"presets.json", "\"name\""},
                                                   {"active.json", "\"id\""},
                                                   {"autoswitch.json", "\"enabled\""}};
  ConfigFiles files;
  for (const auto& [name, key] : keys) {
    SCOPED_TRACE(name);
    saveAll(files.store);
    std::string text = files.text(name);
    text.insert(text.find(key), key + " : 1, ");
    files.put(name, text);
    expectOnlyThisOneLost(files.store, name);
  }
}

TEST(ConfigStoreDamage, MemberThatIsMissingOrOfAnotherTypeGivesNothing) {
  struct Row {
    const char* name;
    const char* text;
  };
  const Row rows[] = {
      {"active.json", R"({})"},
      {"active.json", R"({"id":null})"},
      {"active.json", R"({"id":7})"},
      {"active.json", R"({"id":"C0010002"})"},
      {"active.json", R"({"id":"{C0010002-0000-4000-A000-000000000002}"})"},
      {"active.json", R"({"ID":"C0010002-0000-4000-A000-000000000002"})"},
      {"active.json", R"("C0010002-0000-4000-A000-000000000002")"},
      {"autoswitch.json", R"({"onBatteryPresetID":null})"},
      {"autoswitch.json", R"({"enabled":1})"},
      {"autoswitch.json", R"({"enabled":"true"})"},
      {"autoswitch.json", R"({"enabled":true,"onACPresetID":"none"})"},
      {"presets.json", R"({"presets":[]})"},
      {"presets.json", R"([{"id":"C0010002-0000-4000-A000-000000000002","name":"x","isBuiltIn":false}])"},
      {"plan.json", R"({"fans":[],"rules":[]})"},
      {"plan.json", R"([])"},
  };
  ConfigFiles files;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    saveAll(files.store);
    files.put(row.name, row.text);
    expectOnlyThisOneLost(files.store, row.name);
  }
}

TEST(ConfigStoreDamage, OneDamagedPresetLosesTheWholeList) {
  ConfigFiles files;
  saveAll(files.store);
  std::string text = files.text("presets.json");
  text.replace(text.find("\"Idle\""), 6, "null");
  files.put("presets.json", text);
  expectOnlyThisOneLost(files.store, "presets.json");
}

TEST(ConfigStoreDamage, NextSaveOverwritesADamagedFile) {
  ConfigFiles files;
  files.put("plan.json", "{\"fans\" : [");
  ASSERT_EQ(files.store.loadPlan(), std::nullopt);
  files.store.savePlan(samples::plan());
  EXPECT_EQ(files.store.loadPlan(), samples::plan());
}

/// On this computer: something else stands in the place of a file.
TEST(ConfigStoreDamage, WhatIsNoFileGivesNothingAtOnce) {
  const std::map<std::string, std::function<void(const fs::path&)>> obstacles = {
      {"a pipe", [](const fs::path& path) { ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0); }},
      {"a folder", [](const fs::path& path) { fs::create_directory(path); }},
      {"a device", [](const fs::path& path) { fs::create_symlink("/dev/zero", path); }},
      {"a link to itself", [](const fs::path& path) { fs::create_symlink(path.filename(), path); }},
      {"a link to nowhere", [](const fs::path& path) { fs::create_symlink("nowhere", path); }},
  };
  for (const std::string& name : names) {
    for (const auto& [description, put] : obstacles) {
      SCOPED_TRACE(name + ": " + description);
      const support::TemporaryFolder folder;
      runtime::SystemFiles system;
      const ConfigStore store(system, [&] { return folder.path(); });
      saveAll(store);
      fs::remove(folder.path() / "Ventolith" / name);
      put(folder.path() / "Ventolith" / name);
      expectOnlyThisOneLost(store, name);
    }
  }
}

TEST(ConfigStoreDamage, HugeFileGivesNothingWithoutBeingRead) {
  const support::TemporaryFolder folder;
  runtime::SystemFiles system;
  const ConfigStore store(system, [&] { return folder.path(); });
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    saveAll(store);
    fs::resize_file(folder.path() / "Ventolith" / name, 100'000'000);
    expectOnlyThisOneLost(store, name);
  }
}

TEST(ConfigStoreDamage, FileInThePlaceOfTheFolderIsLeftAlone) {
  const support::TemporaryFolder folder;
  folder.write("Ventolith", "mine");
  runtime::SystemFiles system;
  const ConfigStore store(system, [&] { return folder.path(); });
  saveAll(store);
  store.saveActivePresetID(std::nullopt);
  EXPECT_EQ(store.loadPlan(), std::nullopt);
  EXPECT_EQ(folder.text("Ventolith"), "mine");
}

} // namespace
} // namespace ventolith::app
