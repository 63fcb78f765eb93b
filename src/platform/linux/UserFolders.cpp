#include "platform/linux/UserFolders.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <optional>
#include <vector>

namespace ventolith::platform {

namespace fs = std::filesystem;

namespace {

std::optional<fs::path> ifAbsolute(const char* text) {
  if (text == nullptr || *text != '/') return std::nullopt;
  return fs::path(text);
}

std::optional<fs::path> homeFolderOnRecord() {
  passwd entry{};
  passwd* found = nullptr;
  std::vector<char> texts(1024);
  constexpr std::size_t longestTexts = std::size_t{1} << 20;
  while (::getpwuid_r(::getuid(), &entry, texts.data(), texts.size(), &found) == ERANGE) {
    if (texts.size() >= longestTexts) return std::nullopt;
    texts.resize(2 * texts.size());
  }
  return found == nullptr ? std::nullopt : ifAbsolute(found->pw_dir);
}

std::optional<fs::path> homeFolder() {
  if (auto home = ifAbsolute(std::getenv("HOME"))) return home;
  return homeFolderOnRecord();
}

fs::path temporaryFolder() {
  std::error_code error;
  fs::path folder = fs::temp_directory_path(error);
  return error || !folder.is_absolute() ? fs::path("/tmp") : folder;
}

} // namespace

fs::path userConfigurationFolder() {
  if (const auto folder = ifAbsolute(std::getenv("XDG_CONFIG_HOME"))) return *folder;
  if (const auto home = homeFolder()) return *home / ".config";
  return temporaryFolder();
}

} // namespace ventolith::platform
