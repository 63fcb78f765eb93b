#include "app/platform-kit/UpdatePreflight.h"

#include "app/platform-kit/AppReleaseMetadata.h"

namespace ventolith::app::UpdatePreflight {

std::vector<UpdateConfigurationError> validate(const std::optional<std::string>& marketingVersion,
                                               const std::optional<std::string>& buildNumber,
                                               const UpdateFeedSettings& feed) {
  std::vector<UpdateConfigurationError> problems;
  const auto collect = [&problems](const auto& checked) {
    if (!checked) problems.push_back(checked.error());
  };

  const std::string version = marketingVersion.value_or("");
  if (!AppReleaseMetadata::isSemanticVersion(version))
    problems.push_back(UpdateConfigurationError::invalidMarketingVersion(version));
  const std::string build = buildNumber.value_or("");
  if (!AppReleaseMetadata::isBuildNumber(build))
    problems.push_back(UpdateConfigurationError::invalidBuildNumber(build));
  collect(checkedFeedURL(feed));
  collect(checkedPublicKey(feed));
  collect(checkedChannel(feed));
  return problems;
}

} // namespace ventolith::app::UpdatePreflight
