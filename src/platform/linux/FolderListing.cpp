#include "platform/linux/FolderListing.h"

#include <fcntl.h>

#include <algorithm>

namespace ventolith::platform {

FolderListing::FolderListing(const std::filesystem::path& path)
    : FolderListing(Descriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))) {}

FolderListing::FolderListing(Descriptor folder) {
  if (!folder.isOpen()) return;
  folder_.reset(::fdopendir(folder.get()));
  if (folder_) static_cast<void>(folder.release());
}

std::vector<std::string> FolderListing::names() const {
  if (!folder_) return {};
  ::rewinddir(folder_.get());
  std::vector<std::string> names;
  while (const dirent* entry = ::readdir(folder_.get()))
    names.emplace_back(entry->d_name);
  std::ranges::sort(names);
  return names;
}

} // namespace ventolith::platform
