#include "platform/linux/desktop/PrivateFiles.h"

#include "platform/linux/Descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace ventolith::platform {

namespace fs = std::filesystem;

namespace {

std::error_code lastError() {
  return {errno, std::generic_category()};
}

std::error_code makePrivate(int descriptor) {
  struct stat status{};
  if (::fstat(descriptor, &status) != 0) return lastError();
  if (!S_ISREG(status.st_mode)) return {}; // Nothing is read from it.
  if (status.st_uid != ::geteuid()) return std::make_error_code(std::errc::operation_not_permitted);
  const mode_t ofOwner = status.st_mode & S_IRWXU;
  if ((status.st_mode & ALLPERMS) == ofOwner) return {};
  return ::fchmod(descriptor, ofOwner) == 0 ? std::error_code() : lastError();
}

} // namespace

runtime::FileResult<std::string> PrivateFiles::read(const fs::path& path, std::size_t limit) {
  // A pipe without a writer would be waited for.
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  if (!file.isOpen()) return lastError();
  if (const auto error = makePrivate(file.get())) return error;
  // The file that was looked at, whatever bears its name by now.
  return files_.read("/proc/self/fd/" + std::to_string(file.get()), limit);
}

std::error_code PrivateFiles::createFolders(const fs::path& folder) {
  return files_.createFolders(folder);
}

runtime::FileResult<std::unique_ptr<runtime::NewFile>> PrivateFiles::create(const fs::path& file,
                                                                            fs::perms permissions) {
  return files_.create(file, permissions);
}

std::error_code PrivateFiles::rename(const fs::path& from, const fs::path& to) {
  return files_.rename(from, to);
}

std::error_code PrivateFiles::flushFolder(const fs::path& folder) {
  return files_.flushFolder(folder);
}

std::error_code PrivateFiles::remove(const fs::path& file) {
  return files_.remove(file);
}

} // namespace ventolith::platform
