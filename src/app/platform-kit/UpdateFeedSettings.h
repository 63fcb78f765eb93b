// A build's settings for its update feed as they stand in it, and the test of each.
#pragma once

#include "app/platform-kit/BundleInfo.h"
#include "app/platform-kit/UpdateChannel.h"
#include "app/platform-kit/UpdateConfigurationError.h"

#include <optional>
#include <string>

namespace ventolith::app {

struct UpdateFeedSettings {
  std::optional<std::string> feedURL;
  std::optional<std::string> publicKey;
  std::optional<std::string> channel;
  bool allowInsecureLocalhost = false; // For development: plain HTTP from this very computer.

  /// Reads SUFeedURL, SUPublicEDKey, AppUpdateChannel and AppUpdateAllowInsecureLocalhost; what is missing or
  /// of another type is absent, and false.
  [[nodiscard]] static UpdateFeedSettings ofBundle(const BundleInfo& bundle);
};

/// The feed's URL, trimmed: "https" with a host, or "http" with the host localhost or 127.0.0.1 where that is
/// allowed. Scheme and host are compared to the letter, so that HTTPS in capitals is refused, and a host has
/// no escapes. Fails with missingFeedURL, also for a blank text, or invalidFeedURL.
[[nodiscard]] UpdateConfigurationResult<std::string> checkedFeedURL(const UpdateFeedSettings& settings);

/// The key's base64 text, trimmed, which stands for 32 bytes. Fails with missingPublicKey, also for a blank
/// text, or invalidPublicKey.
[[nodiscard]] UpdateConfigurationResult<std::string> checkedPublicKey(const UpdateFeedSettings& settings);

/// Stable when absent; otherwise the channel of that word, blanks around it and capitals aside. Fails with
/// invalidChannel, whose text has the letters A to Z alone in lower case: no channel has others.
[[nodiscard]] UpdateConfigurationResult<UpdateChannel> checkedChannel(const UpdateFeedSettings& settings);

} // namespace ventolith::app
