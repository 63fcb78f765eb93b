#include "platform/linux/desktop/ConfigurationCacheStores.h"

#include "platform/linux/desktop/FileConfigurationCacheStore.h"
#include "platform/linux/desktop/PrivateFiles.h"
#include "platform/linux/desktop/SecretServiceStore.h"

namespace ventolith::platform {

std::unique_ptr<app::ConfigurationCacheStoring> configurationCacheStore(const std::string& bundleIdentifier,
                                                                        const std::filesystem::path& folder) {
  const auto item = SecretServiceStore::itemOf(bundleIdentifier);
  if (SecretServiceStore::isOffered()) return std::make_unique<SecretServiceStore>(item);
  return std::make_unique<FileConfigurationCacheStore>(std::make_unique<PrivateFiles>(),
                                                       folder / (item.account + ".json"));
}

} // namespace ventolith::platform
