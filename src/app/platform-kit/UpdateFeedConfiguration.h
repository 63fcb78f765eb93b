// Where a build gets its updates from: settings that passed every test.
#pragma once

#include "app/platform-kit/UpdateFeedSettings.h"

#include <optional>
#include <string>

namespace ventolith::app {

class UpdateFeedConfiguration {
public:
  /// Fails with the first thing that is wrong: feed, key, channel.
  [[nodiscard]] static UpdateConfigurationResult<UpdateFeedConfiguration>
  make(const UpdateFeedSettings& settings);
  /// None when anything is wrong: such a build has no updates.
  [[nodiscard]] static std::optional<UpdateFeedConfiguration> ofBundle(const BundleInfo& bundle);

  [[nodiscard]] const std::string& feedURL() const { return feedURL_; }
  /// The feed's Ed25519 public key in base64. Nothing proves that its 32 bytes are a point of the curve.
  [[nodiscard]] const std::string& publicKey() const { return publicKey_; }
  [[nodiscard]] UpdateChannel channel() const { return channel_; }

  bool operator==(const UpdateFeedConfiguration&) const = default;

private:
  UpdateFeedConfiguration(std::string feedURL, std::string publicKey, UpdateChannel channel)
      : feedURL_(std::move(feedURL)), publicKey_(std::move(publicKey)), channel_(channel) {}

  std::string feedURL_;
  std::string publicKey_;
  UpdateChannel channel_;
};

} // namespace ventolith::app
