#include "platform/linux/AttributeFolder.h"

#include "platform/linux/FolderListing.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <utility>

namespace ventolith::platform {

namespace {

/// Pipes and terminals among the files must neither block nor take the process over.
constexpr int openFlags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

/// What a folder keeps open at the most, lest chips of a hundred inputs use the process's descriptors up.
constexpr std::size_t mostOpenFiles = 64;

std::error_code lastError() {
  return {errno, std::generic_category()};
}

Descriptor openForReading(int folder, const std::string& file) {
  return Descriptor(::openat(folder, file.c_str(), O_RDONLY | openFlags));
}

/// What one read from the start of the file gives, in `buffer`; none if it does not read.
std::optional<std::string_view> readStart(const Descriptor& file, std::span<char> buffer) {
  if (!file.isOpen()) return std::nullopt;
  const ssize_t count = ::pread(file.get(), buffer.data(), buffer.size(), 0);
  if (count < 0) return std::nullopt;
  return std::string_view(buffer.data(), static_cast<std::size_t>(count));
}

bool isSame(const timespec& one, const timespec& other) {
  return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

/// Whether `time` is at least a second away from now. File systems tell time in ticks of milliseconds:
/// a folder that has just changed may change again and bear the same time.
bool isLongAgo(const timespec& time) {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  return time.tv_sec < now.tv_sec - 1 || time.tv_sec > now.tv_sec + 1;
}

std::optional<struct stat> statusOf(int folder, const std::string& file) {
  struct stat status{};
  if (::fstatat(folder, file.c_str(), &status, 0) != 0) return std::nullopt;
  return status;
}

} // namespace

std::string_view withoutTrailingBlanks(std::string_view text) {
  const auto last = text.find_last_not_of(std::string_view(" \t\r\n\0", 5));
  return last == std::string_view::npos ? std::string_view() : text.substr(0, last + 1);
}

std::optional<std::int64_t> parseInteger(std::string_view text) {
  const std::string_view digits = withoutTrailingBlanks(text);
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return value;
}

AttributeFolder::AttributeFolder(Descriptor descriptor, std::filesystem::path path, dev_t device, ino_t inode)
    : descriptor_(std::move(descriptor)), path_(std::move(path)), device_(device), inode_(inode) {}

std::optional<AttributeFolder> AttributeFolder::open(const std::filesystem::path& path) {
  Descriptor descriptor(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!descriptor.isOpen()) return std::nullopt;
  struct stat status{};
  if (::fstat(descriptor.get(), &status) != 0) return std::nullopt;
  return AttributeFolder(std::move(descriptor), path, status.st_dev, status.st_ino);
}

bool AttributeFolder::isStillThere() const {
  struct stat status{};
  const bool isThere =
      ::stat(path_.c_str(), &status) == 0 && status.st_dev == device_ && status.st_ino == inode_;
  if (isThere) {
    compareWithLastLook(status);
  } else {
    openFiles_.clear();
  }
  return isThere;
}

void AttributeFolder::lookAtFiles() const {
  if (openFiles_.empty()) return;
  struct stat status{};
  if (::fstat(descriptor_.get(), &status) == 0) {
    compareWithLastLook(status);
  } else {
    openFiles_.clear();
  }
}

void AttributeFolder::compareWithLastLook(const struct stat& status) const {
  const bool isUnchanged = lastLook_ && lastLook_->isTelling && isSame(lastLook_->modified, status.st_mtim) &&
                           isSame(lastLook_->changed, status.st_ctim);
  if (isUnchanged) return;
  openFiles_.clear();
  lastLook_ = Look{status.st_mtim, status.st_ctim, isLongAgo(status.st_mtim)};
}

bool AttributeFolder::has(const std::string& file) const {
  const auto status = statusOf(descriptor_.get(), file);
  return status && S_ISREG(status->st_mode);
}

bool AttributeFolder::hasWritable(const std::string& file) const {
  const auto status = statusOf(descriptor_.get(), file);
  return status && S_ISREG(status->st_mode) && (status->st_mode & 0222) != 0;
}

bool AttributeFolder::mayWrite(const std::string& file) const {
  return ::faccessat(descriptor_.get(), file.c_str(), W_OK, AT_EACCESS) == 0;
}

std::optional<std::int64_t> AttributeFolder::readInteger(const std::string& file) const {
  std::array<char, 32> buffer{};
  const auto text = readKept(file, buffer);
  // A full buffer is a file that goes on: no driver writes a number that long.
  if (!text || text->size() == buffer.size()) return std::nullopt;
  return parseInteger(*text);
}

std::optional<std::string_view> AttributeFolder::readKept(const std::string& file,
                                                          std::span<char> buffer) const {
  auto kept = openFiles_.find(file);
  if (kept == openFiles_.end()) {
    if (openFiles_.size() >= mostOpenFiles) openFiles_.clear();
    kept = openFiles_.emplace(file, openForReading(descriptor_.get(), file)).first;
  }
  const auto text = readStart(kept->second, buffer);
  if (!text) openFiles_.erase(kept);
  return text;
}

std::optional<std::string> AttributeFolder::readLine(const std::string& file) const {
  std::array<char, 63> buffer{};
  const auto text = readStart(openForReading(descriptor_.get(), file), buffer);
  if (!text) return std::nullopt;
  return std::string(withoutTrailingBlanks(text->substr(0, text->find('\n'))));
}

std::error_code AttributeFolder::write(const std::string& file, std::int64_t value) const {
  const Descriptor descriptor(::openat(descriptor_.get(), file.c_str(), O_WRONLY | O_TRUNC | openFlags));
  if (!descriptor.isOpen()) return lastError();
  std::array<char, 24> text{};
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size() - 1, value);
  *end = '\n';
  const auto length = static_cast<std::size_t>(end - text.data() + 1);
  const ssize_t written = ::write(descriptor.get(), text.data(), length);
  if (written < 0) return lastError();
  if (static_cast<std::size_t>(written) != length) return {EIO, std::generic_category()};
  return {};
}

std::vector<std::string> AttributeFolder::list() const {
  const int folder = ::openat(descriptor_.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  return FolderListing(Descriptor(folder)).names();
}

} // namespace ventolith::platform
