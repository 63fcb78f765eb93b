#include "app/platform-kit/UpdateConfigurationError.h"

#include "core/Visitor.h"

namespace ventolith::app {

using Error = UpdateConfigurationError;

const Error Error::missingFeedURL{Plain::missingFeedURL};
const Error Error::missingPublicKey{Plain::missingPublicKey};
const Error Error::invalidPublicKey{Plain::invalidPublicKey};

Error Error::invalidFeedURL(std::string_view text) {
  return {InvalidFeedURL{std::string(text)}};
}

Error Error::invalidChannel(std::string_view text) {
  return {InvalidChannel{std::string(text)}};
}

Error Error::invalidMarketingVersion(std::string_view text) {
  return {InvalidMarketingVersion{std::string(text)}};
}

Error Error::invalidBuildNumber(std::string_view text) {
  return {InvalidBuildNumber{std::string(text)}};
}

namespace {

std::string_view plainDescription(Error::Plain error) {
  switch (error) {
  case Error::Plain::missingFeedURL: return "No update feed is configured for this build.";
  case Error::Plain::missingPublicKey:
    return "No Sparkle update signing public key is configured for this build.";
  case Error::Plain::invalidPublicKey: return "The Sparkle update signing public key is invalid.";
  }
  return {};
}

} // namespace

std::string_view Error::description() const {
  using Text = std::string_view;
  return std::visit(
      core::Visitor{
          [](const InvalidFeedURL&) -> Text {
            return "The update feed URL must use HTTPS (or explicit localhost development mode).";
          },
          [](const InvalidChannel&) -> Text { return "The update channel must be stable or beta."; },
          [](const InvalidMarketingVersion&) -> Text {
            return "The marketing version must use major.minor.patch format.";
          },
          [](const InvalidBuildNumber&) -> Text { return "The build number must be a positive integer."; },
          [](const Plain& plain) -> Text { return plainDescription(plain); },
      },
      value);
}

} // namespace ventolith::app
