#include "app/platform-kit/UpdateFeedConfiguration.h"

#include <gtest/gtest.h>

#include <string>

namespace ventolith::app {
namespace {

using Error = UpdateConfigurationError;

const std::string feed = "https://updates.example.com/feed.xml";
const std::string key = "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA="; // 32 bytes.

UpdateFeedSettings settings() {
  return {.feedURL = feed, .publicKey = key};
}

UpdateFeedSettings withFeed(std::string url, bool allowInsecureLocalhost = false) {
  auto changed = settings();
  changed.feedURL = std::move(url);
  changed.allowInsecureLocalhost = allowInsecureLocalhost;
  return changed;
}

UpdateFeedSettings withKey(std::string publicKey) {
  auto changed = settings();
  changed.publicKey = std::move(publicKey);
  return changed;
}

UpdateFeedSettings withChannel(std::string channel) {
  auto changed = settings();
  changed.channel = std::move(channel);
  return changed;
}

std::optional<UpdateChannel> channelOf(const UpdateFeedSettings& settings) {
  const auto configuration = UpdateFeedConfiguration::make(settings);
  return configuration ? std::optional(configuration->channel()) : std::nullopt;
}

Error errorOf(const UpdateFeedSettings& settings) {
  return UpdateFeedConfiguration::make(settings).error();
}

TEST(UpdateFeedConfiguration, HoldsWhatPassed) {
  const auto configuration = UpdateFeedConfiguration::make(withChannel("beta"));
  ASSERT_TRUE(configuration);
  EXPECT_EQ(configuration->feedURL(), feed);
  EXPECT_EQ(configuration->publicKey(), key);
  EXPECT_EQ(configuration->channel(), UpdateChannel::beta);
}

TEST(UpdateFeedConfiguration, FeedAndKeyAreTrimmed) {
  const auto configuration =
      UpdateFeedConfiguration::make({.feedURL = " \n" + feed + "\t", .publicKey = "\n" + key + " "});
  ASSERT_TRUE(configuration);
  EXPECT_EQ(configuration->feedURL(), feed);
  EXPECT_EQ(configuration->publicKey(), key);
}

TEST(UpdateFeedConfiguration, AFeedThatIsAbsentOrBlankIsMissing) {
  EXPECT_EQ(errorOf({.publicKey = key}), Error::missingFeedURL);
  EXPECT_EQ(errorOf(withFeed("")), Error::missingFeedURL);
  EXPECT_EQ(errorOf(withFeed(" \n\t")), Error::missingFeedURL);
}

TEST(UpdateFeedConfiguration, HTTPSFeedsWithAHostPass) {
  for (const std::string url : {"https://example.com", "https://example.com:8443/a/b?c=d#e",
                                "https://user@example.com/", "https://127.0.0.1/", "https://[::1]/feed",
                                "https://localhost/feed", "https://us%20er@example.com/a%20b"})
    EXPECT_TRUE(UpdateFeedConfiguration::make(withFeed(url))) << url;
}

TEST(UpdateFeedConfiguration, OtherFeedsAreInvalid) {
  for (const std::string url : {"http://example.com/",
                                "ftp://example.com/",
                                "file:///feed.xml",
                                "HTTPS://example.com/",
                                "Https://example.com/",
                                "https://",
                                "https:///feed.xml",
                                "https://:443/",
                                "https:example.com",
                                "https:",
                                "//example.com/feed",
                                "example.com/feed",
                                "feed.xml",
                                "https://exa mple.com/",
                                "https://example.com/a b",
                                "https://example.com/%zz",
                                "https://%20/",
                                "https://ex%00ample.com/",
                                "https://ex%61mple.com/",
                                "https://[fe80::1%25eth0]/",
                                "https://[::1",
                                "https://user@example.com@elsewhere/",
                                "https//example.com",
                                "://example.com"}) {
    EXPECT_EQ(errorOf(withFeed(url)), Error::invalidFeedURL(url)) << url;
    EXPECT_EQ(errorOf(withFeed(url, true)), Error::invalidFeedURL(url)) << url << " in development";
  }
}

TEST(UpdateFeedConfiguration, AnInvalidFeedIsQuotedTrimmed) {
  EXPECT_EQ(errorOf(withFeed("  http://example.com/ ")), Error::invalidFeedURL("http://example.com/"));
}

TEST(UpdateFeedConfiguration, PlainHTTPPassesOnThisComputerInDevelopment) {
  for (const std::string url :
       {"http://localhost/feed", "http://localhost:8000/feed", "http://127.0.0.1/feed"}) {
    EXPECT_TRUE(UpdateFeedConfiguration::make(withFeed(url, true))) << url;
    EXPECT_EQ(errorOf(withFeed(url, false)), Error::invalidFeedURL(url)) << url;
  }
}

TEST(UpdateFeedConfiguration, ThisComputerByAnyOtherNameIsInvalid) {
  for (const std::string url :
       {"HTTP://localhost/", "http://LOCALHOST/", "http://localhost./", "http://127.0.0.2/", "http://127.1/",
        "http://2130706433/", "http://[::1]/", "http://local%68ost/", "http://localhost.example.com/",
        "http://localhost@example.com/", "http://user@localhost@example.com/", "ftp://localhost/"})
    EXPECT_EQ(errorOf(withFeed(url, true)), Error::invalidFeedURL(url)) << url;
}

TEST(UpdateFeedConfiguration, AKeyThatIsAbsentOrBlankIsMissing) {
  EXPECT_EQ(errorOf({.feedURL = feed}), Error::missingPublicKey);
  EXPECT_EQ(errorOf(withKey("")), Error::missingPublicKey);
  EXPECT_EQ(errorOf(withKey("\n ")), Error::missingPublicKey);
}

TEST(UpdateFeedConfiguration, AKeyIsThirtyTwoBytesInBase64) {
  for (
      const std::string text : {
          "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA==", // 31 bytes,
          "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA", // 33,
          "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA==", // and 64.
          "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA", // Not padded.
          "AAAAAAAAAAAAAAAAAAAAAAAA\nAAAAAAAAAAAAAAAAAAA=",
          "__________________________________________8=", // Base64url.
          "no key at all",
      })
    EXPECT_EQ(errorOf(withKey(text)), Error::invalidPublicKey) << text;
}

TEST(UpdateFeedConfiguration, AnyThirtyTwoBytesPassForAKey) {
  for (const std::string& text : {key, std::string("//////////////////////////////////////////8=")})
    EXPECT_TRUE(UpdateFeedConfiguration::make(withKey(text))) << text;
}

TEST(UpdateFeedConfiguration, AnAbsentChannelIsStable) {
  EXPECT_EQ(channelOf(settings()), UpdateChannel::stable);
}

TEST(UpdateFeedConfiguration, BlanksAndCapitalsDoNotMatterInAChannel) {
  EXPECT_EQ(channelOf(withChannel("  BETA\n")), UpdateChannel::beta);
  EXPECT_EQ(channelOf(withChannel("Stable")), UpdateChannel::stable);
}

TEST(UpdateFeedConfiguration, AnyOtherChannelIsQuotedInLowerCase) {
  EXPECT_EQ(errorOf(withChannel(" Nightly ")), Error::invalidChannel("nightly"));
  EXPECT_EQ(errorOf(withChannel("N\u00C4CHTLICH")), Error::invalidChannel("n\u00C4chtlich")); // ASCII alone.
  EXPECT_EQ(errorOf(withChannel("")), Error::invalidChannel(""));
  EXPECT_EQ(errorOf(withChannel("beta stable")), Error::invalidChannel("beta stable"));
}

TEST(UpdateFeedConfiguration, TheFirstProblemIsTheOneReported) {
  EXPECT_EQ(errorOf({.channel = "nightly"}), Error::missingFeedURL);
  EXPECT_EQ(errorOf({.feedURL = "http://x/", .channel = "nightly"}), Error::invalidFeedURL("http://x/"));
  EXPECT_EQ(errorOf({.feedURL = feed, .channel = "nightly"}), Error::missingPublicKey);
  EXPECT_EQ(errorOf({.feedURL = feed, .publicKey = "x", .channel = "nightly"}), Error::invalidPublicKey);
}

TEST(UpdateFeedConfiguration, ABundleCarriesFourSettings) {
  const MapBundleInfo bundle({{"SUFeedURL", std::string("http://localhost/feed")},
                              {"SUPublicEDKey", key},
                              {"AppUpdateChannel", std::string("beta")},
                              {"AppUpdateAllowInsecureLocalhost", true}});
  const auto configuration = UpdateFeedConfiguration::ofBundle(bundle);
  ASSERT_TRUE(configuration);
  EXPECT_EQ(configuration->feedURL(), "http://localhost/feed");
  EXPECT_EQ(configuration->publicKey(), key);
  EXPECT_EQ(configuration->channel(), UpdateChannel::beta);
}

TEST(UpdateFeedConfiguration, InABundleASettingOfAnotherTypeIsAbsent) {
  const MapBundleInfo bundle({{"SUFeedURL", feed}, {"SUPublicEDKey", key}, {"AppUpdateChannel", true}});
  const auto configuration = UpdateFeedConfiguration::ofBundle(bundle);
  ASSERT_TRUE(configuration);
  EXPECT_EQ(configuration->channel(), UpdateChannel::stable);
}

TEST(UpdateFeedConfiguration, InABundleOnlyABooleanAllowsPlainHTTP) {
  const MapBundleInfo bundle({{"SUFeedURL", std::string("http://localhost/feed")},
                              {"SUPublicEDKey", key},
                              {"AppUpdateAllowInsecureLocalhost", std::string("true")}});
  EXPECT_EQ(UpdateFeedConfiguration::ofBundle(bundle), std::nullopt);
}

TEST(UpdateFeedConfiguration, ABundleWithAnythingWrongGivesNone) {
  const MapBundleInfo::Values bundles[] = {
      {},
      {{"SUFeedURL", feed}},
      {{"SUPublicEDKey", key}},
      {{"SUFeedURL", true}, {"SUPublicEDKey", key}},
      {{"SUFeedURL", feed}, {"SUPublicEDKey", key}, {"AppUpdateChannel", std::string("nightly")}},
  };
  for (const auto& values : bundles)
    EXPECT_EQ(UpdateFeedConfiguration::ofBundle(MapBundleInfo(values)), std::nullopt) << values.size();
}

} // namespace
} // namespace ventolith::app
