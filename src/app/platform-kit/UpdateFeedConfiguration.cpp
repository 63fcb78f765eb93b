#include "app/platform-kit/UpdateFeedConfiguration.h"

namespace ventolith::app {

UpdateConfigurationResult<UpdateFeedConfiguration>
UpdateFeedConfiguration::make(const UpdateFeedSettings& settings) {
  auto feedURL = checkedFeedURL(settings);
  if (!feedURL) return feedURL.error();
  auto publicKey = checkedPublicKey(settings);
  if (!publicKey) return publicKey.error();
  const auto channel = checkedChannel(settings);
  if (!channel) return channel.error();
  return UpdateFeedConfiguration(std::move(*feedURL), std::move(*publicKey), *channel);
}

std::optional<UpdateFeedConfiguration> UpdateFeedConfiguration::ofBundle(const BundleInfo& bundle) {
  auto configuration = make(UpdateFeedSettings::ofBundle(bundle));
  return configuration ? std::optional(std::move(*configuration)) : std::nullopt;
}

} // namespace ventolith::app
