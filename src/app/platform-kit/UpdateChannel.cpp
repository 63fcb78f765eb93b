#include "app/platform-kit/UpdateChannel.h"

namespace ventolith::app {

std::string_view rawValue(UpdateChannel channel) {
  switch (channel) {
  case UpdateChannel::stable: return "stable";
  case UpdateChannel::beta: return "beta";
  }
  return {};
}

std::optional<UpdateChannel> updateChannel(std::string_view word) {
  for (const auto channel : allUpdateChannels)
    if (rawValue(channel) == word) return channel;
  return std::nullopt;
}

std::set<std::string> sparkleAllowedChannels(UpdateChannel channel) {
  switch (channel) {
  case UpdateChannel::stable: return {};
  case UpdateChannel::beta: return {std::string(rawValue(channel))};
  }
  return {};
}

} // namespace ventolith::app
