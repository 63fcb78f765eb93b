#include "app/platform-kit/AppReleaseMetadata.h"

#include <algorithm>

namespace ventolith::app {

namespace {

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

bool areDigits(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), isDigit);
}

} // namespace

bool AppReleaseMetadata::isSemanticVersion(std::string_view text) {
  const auto firstDot = text.find('.');
  const auto lastDot = text.rfind('.');
  if (firstDot == lastDot) return false; // One dot, or none.
  return areDigits(text.substr(0, firstDot)) &&
         areDigits(text.substr(firstDot + 1, lastDot - firstDot - 1)) && areDigits(text.substr(lastDot + 1));
}

bool AppReleaseMetadata::isBuildNumber(std::string_view text) {
  return areDigits(text) && text.front() != '0';
}

UpdateConfigurationResult<AppReleaseMetadata> AppReleaseMetadata::make(std::string marketingVersion,
                                                                       std::string buildNumber) {
  if (!isSemanticVersion(marketingVersion))
    return UpdateConfigurationError::invalidMarketingVersion(marketingVersion);
  if (!isBuildNumber(buildNumber)) return UpdateConfigurationError::invalidBuildNumber(buildNumber);
  return AppReleaseMetadata(std::move(marketingVersion), std::move(buildNumber));
}

std::optional<AppReleaseMetadata> AppReleaseMetadata::ofBundle(const BundleInfo& bundle) {
  auto marketingVersion = bundle.string("CFBundleShortVersionString");
  auto buildNumber = bundle.string("CFBundleVersion");
  if (!marketingVersion || !buildNumber) return std::nullopt;
  auto metadata = make(std::move(*marketingVersion), std::move(*buildNumber));
  return metadata ? std::optional(std::move(*metadata)) : std::nullopt;
}

} // namespace ventolith::app
