// The document that a remote service publishes for an application: the fields on which its acceptance
// depends.
#pragma once

#include "app/platform-kit/ISO8601.h"
#include "app/platform-kit/SignedEnvelope.h"

#include <cstdint>
#include <string>

namespace ventolith::app {

struct RemoteConfiguration {
  static constexpr SignedPayloadPurpose signingPurpose = SignedPayloadPurpose::configuration;

  std::int64_t schemaVersion = 1;
  std::int64_t revision = 1; // Grows with each publication.
  std::string appID;         // The application that it is for.
  DocumentDate publishedAt;
  DocumentDate expiresAt;
  std::string minimumSupportedVersion; // The lowest version of the application that may use it.
  std::int64_t configRefreshMinutes = 0;

  /// All fields are required, others are ignored. Throws DecodeError.
  [[nodiscard]] static RemoteConfiguration read(const core::JSONReader& json);

  bool operator==(const RemoteConfiguration&) const = default;
};

} // namespace ventolith::app
