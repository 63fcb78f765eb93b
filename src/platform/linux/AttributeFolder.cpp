#include "platform/linux/AttributeFolder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <memory>
#include <span>
#include <utility>

namespace ventolith::platform {

namespace {

/// Pipes and terminals among the files must neither block nor take the process over.
constexpr int openFlags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

std::error_code lastError() {
  return {errno, std::generic_category()};
}

class Descriptor {
public:
  explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  [[nodiscard]] int get() const { return descriptor_; }
  [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }
  /// For who takes over the closing.
  [[nodiscard]] int release() { return std::exchange(descriptor_, -1); }

private:
  int descriptor_;
};

/// What one read gives, in `buffer`; none if the file does not read.
std::optional<std::string_view> readOnce(int folder, const std::string& file, std::span<char> buffer) {
  const Descriptor descriptor(::openat(folder, file.c_str(), O_RDONLY | openFlags));
  if (!descriptor.isOpen()) return std::nullopt;
  const ssize_t count = ::read(descriptor.get(), buffer.data(), buffer.size());
  if (count < 0) return std::nullopt;
  return std::string_view(buffer.data(), static_cast<std::size_t>(count));
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

AttributeFolder::AttributeFolder(int descriptor, std::filesystem::path path, dev_t device, ino_t inode)
    : descriptor_(descriptor), path_(std::move(path)), device_(device), inode_(inode) {}

AttributeFolder::AttributeFolder(AttributeFolder&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)),
      path_(std::move(other.path_)),
      device_(other.device_),
      inode_(other.inode_) {}

AttributeFolder& AttributeFolder::operator=(AttributeFolder&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  std::swap(path_, other.path_);
  std::swap(device_, other.device_);
  std::swap(inode_, other.inode_);
  return *this;
}

AttributeFolder::~AttributeFolder() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

std::optional<AttributeFolder> AttributeFolder::open(const std::filesystem::path& path) {
  Descriptor descriptor(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!descriptor.isOpen()) return std::nullopt;
  struct stat status{};
  if (::fstat(descriptor.get(), &status) != 0) return std::nullopt;
  return AttributeFolder(descriptor.release(), path, status.st_dev, status.st_ino);
}

bool AttributeFolder::isStillThere() const {
  struct stat status{};
  if (::stat(path_.c_str(), &status) != 0) return false;
  return status.st_dev == device_ && status.st_ino == inode_;
}

bool AttributeFolder::has(const std::string& file) const {
  const auto status = statusOf(descriptor_, file);
  return status && S_ISREG(status->st_mode);
}

bool AttributeFolder::hasWritable(const std::string& file) const {
  const auto status = statusOf(descriptor_, file);
  return status && S_ISREG(status->st_mode) && (status->st_mode & 0222) != 0;
}

bool AttributeFolder::mayWrite(const std::string& file) const {
  return ::faccessat(descriptor_, file.c_str(), W_OK, AT_EACCESS) == 0;
}

std::optional<std::int64_t> AttributeFolder::readInteger(const std::string& file) const {
  std::array<char, 32> buffer{};
  const auto text = readOnce(descriptor_, file, buffer);
  // A full buffer is a file that goes on: no driver writes a number that long.
  if (!text || text->size() == buffer.size()) return std::nullopt;
  return parseInteger(*text);
}

std::optional<std::string> AttributeFolder::readLine(const std::string& file) const {
  std::array<char, 63> buffer{};
  const auto text = readOnce(descriptor_, file, buffer);
  if (!text) return std::nullopt;
  return std::string(withoutTrailingBlanks(text->substr(0, text->find('\n'))));
}

std::error_code AttributeFolder::write(const std::string& file, std::int64_t value) const {
  const Descriptor descriptor(::openat(descriptor_, file.c_str(), O_WRONLY | O_TRUNC | openFlags));
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
  std::vector<std::string> names;
  Descriptor descriptor(::openat(descriptor_, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!descriptor.isOpen()) return names;
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(::fdopendir(descriptor.get()), ::closedir);
  if (!folder) return names;
  static_cast<void>(descriptor.release());
  while (const dirent* entry = ::readdir(folder.get()))
    names.emplace_back(entry->d_name);
  return names;
}

} // namespace ventolith::platform
