#include "platform/system/desktop/PrivateFiles.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ventolith::platform {
namespace {

namespace fs = std::filesystem;
using support::TemporaryFolder;

constexpr std::size_t limit = 1000;

mode_t modeOf(const fs::path& path) {
  struct stat status{};
  EXPECT_EQ(::stat(path.c_str(), &status), 0);
  return status.st_mode & ALLPERMS;
}

std::error_code errorOf(const fs::path& path) {
  const auto content = PrivateFiles().read(path, limit);
  return content ? std::error_code() : content.error();
}

TEST(PrivateFiles, TakeFromOthersWhatTheyWereAllowed) {
  const TemporaryFolder folder;
  for (const auto& [before, after] : std::initializer_list<std::pair<mode_t, mode_t>>{
           {0600, 0600}, {0644, 0600}, {0666, 0600}, {0640, 0600}, {04755, 0700}, {0404, 0400}}) {
    const fs::path file = folder.write("file", "text");
    ASSERT_EQ(::chmod(file.c_str(), before), 0);
    EXPECT_EQ(PrivateFiles().read(file, limit).value(), "text");
    EXPECT_EQ(modeOf(file), after) << before;
    fs::remove(file);
  }
}

TEST(PrivateFiles, FollowALinkToTheFile) {
  const TemporaryFolder folder;
  const fs::path file = folder.write("file", "text");
  ASSERT_EQ(::chmod(file.c_str(), 0644), 0);
  fs::create_symlink(file, folder / "link");
  EXPECT_EQ(PrivateFiles().read(folder / "link", limit).value(), "text");
  EXPECT_EQ(modeOf(file), 0600U);
}

TEST(PrivateFiles, RefuseAFileOfAnotherUser) {
  const TemporaryFolder folder;
  fs::path file = "/etc/passwd"; // Root's, which everybody may read.
  if (::geteuid() == 0) {
    file = folder.write("file", "text");
    constexpr uid_t nobody = 65534;
    ASSERT_EQ(::chown(file.c_str(), nobody, nobody), 0);
  }
  const mode_t mode = modeOf(file);
  EXPECT_EQ(errorOf(file), std::errc::operation_not_permitted);
  EXPECT_EQ(modeOf(file), mode);
}

TEST(PrivateFiles, WaitForNobodyAndReadFilesAlone) {
  const TemporaryFolder folder;
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(errorOf(folder / "pipe"), std::errc::not_supported);
  EXPECT_EQ(errorOf(folder.path()), std::errc::is_a_directory);
  EXPECT_EQ(errorOf(folder / "none"), std::errc::no_such_file_or_directory);
  EXPECT_EQ(errorOf(folder.write("long", std::string(limit + 1, 'x'))), std::errc::file_too_large);
}

TEST(PrivateFiles, AreWrittenLikeAnyOther) {
  const TemporaryFolder folder;
  PrivateFiles files;
  ASSERT_FALSE(files.createFolders(folder / "a/b"));
  ASSERT_FALSE(runtime::replaceFile(files, folder / "a/b/file", "text", runtime::privateFile));
  EXPECT_EQ(folder.text("a/b/file"), "text");
  EXPECT_FALSE(files.remove(folder / "a/b/file"));
  EXPECT_FALSE(fs::exists(folder / "a/b/file"));
}

} // namespace
} // namespace ventolith::platform
