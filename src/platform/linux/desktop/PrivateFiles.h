// Files that are their user's alone.
#pragma once

#include "runtime/Files.h"

namespace ventolith::platform {

/// The files of this computer, of which it reads those alone that belong to this process's user, and takes
/// from others whatever they were allowed to do with them before it reads. A file of another user fails with
/// std::errc::operation_not_permitted: its owner may change it at any time. What others could have written
/// before is read all the same: this layer keeps secrets, and its callers verify what they read.
class PrivateFiles final : public runtime::FileLayer {
public:
  std::error_code createFolders(const std::filesystem::path& folder) override;
  runtime::FileResult<std::string> read(const std::filesystem::path& file, std::size_t limit) override;
  runtime::FileResult<std::unique_ptr<runtime::NewFile>> create(const std::filesystem::path& file,
                                                                std::filesystem::perms permissions) override;
  std::error_code rename(const std::filesystem::path& from, const std::filesystem::path& to) override;
  std::error_code flushFolder(const std::filesystem::path& folder) override;
  std::error_code remove(const std::filesystem::path& file) override;

private:
  runtime::SystemFiles files_;
};

} // namespace ventolith::platform
