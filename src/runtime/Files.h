// Small files that are read whole and replaced whole, and the few operations of a file system that this
// takes: a seam, so that a test can end the work between any two of them.
#pragma once

#include <boost/system/result.hpp>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

namespace ventolith::runtime {

template <class Value>
using FileResult = boost::system::result<Value, std::error_code>;

/// A file that is being written; only its writer knows of it. It is closed when the object goes away.
class NewFile {
public:
  NewFile() = default;
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  virtual ~NewFile() = default;

  /// Appends the beginning of `bytes`, and says how many of them that is: at least one.
  virtual FileResult<std::size_t> append(std::string_view bytes) = 0;

  /// When it succeeds, the content outlives a loss of power. The name does not yet.
  virtual std::error_code flush() = 0;

  /// A file system may refuse here what it took before. Called once, at the end.
  virtual std::error_code close() = 0;
};

/// A file system, as far as it is needed. Every operation is synchronous and reports a failure as its
/// result; an empty std::error_code is success.
class FileLayer {
public:
  FileLayer() = default;
  FileLayer(const FileLayer&) = delete;
  FileLayer& operator=(const FileLayer&) = delete;
  virtual ~FileLayer() = default;

  /// Makes `folder` and those above it that are missing. One that is there already is a success.
  virtual std::error_code createFolders(const std::filesystem::path& folder) = 0;

  /// The content of a regular file of at most `limit` bytes. Never waits for anybody: a pipe, a device, a
  /// folder and a longer file are failures. A link is followed.
  virtual FileResult<std::string> read(const std::filesystem::path& file, std::size_t limit) = 0;

  /// A new file; fails with std::errc::file_exists if anything bears the name, a link that leads nowhere
  /// included. Its permissions are `permissions` less those that the process withholds.
  virtual FileResult<std::unique_ptr<NewFile>> create(const std::filesystem::path& file,
                                                      std::filesystem::perms permissions) = 0;

  /// Gives a file another name in the same file system, in one step; what bore that name is gone.
  virtual std::error_code rename(const std::filesystem::path& from, const std::filesystem::path& to) = 0;

  /// When it succeeds, the names in `folder` outlive a loss of power.
  virtual std::error_code flushFolder(const std::filesystem::path& folder) = 0;

  /// Removes a file or a link, not a folder. One that is not there is a failure.
  virtual std::error_code remove(const std::filesystem::path& file) = 0;
};

/// The files of this computer.
class SystemFiles final : public FileLayer {
public:
  std::error_code createFolders(const std::filesystem::path& folder) override;
  FileResult<std::string> read(const std::filesystem::path& file, std::size_t limit) override;
  FileResult<std::unique_ptr<NewFile>> create(const std::filesystem::path& file,
                                              std::filesystem::perms permissions) override;
  std::error_code rename(const std::filesystem::path& from, const std::filesystem::path& to) override;
  std::error_code flushFolder(const std::filesystem::path& folder) override;
  std::error_code remove(const std::filesystem::path& file) override;
};

/// What a file gets that everybody may read, if the process does not withhold it.
inline constexpr auto ordinaryFile =
    std::filesystem::perms::owner_read | std::filesystem::perms::owner_write |
    std::filesystem::perms::group_read | std::filesystem::perms::group_write |
    std::filesystem::perms::others_read | std::filesystem::perms::others_write;
/// What a file gets that is its owner's alone.
inline constexpr auto privateFile = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;

/// Makes `bytes` the content of `file`: they are written to a new file beside it, flushed, and given its
/// name. Whenever this is cut short, by a failure, a crash or a loss of power, `file` holds all of the old
/// content or all of the new. On a failure the new file is removed again; a crash may leave it behind, and
/// no later call stumbles over it. A failure of the very last step, the flush of the folder, says that the
/// new content is in place but might not outlive a loss of power.
///
/// The folder has to be there. `file` gets new permissions, and if it was a link it is a file afterwards.
[[nodiscard]] std::error_code replaceFile(FileLayer& layer, const std::filesystem::path& file,
                                          std::string_view bytes, std::filesystem::perms permissions);

} // namespace ventolith::runtime
