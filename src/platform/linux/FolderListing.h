// A folder held open for being listed time and again.
#pragma once

#include "platform/linux/Descriptor.h"

#include <dirent.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace ventolith::platform {

class FolderListing {
public:
  /// Of nothing.
  FolderListing() = default;
  /// Of nothing, if `path` is no folder that can be listed.
  explicit FolderListing(const std::filesystem::path& path);
  /// Takes over the descriptor of a folder that is open for reading.
  explicit FolderListing(Descriptor folder);

  /// What the folder holds now, sorted, whatever its path leads to by now; empty if it cannot be listed.
  [[nodiscard]] std::vector<std::string> names() const;

private:
  struct Closing {
    void operator()(DIR* folder) const { ::closedir(folder); }
  };
  std::unique_ptr<DIR, Closing> folder_;
};

} // namespace ventolith::platform
