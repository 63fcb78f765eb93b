#include "platform/linux/desktop/FileConfigurationCacheStore.h"

#include <utility>

namespace ventolith::platform {

using app::ConfigurationCacheError;

namespace {

[[noreturn]] void fail(const std::error_code& error) {
  throw ConfigurationCacheError(ConfigurationCacheError::Keychain{error.value()});
}

} // namespace

FileConfigurationCacheStore::FileConfigurationCacheStore(std::unique_ptr<runtime::FileLayer> files,
                                                         std::filesystem::path file)
    : files_(std::move(files)), file_(std::move(file)) {}

std::optional<app::ConfigurationCacheRecord> FileConfigurationCacheStore::load() {
  const auto text = files_->read(file_, app::recordBounds.bytes);
  if (text) return app::decodeConfigurationCacheRecord(*text);
  if (text.error() == std::errc::no_such_file_or_directory) return std::nullopt;
  if (text.error() == std::errc::file_too_large)
    throw ConfigurationCacheError(ConfigurationCacheError::Plain::corruptRecord);
  fail(text.error());
}

void FileConfigurationCacheStore::save(const app::ConfigurationCacheRecord& record) {
  if (const auto error = files_->createFolders(file_.parent_path())) fail(error);
  if (const auto error = runtime::replaceFile(*files_, file_, encode(record), runtime::privateFile))
    fail(error);
}

std::string FileConfigurationCacheStore::coordinationKey() const {
  return "file:" + file_.string();
}

} // namespace ventolith::platform
