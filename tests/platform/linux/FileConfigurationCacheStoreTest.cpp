#include "platform/system/desktop/FileConfigurationCacheStore.h"

#include "platform/system/desktop/PrivateFiles.h"
#include "support/FaultyFiles.h"
#include "support/TemporaryFolder.h"
#include "support/VirtualDisk.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

namespace ventolith::platform {
namespace {

namespace fs = std::filesystem;
using app::ConfigurationCacheError;
using app::ConfigurationCacheRecord;
using support::FaultyFiles;
using support::FileFaults;
using support::VirtualDisk;

const fs::path file = "/home/user/.config/Ventolith/platform-configuration-v1.json";

ConfigurationCacheRecord record(std::int64_t revision) {
  return {.revision = revision,
          .envelope = {.kid = "k", .algorithm = "Ed25519", .payload = "e30", .signature = "AA"}};
}

FileConfigurationCacheStore storeOn(VirtualDisk& disk, FileFaults faults = {}) {
  return {std::make_unique<FaultyFiles>(disk, faults), file};
}

/// How many operations a save takes that nothing keeps from it.
std::size_t operationsOfASave() {
  VirtualDisk disk;
  auto files = std::make_unique<FaultyFiles>(disk);
  const FaultyFiles& layer = *files;
  FileConfigurationCacheStore store(std::move(files), file);
  store.save(record(1));
  return layer.log().size();
}

template <class Action>
std::optional<ConfigurationCacheError::Case> failure(Action action) {
  try {
    action();
  } catch (const ConfigurationCacheError& error) {
    return error.value();
  }
  return std::nullopt;
}

ConfigurationCacheError::Case status(std::errc error) {
  return ConfigurationCacheError::Keychain{static_cast<int>(error)};
}

TEST(FileConfigurationCacheStore, HoldsNothingAtFirstAndLoadingMakesNothing) {
  VirtualDisk disk;
  EXPECT_EQ(storeOn(disk).load(), std::nullopt);
  EXPECT_TRUE(disk.folders().empty());
}

TEST(FileConfigurationCacheStore, GivesBackTheLatestThatWasSaved) {
  VirtualDisk disk;
  storeOn(disk).save(record(1));
  storeOn(disk).save(record(2));
  EXPECT_EQ(storeOn(disk).load(), record(2));
  EXPECT_EQ(disk.files().size(), 1U);
}

TEST(FileConfigurationCacheStore, TellsWhyItCannotRead) {
  VirtualDisk disk;
  storeOn(disk).save(record(1));
  auto store = storeOn(disk, {.failingOperation = 0, .error = std::errc::permission_denied});
  EXPECT_EQ(failure([&] { (void)store.load(); }), status(std::errc::permission_denied));
}

TEST(FileConfigurationCacheStore, AnythingElseInTheFileIsACorruptRecord) {
  for (const std::string& text : {std::string(), std::string("{}"), std::string((1 << 20) + 1, ' ')}) {
    VirtualDisk disk;
    disk.put(file, text);
    auto store = storeOn(disk);
    EXPECT_EQ(failure([&] { (void)store.load(); }),
              ConfigurationCacheError::Case(ConfigurationCacheError::Plain::corruptRecord))
        << text.size();
  }
}

TEST(FileConfigurationCacheStore, ASaveThatFailsAtAnyStepIsTold) {
  for (std::size_t step = 0; step < operationsOfASave(); ++step) {
    VirtualDisk disk;
    auto store = storeOn(disk, {.failingOperation = step});
    EXPECT_EQ(failure([&] { store.save(record(1)); }), status(std::errc::io_error)) << step;
  }
}

TEST(FileConfigurationCacheStore, AFullDiskLeavesWhatWasThere) {
  VirtualDisk disk;
  storeOn(disk).save(record(1));
  auto store = storeOn(disk, {.space = 10});
  EXPECT_EQ(failure([&] { store.save(record(2)); }), status(std::errc::no_space_on_device));
  EXPECT_EQ(storeOn(disk).load(), record(1));
  EXPECT_EQ(disk.files().size(), 1U);
}

TEST(FileConfigurationCacheStore, ALossOfPowerAtAnyStepLeavesTheOldRecordOrTheNew) {
  std::size_t newOnes = 0;
  for (std::size_t step = 0; step <= operationsOfASave(); ++step) {
    VirtualDisk disk;
    disk.put(file, encode(record(1)));
    (void)failure([&] { storeOn(disk, {.deadFrom = step}).save(record(2)); });
    for (const auto& content : disk.afterPowerLoss()) {
      ASSERT_TRUE(content.contains(file)) << step;
      const std::string& text = content.at(file);
      newOnes += text == encode(record(2)) ? 1 : 0;
      EXPECT_TRUE(text == encode(record(1)) || text == encode(record(2))) << step << ": " << text;
    }
  }
  EXPECT_GT(newOnes, 0U);
}

TEST(FileConfigurationCacheStore, IsNamedByItsFile) {
  VirtualDisk disk;
  EXPECT_EQ(storeOn(disk).coordinationKey(), "file:" + file.string());
}

/// Permissions of a real file, whatever this process withholds.
fs::perms permissionsOf(const fs::path& path) {
  return fs::status(path).permissions();
}

/// Nothing is withheld from new files while it lives.
struct NothingWithheld {
  mode_t before = ::umask(0);
  NothingWithheld() = default;
  NothingWithheld(const NothingWithheld&) = delete;
  NothingWithheld& operator=(const NothingWithheld&) = delete;
  ~NothingWithheld() { ::umask(before); }
};

TEST(FileConfigurationCacheStore, TheFileIsItsOwnersAlone) {
  const NothingWithheld withheld;
  const support::TemporaryFolder folder;
  FileConfigurationCacheStore store(std::make_unique<PrivateFiles>(), folder / "record.json");
  store.save(record(1));
  EXPECT_EQ(permissionsOf(folder / "record.json"), runtime::privateFile);
  EXPECT_EQ(store.load(), record(1));
}

TEST(FileConfigurationCacheStore, TheFileIsItsOwnersAloneBeforeAnythingIsInIt) {
  const NothingWithheld withheld;
  const support::TemporaryFolder folder;
  PrivateFiles files;
  // A crash after the file was made: creating folders and the file are the first two steps.
  FileConfigurationCacheStore store(std::make_unique<FaultyFiles>(files, FileFaults{.deadFrom = 2}),
                                    folder / "record.json");
  EXPECT_TRUE(failure([&] { store.save(record(1)); }));
  ASSERT_EQ(folder.names().size(), 1U);
  const std::string draft = *folder.names().begin();
  EXPECT_EQ(folder.text(draft), "");
  EXPECT_EQ(permissionsOf(folder / draft), runtime::privateFile);
}

} // namespace
} // namespace ventolith::platform
