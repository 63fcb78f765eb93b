#include "app/platform-kit/UpdateFeedSettings.h"

#include "app/platform-kit/Base64.h"
#include "app/platform-kit/TrimmedText.h"

#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>

#include <algorithm>

namespace ventolith::app {

using Error = UpdateConfigurationError;

namespace {

constexpr std::size_t publicKeyBytes = 32;

/// Of a part of a URL, whose type is another one in each version of Boost.
template <class Part>
std::string_view view(const Part& part) {
  return {part.data(), part.size()};
}

bool isAllowedFeedURL(std::string_view text, bool allowInsecureLocalhost) {
  const auto url = boost::urls::parse_uri({text.data(), text.size()});
  if (!url) return false;
  // Boost 1.81 takes the rest of "user@localhost@elsewhere", which is no authority, for a path.
  const auto path = view(url->encoded_path());
  if (!path.empty() && !path.starts_with('/')) return false;

  const auto scheme = view(url->scheme());
  const auto host = view(url->encoded_host());
  // What an escape in a host stands for is not the same to all who read it.
  if (host.empty() || host.find('%') != std::string_view::npos) return false;
  if (scheme == "https") return true;
  return allowInsecureLocalhost && scheme == "http" && (host == "localhost" || host == "127.0.0.1");
}

std::string_view trimmedOrEmpty(const std::optional<std::string>& text) {
  return text ? trimmed(*text) : std::string_view();
}

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  });
  return lower;
}

} // namespace

UpdateFeedSettings UpdateFeedSettings::ofBundle(const BundleInfo& bundle) {
  return {.feedURL = bundle.string("SUFeedURL"),
          .publicKey = bundle.string("SUPublicEDKey"),
          .channel = bundle.string("AppUpdateChannel"),
          .allowInsecureLocalhost = bundle.boolean("AppUpdateAllowInsecureLocalhost").value_or(false)};
}

UpdateConfigurationResult<std::string> checkedFeedURL(const UpdateFeedSettings& settings) {
  const auto text = trimmedOrEmpty(settings.feedURL);
  if (text.empty()) return Error::missingFeedURL;
  if (!isAllowedFeedURL(text, settings.allowInsecureLocalhost)) return Error::invalidFeedURL(text);
  return std::string(text);
}

UpdateConfigurationResult<std::string> checkedPublicKey(const UpdateFeedSettings& settings) {
  const auto text = trimmedOrEmpty(settings.publicKey);
  if (text.empty()) return Error::missingPublicKey;
  const auto key = decodeBase64(text);
  if (!key || key->size() != publicKeyBytes) return Error::invalidPublicKey;
  return std::string(text);
}

UpdateConfigurationResult<UpdateChannel> checkedChannel(const UpdateFeedSettings& settings) {
  if (!settings.channel) return UpdateChannel::stable;
  const std::string word = lowerCase(trimmed(*settings.channel));
  const auto channel = updateChannel(word);
  if (!channel) return Error::invalidChannel(word);
  return *channel;
}

} // namespace ventolith::app
