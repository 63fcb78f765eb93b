// Keeps the newest accepted envelope in the user's keychain.
#pragma once

#include "app/platform-kit/ConfigurationCacheStoring.h"

#include <optional>
#include <string>

namespace ventolith::platform {

/// One generic password of the login keychain, found by its service and account, and never sent to other
/// devices. Only this application may read it without asking the user. The statuses of failures are the
/// keychain's own. Blocks, for as long as the user is asked where the keychain is locked.
///
/// The keychain of protected data is not asked for: it is closed to a program without an entitlement that
/// names its groups, and there is none here. It would hold an item back until the first unlock after a start;
/// the login keychain, which opens when the user logs in, does so by itself.
class KeychainConfigurationCacheStore final : public app::ConfigurationCacheStoring {
public:
  /// The item's service is the identifier and ".platform". Both texts are UTF-8.
  explicit KeychainConfigurationCacheStore(const std::string& bundleIdentifier,
                                           std::string account = "platform-configuration-v1");

  std::optional<app::ConfigurationCacheRecord> load() override;
  /// Of two processes that store the first record at one moment, the later one fails with the keychain's
  /// word for an item that is there already.
  void save(const app::ConfigurationCacheRecord& record) override;

  /// "keychain:", the service, ":" and the account.
  [[nodiscard]] std::string coordinationKey() const override;

private:
  std::string service_;
  std::string account_;
};

} // namespace ventolith::platform
