#include "runtime/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <utility>

namespace ventolith::runtime {

namespace fs = std::filesystem;

namespace {

/// As many crashes of processes with this one's number would have to have left a file behind.
constexpr int mostNamesTried = 1000;

std::error_code lastError() {
  return {errno, std::generic_category()};
}

/// Repeats a call that a signal cut short.
template <class Call>
auto uninterrupted(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR)
    result = call();
  return result;
}

class OpenFile {
public:
  OpenFile(const fs::path& path, int flags, mode_t mode = 0)
      : descriptor_(uninterrupted([&] { return ::open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY, mode); })) {
  }
  OpenFile(OpenFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  OpenFile& operator=(OpenFile&&) = delete;
  ~OpenFile() {
    if (isOpen()) ::close(descriptor_);
  }

  [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }
  [[nodiscard]] int descriptor() const { return descriptor_; }

  [[nodiscard]] std::error_code flush() const {
#ifdef F_FULLFSYNC // Where there is this, fsync stops at the drive's own memory.
    if (uninterrupted([&] { return ::fcntl(descriptor_, F_FULLFSYNC); }) == 0) return {};
#endif
    return uninterrupted([&] { return ::fsync(descriptor_); }) == 0 ? std::error_code() : lastError();
  }

  /// The descriptor is gone even when this fails, so nothing is repeated.
  [[nodiscard]] std::error_code close() {
    return ::close(std::exchange(descriptor_, -1)) == 0 || errno == EINTR ? std::error_code() : lastError();
  }

private:
  int descriptor_;
};

class NewSystemFile final : public NewFile {
public:
  explicit NewSystemFile(OpenFile file) : file_(std::move(file)) {}

  FileResult<std::size_t> append(std::string_view bytes) override {
    const ssize_t count =
        uninterrupted([&] { return ::write(file_.descriptor(), bytes.data(), bytes.size()); });
    if (count < 0) return lastError();
    return static_cast<std::size_t>(count);
  }
  std::error_code flush() override { return file_.flush(); }
  std::error_code close() override { return file_.close(); }

private:
  OpenFile file_;
};

std::error_code appendAll(NewFile& file, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto count = file.append(bytes);
    if (!count) return count.error();
    if (*count == 0) return std::make_error_code(std::errc::io_error); // Not to ask for ever.
    bytes.remove_prefix(std::min(*count, bytes.size()));
  }
  return {};
}

struct Draft {
  fs::path path;
  std::unique_ptr<NewFile> file;
};

/// A new file in the folder of `file`, under a name that nothing bears: another process, another call and
/// what a crash left behind each have a file of their own.
FileResult<Draft> createBeside(FileLayer& layer, const fs::path& file, fs::perms permissions) {
  const std::string beginning = "." + file.filename().string() + "." + std::to_string(::getpid()) + "-";
  for (int number = 0; number < mostNamesTried; ++number) {
    Draft draft{file.parent_path() / (beginning + std::to_string(number) + ".tmp"), nullptr};
    auto created = layer.create(draft.path, permissions);
    if (created) {
      draft.file = std::move(*created);
      return draft;
    }
    if (created.error() != std::errc::file_exists) return created.error();
  }
  return std::make_error_code(std::errc::file_exists);
}

std::error_code finish(NewFile& file, std::string_view bytes) {
  if (const auto error = appendAll(file, bytes)) return error;
  if (const auto error = file.flush()) return error;
  return file.close();
}

} // namespace

std::error_code SystemFiles::createFolders(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  return error;
}

FileResult<std::string> SystemFiles::read(const fs::path& path, std::size_t limit) {
  const OpenFile file(path, O_RDONLY | O_NONBLOCK); // A pipe without a writer would be waited for.
  if (!file.isOpen()) return lastError();
  struct stat status{};
  if (::fstat(file.descriptor(), &status) != 0) return lastError();
  if (S_ISDIR(status.st_mode)) return std::make_error_code(std::errc::is_a_directory);
  if (!S_ISREG(status.st_mode)) return std::make_error_code(std::errc::not_supported);

  // The size is only a first sign: the file may be growing.
  const auto tooLarge = std::make_error_code(std::errc::file_too_large);
  if (status.st_size > 0 && static_cast<std::uintmax_t>(status.st_size) > limit) return tooLarge;
  std::string content;
  std::array<char, 16384> part;
  while (true) {
    const ssize_t count = uninterrupted([&] { return ::read(file.descriptor(), part.data(), part.size()); });
    if (count < 0) return lastError();
    if (count == 0) return content;
    if (static_cast<std::size_t>(count) > limit - content.size()) return tooLarge;
    content.append(part.data(), static_cast<std::size_t>(count));
  }
}

FileResult<std::unique_ptr<NewFile>> SystemFiles::create(const fs::path& path, fs::perms permissions) {
  OpenFile file(path, O_WRONLY | O_CREAT | O_EXCL, static_cast<mode_t>(permissions));
  if (!file.isOpen()) return lastError();
  return std::make_unique<NewSystemFile>(std::move(file));
}

std::error_code SystemFiles::rename(const fs::path& from, const fs::path& to) {
  return std::rename(from.c_str(), to.c_str()) == 0 ? std::error_code() : lastError();
}

std::error_code SystemFiles::flushFolder(const fs::path& folder) {
  const OpenFile file(folder.empty() ? fs::path(".") : folder, O_RDONLY | O_DIRECTORY);
  if (!file.isOpen()) return lastError();
  const auto error = file.flush();
  // Some file systems have no such operation, and nothing better.
  return error == std::errc::invalid_argument || error == std::errc::not_supported ? std::error_code()
                                                                                   : error;
}

std::error_code SystemFiles::remove(const fs::path& file) {
  return ::unlink(file.c_str()) == 0 ? std::error_code() : lastError();
}

std::error_code replaceFile(FileLayer& layer, const fs::path& file, std::string_view bytes,
                            fs::perms permissions) {
  auto draft = createBeside(layer, file, permissions);
  if (!draft) return draft.error();
  std::error_code error = finish(*draft->file, bytes);
  if (!error) error = layer.rename(draft->path, file);
  if (error) {
    (void)layer.remove(draft->path);
    return error;
  }
  return layer.flushFolder(file.parent_path());
}

} // namespace ventolith::runtime
