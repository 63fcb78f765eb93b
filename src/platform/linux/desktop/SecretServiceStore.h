// Keeps the newest accepted envelope with the desktop's keeper of secrets (the Secret Service: GNOME Keyring,
// KWallet, KeePassXC).
#pragma once

#include "app/platform-kit/ConfigurationCacheStoring.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace ventolith::platform {

/// The statuses of its failures. The positive ones are libsecret's own numbers.
enum class SecretServiceStatus : std::int64_t {
  protocol = 1,      // The service answers what it may not.
  locked = 2,        // The user has not unlocked his secrets.
  noCollection = 3,  // There is nowhere to store, or what was there has just gone.
  noService = -1,    // No bus of the session, or nobody on it who keeps secrets.
  timedOut = -2,     // The service did not answer in time.
  otherFailure = -3, // What else the bus reports.
};

/// One item in the user's default collection, found by the attributes `service` and `account`.
///
/// Its operations BLOCK the calling thread until the service has answered, for `patience` at most (half a
/// second is long; the default is for a service that the bus has to start first). They never ask the user
/// for anything: locked secrets are a failure. Each operation connects to the bus of the session anew, by
/// the environment, and leaves no connection behind; that of GLib's own thread, which stays, sleeps.
class SecretServiceStore final : public app::ConfigurationCacheStoring {
public:
  struct Item {
    std::string service;
    std::string account = "platform-configuration-v1";
    std::string label; // What the user sees among his secrets.
  };
  static constexpr std::chrono::milliseconds defaultPatience{5000};

  explicit SecretServiceStore(Item item, std::chrono::milliseconds patience = defaultPatience);

  /// The item of an application: its service is the bundle's identifier and ".platform".
  [[nodiscard]] static Item itemOf(const std::string& bundleIdentifier);

  /// Whether somebody on the session's bus keeps secrets, or would be started to. Blocks like an operation.
  [[nodiscard]] static bool isOffered(std::chrono::milliseconds patience = defaultPatience);

  /// Fails with a status above, or corruptRecord.
  std::optional<app::ConfigurationCacheRecord> load() override;
  void save(const app::ConfigurationCacheRecord& record) override;

  /// "secret-service:", the service, ":" and the account.
  [[nodiscard]] std::string coordinationKey() const override;

private:
  Item item_;
  std::chrono::milliseconds patience_;
};

} // namespace ventolith::platform
