#include "app/platform-kit/UpdatePreflight.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

using Error = UpdateConfigurationError;
using Errors = std::vector<Error>;

const std::string feed = "https://updates.example.com/feed.xml";
const std::string key = "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA=";

TEST(UpdatePreflight, AGoodReleaseHasNoProblems) {
  EXPECT_EQ(UpdatePreflight::validate("1.0.3", "6", {.feedURL = feed, .publicKey = key}), Errors{});
  EXPECT_EQ(UpdatePreflight::validate("1.0.3", "6", {.feedURL = feed, .publicKey = key, .channel = " BETA "}),
            Errors{});
}

TEST(UpdatePreflight, WithNothingAllButTheChannelIsWrong) {
  EXPECT_EQ(UpdatePreflight::validate(std::nullopt, std::nullopt, {}),
            (Errors{Error::invalidMarketingVersion(""), Error::invalidBuildNumber(""), Error::missingFeedURL,
                    Error::missingPublicKey}));
}

TEST(UpdatePreflight, CollectsEveryProblemInOrder) {
  const UpdateFeedSettings settings = {
      .feedURL = " http://example.com/ ", .publicKey = "x", .channel = "Nightly"};
  EXPECT_EQ(UpdatePreflight::validate("1.0", "01", settings),
            (Errors{Error::invalidMarketingVersion("1.0"), Error::invalidBuildNumber("01"),
                    Error::invalidFeedURL("http://example.com/"), Error::invalidPublicKey,
                    Error::invalidChannel("nightly")}));
}

TEST(UpdatePreflight, BlankSettingsAreMissing) {
  EXPECT_EQ(UpdatePreflight::validate("1.0.3", "6", {.feedURL = " ", .publicKey = "\n"}),
            (Errors{Error::missingFeedURL, Error::missingPublicKey}));
}

TEST(UpdatePreflight, PlainHTTPIsForDevelopmentOnThisComputer) {
  const std::string url = "http://127.0.0.1:8000/feed";
  EXPECT_EQ(UpdatePreflight::validate("1.0.3", "6",
                                      {.feedURL = url, .publicKey = key, .allowInsecureLocalhost = true}),
            Errors{});
  EXPECT_EQ(UpdatePreflight::validate("1.0.3", "6", {.feedURL = url, .publicKey = key}),
            Errors{Error::invalidFeedURL(url)});
}

} // namespace
} // namespace ventolith::app
