// Does a document that is genuine fit this application, and this moment?
#pragma once

#include "app/platform-kit/RemoteConfiguration.h"

#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <variant>

namespace ventolith::app {

/// `what()` is the case and an excerpt of its payload, for a log.
class ConfigurationValidationError : public std::runtime_error {
public:
  struct UnsupportedSchemaVersion {
    std::int64_t version;
    bool operator==(const UnsupportedSchemaVersion&) const = default;
  };
  struct InvalidRevision {
    std::int64_t revision;
    bool operator==(const InvalidRevision&) const = default;
  };
  struct RevisionRollback {
    std::int64_t received;
    std::int64_t minimum;
    bool operator==(const RevisionRollback&) const = default;
  };
  struct RevisionConflict { // Another document has that revision.
    std::int64_t revision;
    bool operator==(const RevisionConflict&) const = default;
  };
  struct InvalidVersion {
    std::string text;
    bool operator==(const InvalidVersion&) const = default;
  };
  struct UpdateRequired {
    std::string current;
    std::string minimum;
    bool operator==(const UpdateRequired&) const = default;
  };
  enum class Plain { wrongApplication, publishedInFuture, invalidExpiry, expired };

  using Case = std::variant<UnsupportedSchemaVersion, InvalidRevision, RevisionRollback, RevisionConflict,
                            InvalidVersion, UpdateRequired, Plain>;

  explicit ConfigurationValidationError(Case value);

  [[nodiscard]] const Case& value() const { return value_; }

private:
  Case value_;
};

/// What a document is measured against.
struct ConfigurationValidationContext {
  std::string appID;
  std::string appVersion;
  std::int64_t minimumRevision = 0;
  DocumentDate now;
  std::chrono::duration<double> allowedClockSkew{0}; // Seconds.
};

namespace RemoteConfigurationValidator {

/// Throws ConfigurationValidationError with the first failure, in the order unsupportedSchemaVersion,
/// wrongApplication, invalidRevision (below 1), revisionRollback, publishedInFuture (by more than the skew),
/// invalidExpiry (not after the publication), expired (from that very moment, without skew), invalidVersion
/// (of the application, then of the minimum), updateRequired.
void validate(const RemoteConfiguration& configuration, const ConfigurationValidationContext& context);

} // namespace RemoteConfigurationValidator

} // namespace ventolith::app
