#include "platform/macos/desktop/ConfigurationCacheStores.h"

#include "platform/macos/desktop/KeychainConfigurationCacheStore.h"

namespace ventolith::platform {

std::unique_ptr<app::ConfigurationCacheStoring> configurationCacheStore(const std::string& bundleIdentifier,
                                                                        const std::filesystem::path&) {
  return std::make_unique<KeychainConfigurationCacheStore>(bundleIdentifier);
}

} // namespace ventolith::platform
