#include "runtime/Files.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <csignal>
#include <set>
#include <string>

namespace ventolith::runtime {
namespace {

namespace fs = std::filesystem;
using support::TemporaryFolder;
using Names = std::set<std::string>;

constexpr std::size_t limit = 1000;

class Files : public testing::Test {
protected:
  const TemporaryFolder folder;
  SystemFiles files;

  [[nodiscard]] std::error_code readError(const fs::path& path) {
    const auto content = files.read(path, limit);
    return content ? std::error_code() : content.error();
  }

  [[nodiscard]] std::error_code replace(const fs::path& path, const std::string& text,
                                        fs::perms permissions = ordinaryFile) {
    return replaceFile(files, path, text, permissions);
  }
};

/// What the process withholds from a new file's permissions, while it exists.
class Umask {
public:
  explicit Umask(mode_t mask) : former_(::umask(mask)) {}
  Umask(const Umask&) = delete;
  Umask& operator=(const Umask&) = delete;
  ~Umask() { ::umask(former_); }

private:
  mode_t former_;
};

/// How long a file may become in this process, while it exists.
class FileSizeLimit {
public:
  explicit FileSizeLimit(rlim_t bytes) : formerHandler_(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &former_);
    const rlimit limited{bytes, former_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limited);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &former_);
    std::signal(SIGXFSZ, formerHandler_);
  }

private:
  rlimit former_{};
  void (*formerHandler_)(int);
};

