#include "runtime/Files.h"
#include "support/FaultyFiles.h"
#include "support/TemporaryFolder.h"
#include "support/VirtualDisk.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace ventolith::runtime {
namespace {

namespace fs = std::filesystem;
using support::FaultyFiles;
using support::FileFaults;
using support::TemporaryFolder;
using support::VirtualDisk;

const fs::path file = "/home/plan.json";
const std::string oldText = "old content";
const std::string newText = "the content that is new";

VirtualDisk::Content only(const std::string& text) {
  return {{file, text}};
}

std::error_code replaceWithNew(FileLayer& layer) {
  return replaceFile(layer, file, newText, ordinaryFile);
}

/// What may stand under the name after a loss of power; "none" for nothing.
std::set<std::string> textsAfterPowerLoss(const VirtualDisk& disk) {
  std::set<std::string> texts;
  for (const auto& outcome : disk.afterPowerLoss())
    texts.insert(outcome.contains(file) ? outcome.at(file) : "none");
  return texts;
}

/// How many operations a replacement takes that goes well.
std::size_t operationCount(std::size_t longestAppend) {
  VirtualDisk disk;
  disk.put(file, oldText);
  FaultyFiles files(disk, {.longestAppend = longestAppend});
  EXPECT_FALSE(replaceWithNew(files));
  return files.log().size();
}

TEST(FileReplacement, NewFileIsFlushedBeforeItGetsTheNameAndTheFolderAfterwards) {
  VirtualDisk disk;
  disk.put(file, oldText);
  FaultyFiles files(disk);
  EXPECT_FALSE(replaceWithNew(files));
  EXPECT_EQ(files.log(),
            (std::vector<std::string>{"create", "append", "flush", "close", "rename", "flushFolder"}));
  EXPECT_EQ(disk.files(), only(newText));
}

TEST(FileReplacement, SuccessOutlivesALossOfPower) {
  VirtualDisk disk;
  disk.put(file, oldText);
  EXPECT_FALSE(replaceWithNew(disk));
  EXPECT_EQ(textsAfterPowerLoss(disk), std::set<std::string>{newText});
}

TEST(FileReplacement, ContentIsWholeThoughOneByteIsTakenAtATime) {
  VirtualDisk disk;
  disk.put(file, oldText);
  FaultyFiles files(disk, {.longestAppend = 1});
  EXPECT_FALSE(replaceWithNew(files));
  EXPECT_EQ(disk.files(), only(newText));
}

TEST(FileReplacement, EmptyContentIsWritten) {
  VirtualDisk disk;
  disk.put(file, oldText);
  EXPECT_FALSE(replaceFile(disk, file, "", ordinaryFile));
  EXPECT_EQ(disk.files(), only(""));
}

TEST(FileReplacement, OperationThatFailsLeavesTheOldContentAndNothingBeside) {
  const std::size_t last = operationCount(1) - 1; // The flush of the folder: the new content is in place.
  for (const std::errc error : {std::errc::io_error, std::errc::no_space_on_device}) {
    for (std::size_t operation = 0; operation < last; ++operation) {
      SCOPED_TRACE(operation);
      VirtualDisk disk;
      disk.put(file, oldText);
      FaultyFiles files(disk, {.failingOperation = operation, .error = error, .longestAppend = 1});
      EXPECT_EQ(replaceWithNew(files), error);
      EXPECT_EQ(disk.files(), only(oldText));
      EXPECT_EQ(textsAfterPowerLoss(disk), std::set<std::string>{oldText});
    }
  }
}

TEST(FileReplacement, OperationThatFailsLeavesNothingWhereNothingWas) {
  const std::size_t last = operationCount(1) - 1;
  for (std::size_t operation = 0; operation < last; ++operation) {
    SCOPED_TRACE(operation);
    VirtualDisk disk;
    (void)disk.createFolders(file.parent_path());
    FaultyFiles files(disk, {.failingOperation = operation, .longestAppend = 1});
    EXPECT_EQ(replaceWithNew(files), std::errc::io_error);
    EXPECT_EQ(disk.files(), VirtualDisk::Content());
  }
}

TEST(FileReplacement, FailureOfTheLastFlushIsReportedAndTheNewContentIsInPlace) {
  VirtualDisk disk;
  disk.put(file, oldText);
  FaultyFiles files(disk, {.failingOperation = operationCount(1) - 1, .longestAppend = 1});
  EXPECT_EQ(replaceWithNew(files), std::errc::io_error);
  EXPECT_EQ(disk.files(), only(newText));
  EXPECT_EQ(textsAfterPowerLoss(disk), (std::set<std::string>{oldText, newText}));
}

TEST(FileReplacement, DiskThatFillsUpAtAnyByteLeavesTheOldContentAndNothingBeside) {
  for (std::size_t space = 0; space < newText.size(); ++space) {
    SCOPED_TRACE(space);
    VirtualDisk disk;
    disk.put(file, oldText);
    FaultyFiles files(disk, {.space = space});
    EXPECT_EQ(replaceWithNew(files), std::errc::no_space_on_device);
    EXPECT_EQ(disk.files(), only(oldText));
  }
}

TEST(FileReplacement, CrashBeforeAnyOperationLeavesTheOldContentOrTheNew) {
  const std::size_t count = operationCount(1);
  ASSERT_GT(count, newText.size());
  for (std::size_t operation = 0; operation < count; ++operation) {
    SCOPED_TRACE(operation);
    VirtualDisk disk;
    disk.put(file, oldText);
    FaultyFiles files(disk, {.deadFrom = operation, .longestAppend = 1});
    EXPECT_TRUE(replaceWithNew(files));
    const bool isRenamed = operation == count - 1;
    EXPECT_EQ(disk.files().at(file), isRenamed ? newText : oldText);
  }
}

TEST(FileReplacement, LossOfPowerBeforeAnyOperationLeavesTheOldContentOrTheNew) {
  const std::size_t count = operationCount(1);
  for (std::size_t operation = 0; operation < count; ++operation) {
    SCOPED_TRACE(operation);
    VirtualDisk disk;
    disk.put(file, oldText);
    FaultyFiles files(disk, {.deadFrom = operation, .longestAppend = 1});
    (void)replaceWithNew(files);
    const bool isRenamed = operation == count - 1;
    EXPECT_EQ(textsAfterPowerLoss(disk),
              isRenamed ? std::set<std::string>({oldText, newText}) : std::set<std::string>{oldText});
  }
}

TEST(FileReplacement, WhatACrashLeftBesideIsNotStumbledOver) {
  VirtualDisk disk;
  disk.put(file, oldText);
  for (int crash = 0; crash < 3; ++crash) {
    FaultyFiles files(disk, {.deadFrom = 3, .longestAppend = 1});
    (void)replaceWithNew(files);
  }
  ASSERT_EQ(disk.files().size(), 4U);

  EXPECT_FALSE(replaceWithNew(disk));

  EXPECT_EQ(disk.files().at(file), newText);
  EXPECT_EQ(disk.files().size(), 4U); // The last one took its own file along.
}

TEST(FileReplacement, SearchForAFreeNameEnds) {
  struct NoFreeName : VirtualDisk {
    int attempts = 0;
    FileResult<std::unique_ptr<NewFile>> create(const fs::path&, fs::perms) override {
      ++attempts;
      return std::make_error_code(std::errc::file_exists);
    }
  } files;
  files.put(file, oldText);
  EXPECT_EQ(replaceWithNew(files), std::errc::file_exists);
  EXPECT_EQ(files.attempts, 1000);
  EXPECT_EQ(files.files(), only(oldText));
}

TEST(FileReplacement, FileThatTakesNothingIsNotAskedForEver) {
  struct Full : NewFile {
    FileResult<std::size_t> append(std::string_view) override { return std::size_t{0}; }
    std::error_code flush() override { return {}; }
    std::error_code close() override { return {}; }
  };
  struct FullDisk : VirtualDisk {
    FileResult<std::unique_ptr<NewFile>> create(const fs::path&, fs::perms) override {
      return std::make_unique<Full>();
    }
  } files;
  files.put(file, oldText);
  EXPECT_EQ(replaceWithNew(files), std::errc::io_error);
  EXPECT_EQ(files.files(), only(oldText));
}

TEST(FileReplacementOnThisComputer, OperationThatFailsLeavesTheOldContentAndNothingBeside) {
  const std::size_t last = operationCount(1) - 1;
  for (std::size_t operation = 0; operation < last; ++operation) {
    SCOPED_TRACE(operation);
    const TemporaryFolder folder;
    folder.write("plan.json", oldText);
    SystemFiles system;
    FaultyFiles files(system, {.failingOperation = operation, .longestAppend = 1});
    EXPECT_EQ(replaceFile(files, folder / "plan.json", newText, ordinaryFile), std::errc::io_error);
    EXPECT_EQ(folder.names(), std::set<std::string>{"plan.json"});
    EXPECT_EQ(folder.text("plan.json"), oldText);
  }
}

TEST(FileReplacementOnThisComputer, CrashBeforeAnyOperationLeavesTheOldContentOrTheNew) {
  const std::size_t count = operationCount(1);
  for (std::size_t operation = 0; operation < count; ++operation) {
    SCOPED_TRACE(operation);
    const TemporaryFolder folder;
    folder.write("plan.json", oldText);
    SystemFiles system;
    FaultyFiles files(system, {.deadFrom = operation, .longestAppend = 1});
    EXPECT_TRUE(replaceFile(files, folder / "plan.json", newText, ordinaryFile));
    EXPECT_EQ(folder.text("plan.json"), operation == count - 1 ? newText : oldText);
  }
}

} // namespace
} // namespace ventolith::runtime
