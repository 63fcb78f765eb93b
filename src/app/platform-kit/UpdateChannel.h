// Which releases of the update feed a build takes.
#pragma once

#include <array>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace ventolith::app {

enum class UpdateChannel { stable, beta };

inline constexpr std::array allUpdateChannels = {UpdateChannel::stable, UpdateChannel::beta};

/// The word in a build's settings.
[[nodiscard]] std::string_view rawValue(UpdateChannel channel);
/// The channel of exactly that word.
[[nodiscard]] std::optional<UpdateChannel> updateChannel(std::string_view word);

/// The channels that are offered besides the feed's default one.
[[nodiscard]] std::set<std::string> sparkleAllowedChannels(UpdateChannel channel);

} // namespace ventolith::app
