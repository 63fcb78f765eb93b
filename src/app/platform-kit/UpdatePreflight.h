// The check of a build's settings before it is given away. Plays no part at run time.
#pragma once

#include "app/platform-kit/UpdateFeedSettings.h"

#include <optional>
#include <string>
#include <vector>

namespace ventolith::app::UpdatePreflight {

/// All that is wrong, in the order version, build number, feed, key, channel; empty if the release is good. A
/// version or build number that is absent counts as the empty text.
[[nodiscard]] std::vector<UpdateConfigurationError>
validate(const std::optional<std::string>& marketingVersion, const std::optional<std::string>& buildNumber,
         const UpdateFeedSettings& feed);

} // namespace ventolith::app::UpdatePreflight
