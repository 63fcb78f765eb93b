#include "platform/linux/UserFolders.h"

#include <gtest/gtest.h>

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

namespace ventolith::platform {
namespace {

namespace fs = std::filesystem;

/// Sets variables of the environment, or takes them out, while it exists.
class Variables {
public:
  explicit Variables(const std::map<std::string, std::optional<std::string>>& values) {
    for (const auto& [name, value] : values) {
      const char* former = std::getenv(name.c_str());
      former_[name] = former == nullptr ? std::nullopt : std::optional<std::string>(former);
      set(name, value);
    }
  }
  Variables(const Variables&) = delete;
  Variables& operator=(const Variables&) = delete;
  ~Variables() {
    for (const auto& [name, value] : former_)
      set(name, value);
  }

private:
  static void set(const std::string& name, const std::optional<std::string>& value) {
    if (value)
      ::setenv(name.c_str(), value->c_str(), 1);
    else
      ::unsetenv(name.c_str());
  }

  std::map<std::string, std::optional<std::string>> former_;
};

fs::path folderWith(const std::optional<std::string>& configHome, const std::optional<std::string>& home) {
  const Variables variables({{"XDG_CONFIG_HOME", configHome}, {"HOME", home}});
  return userConfigurationFolder();
}

TEST(UserFolders, ConfigurationHomeComesFirst) {
  EXPECT_EQ(folderWith("/cfg/home", "/home/me"), "/cfg/home");
}

TEST(UserFolders, ConfigurationHomeThatIsNotAbsoluteCountsAsUnset) {
  for (const char* value : {"", "cfg", "./cfg", "~/cfg"}) {
    SCOPED_TRACE(value);
    EXPECT_EQ(folderWith(value, "/home/me"), "/home/me/.config");
  }
}

TEST(UserFolders, WithoutConfigurationHomeItIsInTheHomeFolder) {
  EXPECT_EQ(folderWith(std::nullopt, "/home/me"), "/home/me/.config");
}

TEST(UserFolders, HomeThatIsMissingOrNotAbsoluteIsLookedUp) {
  const passwd* entry = ::getpwuid(::getuid());
  if (entry == nullptr) GTEST_SKIP() << "this user is on no record";
  const fs::path expected = fs::path(entry->pw_dir) / ".config";
  for (const std::optional<std::string>& home :
       {std::optional<std::string>(), std::optional<std::string>(""), std::optional<std::string>("me")}) {
    EXPECT_EQ(folderWith(std::nullopt, home), expected);
  }
}

TEST(UserFolders, EnvironmentIsReadAnewEachTime) {
  EXPECT_EQ(folderWith("/first", "/home/me"), "/first");
  EXPECT_EQ(folderWith("/second", "/home/me"), "/second");
}

/// As a user whom no record names; ends its process.
[[noreturn]] void expectAsNobodyKnown(const fs::path& expected) {
  constexpr uid_t unknown = 3'999'999'999;
  const bool isUnknown = ::setuid(unknown) == 0 && ::getpwuid(unknown) == nullptr;
  std::_Exit(isUnknown && userConfigurationFolder() == expected ? 0 : 1);
}

TEST(UserFoldersDeathTest, WithoutAnyHomeItIsTheFolderForTemporaryFiles) {
  if (::getuid() != 0) GTEST_SKIP() << "only root can become a user whom nobody knows";
  const Variables variables(
      {{"XDG_CONFIG_HOME", std::nullopt}, {"HOME", std::nullopt}, {"TMPDIR", "/var/tmp"}});
  EXPECT_EXIT(expectAsNobodyKnown("/var/tmp"), testing::ExitedWithCode(0), "");
  ::setenv("TMPDIR", "/nowhere/at/all", 1);
  EXPECT_EXIT(expectAsNobodyKnown("/tmp"), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace ventolith::platform
