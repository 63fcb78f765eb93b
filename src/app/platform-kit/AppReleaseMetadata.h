// The version of one build.
#pragma once

#include "app/platform-kit/BundleInfo.h"
#include "app/platform-kit/UpdateConfigurationError.h"

#include <optional>
#include <string>
#include <string_view>

namespace ventolith::app {

class AppReleaseMetadata {
public:
  /// Three numbers in ASCII digits, joined by dots, and nothing else. Leading zeros are fine.
  [[nodiscard]] static bool isSemanticVersion(std::string_view text);
  /// A positive integer in ASCII digits without leading zeros, of any length, and nothing else.
  [[nodiscard]] static bool isBuildNumber(std::string_view text);

  /// Fails with invalidMarketingVersion, then with invalidBuildNumber. Nothing is trimmed.
  [[nodiscard]] static UpdateConfigurationResult<AppReleaseMetadata> make(std::string marketingVersion,
                                                                          std::string buildNumber);
  /// Reads CFBundleShortVersionString and CFBundleVersion. None when one is missing, no string, or invalid.
  [[nodiscard]] static std::optional<AppReleaseMetadata> ofBundle(const BundleInfo& bundle);

  [[nodiscard]] const std::string& marketingVersion() const { return marketingVersion_; }
  [[nodiscard]] const std::string& buildNumber() const { return buildNumber_; }

  bool operator==(const AppReleaseMetadata&) const = default;

private:
  AppReleaseMetadata(std::string marketingVersion, std::string buildNumber)
      : marketingVersion_(std::move(marketingVersion)), buildNumber_(std::move(buildNumber)) {}

  std::string marketingVersion_;
  std::string buildNumber_;
};

} // namespace ventolith::app
