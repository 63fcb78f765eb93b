// Lines for a program that reads its standard input.
#pragma once

#include <filesystem>
#include <string>

namespace ventolith::e2e {

/// A pipe with a name, which never ends for its reader.
class CommandPipe {
public:
  explicit CommandPipe(const std::filesystem::path& file);
  CommandPipe(const CommandPipe&) = delete;
  CommandPipe& operator=(const CommandPipe&) = delete;
  ~CommandPipe();

  [[nodiscard]] const std::filesystem::path& file() const { return file_; }
  void write(const std::string& line) const;

private:
  std::filesystem::path file_;
  int descriptor_ = -1;
};

} // namespace ventolith::e2e
