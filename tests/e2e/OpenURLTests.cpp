// Pages that are shown by a browser of the tests' own.
#include "platform/system/desktop/OpenURL.h"

#include "e2e/EnvironmentVariable.h"
#include "e2e/Program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ventolith::e2e {
namespace {

namespace fs = std::filesystem;

/// Notes down what it is given, and runs until it is told to end, or its folder is gone.
constexpr const char* browser = R"(#!/bin/bash
folder=${0%/*}
exec >"$folder/note.draft"
for argument; do echo "argument $argument"; done
for file in /proc/$$/fd/*; do
  [ -e "$file" ] && printf 'file %s ' "${file##*/}" && readlink "$file"
done
echo "parent $PPID"
sed -n 's/^Sig\(Blk\|Ign\):\t/\1 /p' /proc/self/status
mv "$folder/note.draft" "$folder/note"
while [ -e "$0" ] && [ ! -e "$folder/end" ]; do sleep 0.02; done
[ ! -e "$0" ] || touch "$folder/ended"
)";

/// A folder with an xdg-open in it, and the first on PATH.
class Pages : public testing::Test {
protected:
  Pages() {
    folder_.write("xdg-open", browser);
    fs::permissions(folder_.path() / "xdg-open", fs::perms::owner_all);
  }
  [[nodiscard]] std::string folder() const { return folder_.path().string(); }
  [[nodiscard]] bool isThere(const std::string& name) const { return fs::exists(folder_.path() / name); }
  [[nodiscard]] std::vector<std::string> note() const {
    waitUntil("the browser's note", [this] { return isThere("note"); });
    return readLines(folder_.path() / "note");
  }
  /// The lines of the note about `subject`, without that word.
  [[nodiscard]] std::vector<std::string> note(const std::string& subject) const {
    std::vector<std::string> texts;
    for (const std::string& line : note())
      if (line.starts_with(subject + " ")) texts.push_back(line.substr(subject.size() + 1));
    return texts;
  }
  void endBrowser() {
    folder_.write("end", "");
    waitUntil("the end of the browser", [this] { return isThere("ended"); });
  }

  TemporaryFolder folder_;
  EnvironmentVariable path_{"PATH", folder() + ":/usr/bin:/bin"};
};

using Texts = std::vector<std::string>;

TEST_F(Pages, AreOpenedByTheirAddressWhichNoShellReads) {
  const std::string url = "https://www.example.com/a%20b?c='$(touch%20x)';d&e=*#f";
  platform::openURL(url);
  EXPECT_EQ(note("argument"), Texts{url});
}

TEST_F(Pages, AreNotWaitedFor) {
  platform::openURL("https://www.example.com/");
  EXPECT_FALSE(isThere("ended"));
  (void)note();
  endBrowser();
}

TEST_F(Pages, LeaveNoChildBehind) {
  platform::openURL("https://www.example.com/");
  EXPECT_NE(note("parent"), Texts{std::to_string(::getpid())});
  endBrowser();
  EXPECT_LE(::waitpid(-1, nullptr, WNOHANG), 0); // None that has ended, which would be one of ours.
}

TEST_F(Pages, GetNoneOfTheOpenFiles) {
  const int inheritable = ::open(folder().c_str(), O_RDONLY | O_DIRECTORY);
  ASSERT_GE(inheritable, 3);
  platform::openURL("https://www.example.com/");
  for (const std::string& file : note("file")) {
    // The shell's own: its output, and its script above all that it is given.
    if (file.ends_with("/note.draft") || file.ends_with("/xdg-open")) continue;
    EXPECT_TRUE(file == "0 /dev/null" || file == "2 /dev/null") << file;
  }
  EXPECT_GE(note("file").size(), 3U);
  ::close(inheritable);
}

TEST_F(Pages, AreOpenedWithSignalsAsInAFreshSession) {
  ::signal(SIGPIPE, SIG_IGN);
  platform::openURL("https://www.example.com/");
  EXPECT_EQ(note("Blk"), Texts{"0000000000000000"});
  EXPECT_EQ(note("Ign"), Texts{"0000000000000000"});
  ::signal(SIGPIPE, SIG_DFL);
}

TEST_F(Pages, OfTheWebAloneAreOpened) {
  for (const std::string url :
       {"", "-h", "--help", "file:///etc/passwd", "javascript:alert(1)", "www.example.com", "/etc/passwd",
        "ftp://www.example.com/", "https:", "https://", "https:///path", "https:path",
        " https://www.example.com", "https://www.example.com/\n", "https://www.example.com/a b",
        "https://user@localhost@elsewhere", "mailto:a@example.com", "httpsx://www.example.com"})
    platform::openURL(url);
  platform::openURL("https://www.example.com/" + std::string(8192, 'x'));
  platform::openURL(std::string("https://www.example.com/\0x", 26));
  platform::openURL("HTTP://www.example.com/the-last");
  EXPECT_EQ(note("argument"), Texts{"HTTP://www.example.com/the-last"});
}

TEST_F(Pages, AreNotOpenedByWhatLiesWhereTheUserIs) {
  const fs::path before = fs::current_path();
  fs::current_path(folder());
  {
    const EnvironmentVariable path("PATH", "/nowhere::.");
    platform::openURL("https://www.example.com/wrong");
  }
  fs::current_path(before);
  platform::openURL("https://www.example.com/right");
  EXPECT_EQ(note("argument"), Texts{"https://www.example.com/right"});
}

TEST_F(Pages, AreNotOpenedWithoutABrowserAndThatIsTold) {
  testing::internal::CaptureStderr();
  {
    const EnvironmentVariable path("PATH", "/nowhere");
    platform::openURL("https://www.example.com/");
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "xdg-open is not installed; the page is https://www.example.com/\n");
}

} // namespace
} // namespace ventolith::e2e