std::size_t openDescriptors() {
  const fs::directory_iterator entries("/dev/fd");
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

TEST_F(Files, ContentIsReadByteForByte) {
  const std::string bytes("a\0\r\n\xFF", 5);
  EXPECT_EQ(files.read(folder.write("x", bytes), limit).value(), bytes);
  EXPECT_EQ(files.read(folder.write("empty", ""), limit).value(), "");
}

TEST_F(Files, ContentLongerThanOneReadIsWhole) {
  std::string text;
  for (int line = 0; line < 20000; ++line)
    text += std::to_string(line) + "\n";
  EXPECT_EQ(files.read(folder.write("x", text), text.size()).value(), text);
}

TEST_F(Files, FileOfTheLimitIsReadAndALongerOneRefused) {
  EXPECT_EQ(readError(folder.write("x", std::string(limit, 'x'))), std::error_code());
  EXPECT_EQ(readError(folder.write("x", std::string(limit + 1, 'x'))), std::errc::file_too_large);
}

TEST_F(Files, FileWithoutASizeIsReadUpToTheLimit) {
  const fs::path endless = "/proc/self/environ"; // Says that it is empty.
  if (!fs::exists(endless)) GTEST_SKIP() << "a system without such files";
  const auto content = files.read(endless, std::size_t{1} << 20);
  ASSERT_TRUE(content);
  ASSERT_GT(content->size(), 0U);
  EXPECT_EQ(files.read(endless, content->size() - 1).error(), std::errc::file_too_large);
}

TEST_F(Files, HugeFileIsRefused) {
  const fs::path huge = folder.write("x", "");
  fs::resize_file(huge, std::uintmax_t{1} << 32); // Takes no room: it is a hole.
  EXPECT_EQ(readError(huge), std::errc::file_too_large);
}

TEST_F(Files, FileThatIsNotThereCannotBeRead) {
  EXPECT_EQ(readError(folder / "none"), std::errc::no_such_file_or_directory);
  fs::create_symlink("nowhere", folder / "link");
  EXPECT_EQ(readError(folder / "link"), std::errc::no_such_file_or_directory);
  fs::create_symlink("circle", folder / "circle");
  EXPECT_EQ(readError(folder / "circle"), std::errc::too_many_symbolic_link_levels);
}

TEST_F(Files, LinkIsReadThrough) {
  folder.write("x", "text");
  fs::create_symlink("x", folder / "link");
  EXPECT_EQ(files.read(folder / "link", limit).value(), "text");
}

TEST_F(Files, FolderCannotBeRead) {
  EXPECT_EQ(readError(folder.path()), std::errc::is_a_directory);
}

TEST_F(Files, PipeWithoutAWriterIsRefusedAndNotWaitedFor) {
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(readError(folder / "pipe"), std::errc::not_supported);
}

TEST_F(Files, DeviceIsRefused) {
  EXPECT_EQ(readError("/dev/zero"), std::errc::not_supported);
}

TEST_F(Files, SocketIsRefused) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string path = (folder / "socket").string();
  ASSERT_LT(path.size(), sizeof address.sun_path);
  path.copy(address.sun_path, path.size());
  const int listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_EQ(::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  EXPECT_TRUE(readError(path));
  ::close(listener);
}

TEST_F(Files, FoldersAreMadeWithThoseAboveThem) {
  EXPECT_FALSE(files.createFolders(folder / "a/b/c"));
  EXPECT_TRUE(fs::is_directory(folder / "a/b/c"));
}

TEST_F(Files, FolderThatIsThereIsASuccess) {
  EXPECT_FALSE(files.createFolders(folder.path()));
  fs::create_directory_symlink(folder.path(), folder / "link");
  EXPECT_FALSE(files.createFolders(folder / "link"));
}

TEST_F(Files, FolderCannotBeMadeBelowAFile) {
  folder.write("x", "");
  EXPECT_TRUE(files.createFolders(folder / "x/a"));
}

TEST_F(Files, NewFileIsNotMadeWhereAnythingStands) {
  folder.write("x", "text");
  fs::create_symlink("nowhere", folder / "link");
  for (const char* name : {"x", "link", "."}) {
    SCOPED_TRACE(name);
    const auto created = files.create(folder / name, ordinaryFile);
    ASSERT_FALSE(created);
    EXPECT_EQ(created.error(), std::errc::file_exists);
  }
  EXPECT_EQ(folder.names(), (Names{"link", "x"}));
  EXPECT_EQ(folder.text("x"), "text");
}

TEST_F(Files, OnlyAFileOrALinkIsRemoved) {
  folder.write("x", "text");
  fs::create_symlink("x", folder / "link");
  fs::create_directory(folder / "folder");
  EXPECT_FALSE(files.remove(folder / "link"));
  EXPECT_TRUE(files.remove(folder / "folder"));
  EXPECT_EQ(files.remove(folder / "none"), std::errc::no_such_file_or_directory);
  EXPECT_EQ(folder.names(), (Names{"folder", "x"}));
}

TEST_F(Files, OnlyAFolderThatIsThereIsFlushed) {
  EXPECT_FALSE(files.flushFolder(folder.path()));
  EXPECT_EQ(files.flushFolder(folder / "none"), std::errc::no_such_file_or_directory);
  EXPECT_EQ(files.flushFolder(folder.write("x", "")), std::errc::not_a_directory);
}

TEST_F(Files, ReplacementStandsAloneInTheFolder) {
  EXPECT_FALSE(replace(folder / "x", "first"));
  EXPECT_FALSE(replace(folder / "x", std::string("sec\0nd", 6)));
  EXPECT_EQ(folder.text("x"), std::string("sec\0nd", 6));
  EXPECT_EQ(folder.names(), Names{"x"});
}

TEST_F(Files, ReplacementWorksInTheCurrentFolder) {
  const fs::path former = fs::current_path();
  fs::current_path(folder.path());
  const auto error = replace("x", "text");
  fs::current_path(former);
  EXPECT_FALSE(error);
  EXPECT_EQ(folder.text("x"), "text");
}

TEST_F(Files, ReplacementHasThePermissionsLessWhatTheProcessWithholds) {
  struct Row {
    mode_t umask;
    fs::perms asked;
    int permissions;
  };
  const Row rows[] = {{022, ordinaryFile, 0644},
                      {077, ordinaryFile, 0600},
                      {0, ordinaryFile, 0666},
                      {0, privateFile, 0600},
                      {022, privateFile, 0600}};
  for (const Row& row : rows) {
    const Umask umask(row.umask);
    EXPECT_FALSE(replace(folder / "x", "text", row.asked));
    EXPECT_EQ(static_cast<int>(fs::status(folder / "x").permissions()), row.permissions);
  }
}

TEST_F(Files, LinkIsReplacedAndNotWhatItLeadsTo) {
  folder.write("x", "old");
  fs::create_symlink("x", folder / "link");
  EXPECT_FALSE(replace(folder / "link", "new"));
  EXPECT_EQ(folder.text("x"), "old");
  EXPECT_EQ(folder.text("link"), "new");
  EXPECT_FALSE(fs::is_symlink(folder / "link"));
}

TEST_F(Files, FolderIsNotReplaced) {
  fs::create_directory(folder / "x");
  EXPECT_EQ(replace(folder / "x", "text"), std::errc::is_a_directory);
  EXPECT_EQ(folder.names(), Names{"x"});
  EXPECT_TRUE(fs::is_directory(folder / "x"));
}

TEST_F(Files, NothingIsReplacedInAFolderThatIsNotThere) {
  EXPECT_EQ(replace(folder / "none/x", "text"), std::errc::no_such_file_or_directory);
  EXPECT_EQ(folder.names(), Names{});
}

TEST_F(Files, ReplacementThatIsCutShortByTheSystemLeavesTheOldContentAndNothingBeside) {
  folder.write("x", "old");
  std::error_code error;
  {
    const FileSizeLimit size(100);
    error = replace(folder / "x", std::string(300, 'x'));
  }
  EXPECT_EQ(error, std::errc::file_too_large);
  EXPECT_EQ(folder.text("x"), "old");
  EXPECT_EQ(folder.names(), Names{"x"});
}

TEST_F(Files, NoOperationLeavesADescriptorOpen) {
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  fs::create_directory(folder / "folder");
  const std::size_t before = openDescriptors();
  EXPECT_FALSE(replace(folder / "x", std::string(2 * limit, 'x')));
  EXPECT_TRUE(replace(folder / "folder", "text"));
  for (const char* name : {"x", "pipe", "folder", "none"})
    EXPECT_TRUE(readError(folder / name));
  (void)files.create(folder / "dropped", privateFile);
  EXPECT_EQ(openDescriptors(), before);
}

} // namespace
} // namespace ventolith::runtime
