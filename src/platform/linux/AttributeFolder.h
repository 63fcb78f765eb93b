// The folder of a device's attribute files, held open. Files are reached through the held folder, so that
// a device which takes over the same path is never read or written in its stead.
#pragma once

#include "platform/linux/Descriptor.h"

#include <sys/stat.h>
#include <sys/types.h>

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace ventolith::platform {

/// Whole numbers only, as the drivers write them: digits with an optional minus, and a line end. What is
/// empty, too long, out of range or anything else is no number.
[[nodiscard]] std::optional<std::int64_t> parseInteger(std::string_view text);

/// `text` without blanks, tabs, line ends and zero bytes at its end.
[[nodiscard]] std::string_view withoutTrailingBlanks(std::string_view text);

/// Files that are read as numbers stay open, since a control loop reads the same few again and again. A
/// driver's file answers afresh at every read and fails once it is gone. A plain file would be read on after
/// it was removed or replaced, which is why who reads has to look at the folder from time to time. Belongs
/// to one thread: reading is const and yet changes which files are open.
class AttributeFolder {
public:
  /// None if `path` is no folder that can be opened.
  [[nodiscard]] static std::optional<AttributeFolder> open(const std::filesystem::path& path);

  /// Whether the path that was opened still leads to this very folder. Looks at the files as well.
  [[nodiscard]] bool isStillThere() const;

  /// Makes sure that no file which was removed or replaced by now is read any more.
  void lookAtFiles() const;

  /// Whether `file` is a regular file.
  [[nodiscard]] bool has(const std::string& file) const;
  /// Whether `file` is a regular file with a write bit for anybody. The mode is asked rather than the
  /// access, for root may open what the driver then refuses.
  [[nodiscard]] bool hasWritable(const std::string& file) const;
  /// Whether this process may open `file` for writing.
  [[nodiscard]] bool mayWrite(const std::string& file) const;

  /// None if `file` does not read, or holds no number.
  [[nodiscard]] std::optional<std::int64_t> readInteger(const std::string& file) const;
  /// The first line without the blanks at its end, at most 63 bytes; none if `file` does not read.
  [[nodiscard]] std::optional<std::string> readLine(const std::string& file) const;

  /// Replaces the content of an existing file. Never creates one and never waits.
  [[nodiscard]] std::error_code write(const std::string& file, std::int64_t value) const;

  /// The names in the folder, sorted; empty if it cannot be listed.
  [[nodiscard]] std::vector<std::string> list() const;

private:
  /// When files last came to the folder, or left it, as it was found at some look.
  struct Look {
    timespec modified;
    timespec changed;
    bool isTelling; // Whether any change after the look leaves other times.
  };

  AttributeFolder(Descriptor descriptor, std::filesystem::path path, dev_t device, ino_t inode);

  void compareWithLastLook(const struct stat& status) const;
  /// What one read of a file that is kept open gives, in `buffer`; none if it does not read.
  [[nodiscard]] std::optional<std::string_view> readKept(const std::string& file,
                                                         std::span<char> buffer) const;

  Descriptor descriptor_;
  std::filesystem::path path_;
  dev_t device_;
  ino_t inode_;
  mutable std::map<std::string, Descriptor> openFiles_; // By name, each as it was after `lastLook_`.
  mutable std::optional<Look> lastLook_;
};

} // namespace ventolith::platform
