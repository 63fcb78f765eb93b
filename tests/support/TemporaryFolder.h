// A real folder for a test.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>

namespace ventolith::support {

/// Goes away with all that is in it.
class TemporaryFolder {
public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "ventolith-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = name;
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  [[nodiscard]] std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

  /// Writes a file and returns its path.
  std::filesystem::path write(const std::string& name, const std::string& text) const {
    std::ofstream stream(path_ / name, std::ios::binary);
    stream << text << std::flush;
    if (!stream) throw std::runtime_error(name + ": cannot be written");
    return path_ / name;
  }

  /// A whole file.
  [[nodiscard]] std::string text(const std::string& name) const {
    std::ifstream stream(path_ / name, std::ios::binary);
    if (!stream) throw std::runtime_error(name + ": cannot be read");
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  /// What stands directly in it.
  [[nodiscard]] std::set<std::string> names() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path_))
      names.insert(entry.path().filename().string());
    return names;
  }

private:
  std::filesystem::path path_;
};

} // namespace ventolith::support
