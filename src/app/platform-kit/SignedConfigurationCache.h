// The newest configuration that was accepted: kept across restarts, and never replaced by an older one.
#pragma once

#include "app/platform-kit/ConfigurationCacheStoring.h"
#include "app/platform-kit/RemoteConfiguration.h"
#include "app/platform-kit/SignedPayloadVerifier.h"
#include "runtime/Time.h"

#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

namespace ventolith::app {

/// The lock that all caches of one place of storage share. It is a mutex because nothing says on which
/// threads the caches of a process live: their operations are synchronous, and belong to no owner.
struct ConfigurationCacheCoordinator {
  std::mutex lock;

  /// The one of this process for `key`. Made when it is first asked for, and never removed, not at the end of
  /// the process either. From any thread.
  [[nodiscard]] static ConfigurationCacheCoordinator& forKey(const std::string& key);
};

/// Holds no document itself: each operation goes to the storage and verifies what is there afresh. May be
/// used from any thread; an operation holds the coordinator's lock from start to end.
class SignedConfigurationCache {
public:
  /// How far the publisher's clock may be ahead of this one.
  static constexpr std::chrono::seconds allowedClockSkew{300};

  /// `verifier` and `storage` outlive the cache.
  SignedConfigurationCache(const SignedPayloadVerifying& verifier, ConfigurationCacheStoring& storage,
                           std::string appID, std::string appVersion);

  /// Verifies `envelope`, tests that it fits and is no older than what is stored, stores it, and gives the
  /// document. Throws the first failure, and leaves what is stored: of the storage or of a stored envelope
  /// that does not verify any more, which blocks all new ones until it is removed; SignedPayloadError,
  /// DecodeError, ConfigurationValidationError; or of the storage again.
  RemoteConfiguration accept(const SignedEnvelope& envelope, runtime::WallTime now);

  /// The stored document; none if nothing is stored. Throws what `accept` throws: a document that has
  /// expired, or that needs a newer application, is an error although it is still stored.
  [[nodiscard]] std::optional<RemoteConfiguration> current(runtime::WallTime now) const;

private:
  [[nodiscard]] RemoteConfiguration verified(const SignedEnvelope& envelope) const;
  void validate(const RemoteConfiguration& configuration, std::int64_t minimumRevision,
                runtime::WallTime now) const;

  const SignedPayloadVerifying& verifier_;
  ConfigurationCacheStoring& storage_;
  std::string appID_;
  std::string appVersion_;
  ConfigurationCacheCoordinator& coordinator_;
};

} // namespace ventolith::app
