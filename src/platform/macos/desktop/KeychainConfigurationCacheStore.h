// Keeps the newest accepted envelope in the user's keychain.
#pragma once

#include "app/platform-kit/ConfigurationCacheStoring.h"

#include <optional>
#include <string>

namespace ventolith::platform {

/// One generic password, found by its service and account. It stays on this device, is in no backup that
/// another one could read, and can be read from the first unlock after a start on. The statuses of its
/// failures are the keychain's own. Blocks.
class KeychainConfigurationCacheStore final : public app::ConfigurationCacheStoring {
public:
  /// The item's service is the identifier and ".platform".
  explicit KeychainConfigurationCacheStore(const std::string& bundleIdentifier,
                                           std::string account = "platform-configuration-v1");

  std::optional<app::ConfigurationCacheRecord> load() override;
  void save(const app::ConfigurationCacheRecord& record) override;

  /// "keychain:", the service, ":" and the account.
  [[nodiscard]] std::string coordinationKey() const override;

private:
  std::string service_;
  std::string account_;
};

} // namespace ventolith::platform
