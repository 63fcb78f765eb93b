// Keeps the newest accepted envelope in a file of the user's own, where nothing keeps secrets for him.
#pragma once

#include "app/platform-kit/ConfigurationCacheStoring.h"
#include "runtime/Files.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace ventolith::platform {

/// One line of JSON in one file, which is replaced as a whole and which its owner alone may read and write,
/// from its first byte on. All its failures but corruptRecord carry the system's error number as their
/// status. A failed save may, in the one case that `runtime::replaceFile` names, have replaced the record.
class FileConfigurationCacheStore final : public app::ConfigurationCacheStoring {
public:
  /// `file` is absolute; the folders that it needs are made. `files` is PrivateFiles outside of tests.
  FileConfigurationCacheStore(std::unique_ptr<runtime::FileLayer> files, std::filesystem::path file);

  std::optional<app::ConfigurationCacheRecord> load() override;
  void save(const app::ConfigurationCacheRecord& record) override;

  /// "file:" and its path.
  [[nodiscard]] std::string coordinationKey() const override;

private:
  std::unique_ptr<runtime::FileLayer> files_;
  std::filesystem::path file_;
};

} // namespace ventolith::platform
