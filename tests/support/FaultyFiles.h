// A file system that fails, fills up or dies at the operation that a test names.
#pragma once

#include "runtime/Files.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ventolith::support {

struct FileFaults {
  std::optional<std::size_t> failingOperation; // Counted from 0; does nothing, and fails.
  std::errc error = std::errc::io_error;       // What it and a dead file system fail with.
  std::optional<std::size_t> deadFrom;         // This operation and all after it do nothing, and fail.
  std::size_t longestAppend = std::numeric_limits<std::size_t>::max(); // Bytes taken at once.
  std::size_t space = std::numeric_limits<std::size_t>::max();         // Bytes before the disk is full.
};

class FaultyFiles final : public runtime::FileLayer {
public:
  explicit FaultyFiles(runtime::FileLayer& below, FileFaults faults = {}) : below_(below), faults_(faults) {}

  /// The operations so far, those that failed included.
  [[nodiscard]] const std::vector<std::string>& log() const { return log_; }

  std::error_code createFolders(const std::filesystem::path& folder) override {
    if (const auto error = begin("createFolders")) return error;
    return below_.createFolders(folder);
  }
  runtime::FileResult<std::string> read(const std::filesystem::path& file, std::size_t limit) override {
    if (const auto error = begin("read")) return error;
    return below_.read(file, limit);
  }
  runtime::FileResult<std::unique_ptr<runtime::NewFile>> create(const std::filesystem::path& file,
                                                                std::filesystem::perms permissions) override {
    if (const auto error = begin("create")) return error;
    auto created = below_.create(file, permissions);
    if (!created) return created.error();
    return std::make_unique<Writer>(*this, std::move(*created));
  }
  std::error_code rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
    if (const auto error = begin("rename")) return error;
    return below_.rename(from, to);
  }
  std::error_code flushFolder(const std::filesystem::path& folder) override {
    if (const auto error = begin("flushFolder")) return error;
    return below_.flushFolder(folder);
  }
  std::error_code remove(const std::filesystem::path& file) override {
    if (const auto error = begin("remove")) return error;
    return below_.remove(file);
  }

private:
  class Writer final : public runtime::NewFile {
  public:
    Writer(FaultyFiles& files, std::unique_ptr<runtime::NewFile> below)
        : files_(files), below_(std::move(below)) {}

    runtime::FileResult<std::size_t> append(std::string_view bytes) override {
      if (const auto error = files_.begin("append")) return error;
      FileFaults& faults = files_.faults_;
      const auto part = bytes.substr(0, std::min(faults.longestAppend, faults.space));
      if (part.empty()) return std::make_error_code(std::errc::no_space_on_device);
      faults.space -= part.size();
      return below_->append(part);
    }
    std::error_code flush() override {
      if (const auto error = files_.begin("flush")) return error;
      return below_->flush();
    }
    std::error_code close() override {
      if (const auto error = files_.begin("close")) return error;
      return below_->close();
    }

  private:
    FaultyFiles& files_;
    std::unique_ptr<runtime::NewFile> below_;
  };

  std::error_code begin(const char* operation) {
    const std::size_t number = log_.size();
    log_.emplace_back(operation);
    const bool fails =
        number == faults_.failingOperation || (faults_.deadFrom && number >= *faults_.deadFrom);
    return fails ? std::make_error_code(faults_.error) : std::error_code();
  }

  runtime::FileLayer& below_;
  FileFaults faults_;
  std::vector<std::string> log_;
};

} // namespace ventolith::support
