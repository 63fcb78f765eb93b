#include "app/platform-kit/SignedConfigurationCache.h"

#include "app/platform-kit/RemoteConfigurationValidator.h"

#include <map>

namespace ventolith::app {

ConfigurationCacheCoordinator& ConfigurationCacheCoordinator::forKey(const std::string& key) {
  static std::mutex registryLock;
  static std::map<std::string, ConfigurationCacheCoordinator> registry; // Its places never move.
  const std::lock_guard guard(registryLock);
  return registry[key];
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
