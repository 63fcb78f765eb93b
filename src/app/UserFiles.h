// The application's own small JSON files among those of the user.
#pragma once

#include "core/JSON.h"
#include "runtime/Files.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace ventolith::app {

/// Remembers nothing: every operation looks for the folder anew. None reports a failure or throws.
///
/// A file is replaced in one step: after a crash it is whole, old or new. No file is written that could not
/// be read back: what is larger than all that is ever read stays unsaved, and the old file stays.
class UserFiles {
public:
  /// Gives the folder in which applications keep what belongs to the user.
  using FolderLookup = std::function<std::filesystem::path()>;

  /// `files` outlives this.
  UserFiles(runtime::FileLayer& files, FolderLookup userFolder);

  /// None if the file is missing, no JSON or too large; it stays as it is.
  [[nodiscard]] std::optional<core::JSON> read(const std::string& name) const;

  /// Makes the folder, and replaces the file. A failure leaves what stood there before.
  void write(const std::string& name, const core::JSON& document) const;

  void remove(const std::string& name) const;

private:
  [[nodiscard]] std::filesystem::path directory() const;
  void ensureDirectory() const;

  runtime::FileLayer* files_;
  FolderLookup userFolder_;
};

} // namespace ventolith::app
