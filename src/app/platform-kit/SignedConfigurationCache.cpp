#include "app/platform-kit/SignedConfigurationCache.h"

#include "app/platform-kit/RemoteConfigurationValidator.h"

#include <map>

namespace ventolith::app {

namespace {

struct Registry {
  std::mutex lock;
  std::map<std::string, ConfigurationCacheCoordinator> coordinators; // Their places never move.
};

/// Holds a registry that is never destroyed: other threads and static objects may use it while the process
/// ends.
union LastingRegistry {
  Registry registry;

  LastingRegistry() : registry() {}
  LastingRegistry(const LastingRegistry&) = delete;
  LastingRegistry& operator=(const LastingRegistry&) = delete;
  ~LastingRegistry() {}
};

} // namespace

ConfigurationCacheCoordinator& ConfigurationCacheCoordinator::forKey(const std::string& key) {
  static LastingRegistry its;
  const std::lock_guard guard(its.registry.lock);
  return its.registry.coordinators[key];
}

SignedConfigurationCache::SignedConfigurationCache(const SignedPayloadVerifying& verifier,
                                                   ConfigurationCacheStoring& storage, std::string appID,
                                                   std::string appVersion)
    : verifier_(verifier),
      storage_(storage),
      appID_(std::move(appID)),
      appVersion_(std::move(appVersion)),
      coordinator_(ConfigurationCacheCoordinator::forKey(storage.coordinationKey())) {}

RemoteConfiguration SignedConfigurationCache::accept(const SignedEnvelope& envelope, runtime::WallTime now) {
  const std::lock_guard guard(coordinator_.lock);
  const auto stored = storage_.load();
  const std::int64_t storedRevision = stored ? verified(stored->envelope).revision : 0;

  auto configuration = verified(envelope);
  validate(configuration, storedRevision, now);
  // Two documents under one number are a fault of the publisher.
  if (stored && configuration.revision == storedRevision && envelope != stored->envelope)
    throw ConfigurationValidationError(ConfigurationValidationError::RevisionConflict{storedRevision});

  storage_.save({.revision = configuration.revision, .envelope = envelope});
  return configuration;
}

std::optional<RemoteConfiguration> SignedConfigurationCache::current(runtime::WallTime now) const {
  const std::lock_guard guard(coordinator_.lock);
  const auto stored = storage_.load();
  if (!stored) return std::nullopt;
  auto configuration = verified(stored->envelope);
  validate(configuration, configuration.revision, now);
  return configuration;
}

RemoteConfiguration SignedConfigurationCache::verified(const SignedEnvelope& envelope) const {
  return verifier_.verify<RemoteConfiguration>(envelope);
}

void SignedConfigurationCache::validate(const RemoteConfiguration& configuration,
                                        std::int64_t minimumRevision, runtime::WallTime now) const {
  RemoteConfigurationValidator::validate(configuration, {.appID = appID_,
                                                         .appVersion = appVersion_,
                                                         .minimumRevision = minimumRevision,
                                                         .now = documentDate(now),
                                                         .allowedClockSkew = allowedClockSkew});
}

} // namespace ventolith::app
