#include "app/platform-kit/AppReleaseMetadata.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

using Error = UpdateConfigurationError;

TEST(AppReleaseMetadata, AVersionIsThreeNumbers) {
  for (const std::string_view text :
       {"1.2.3", "0.0.0", "01.002.0003", "10.20.300", "99999999999999999999.0.1"})
    EXPECT_TRUE(AppReleaseMetadata::isSemanticVersion(text)) << text;
}

TEST(AppReleaseMetadata, OtherTextsAreNoVersion) {
  for (const std::string_view text :
       {"",        "1",          "1.2",     "1.2.3.4", "1.2.",  ".2.3",      "1..3",
        "..",      "1.2.3-beta", "1.2.3+4", "v1.2.3",  "1.2.x", " 1.2.3",    "1.2.3 ",
        "1.2.3\n", "\n1.2.3",    "1.-2.3",  "+1.2.3",  "1,2,3", "\u0661.2.3"})
    EXPECT_FALSE(AppReleaseMetadata::isSemanticVersion(text)) << text;
}

TEST(AppReleaseMetadata, ABuildNumberIsAPositiveInteger) {
  for (const std::string_view text : {"1", "9", "10", "6", "20260301", "123456789012345678901234567890"})
    EXPECT_TRUE(AppReleaseMetadata::isBuildNumber(text)) << text;
}

TEST(AppReleaseMetadata, OtherTextsAreNoBuildNumber) {
  for (const std::string_view text :
       {"", "0", "00", "01", "-1", "+1", "1.0", "1 ", " 1", "1\n", "x", "1x", "\u0661"})
    EXPECT_FALSE(AppReleaseMetadata::isBuildNumber(text)) << text;
}

TEST(AppReleaseMetadata, HoldsBothTextsAsTheyAre) {
  const auto metadata = AppReleaseMetadata::make("01.2.3", "45");
  ASSERT_TRUE(metadata);
  EXPECT_EQ(metadata->marketingVersion(), "01.2.3");
  EXPECT_EQ(metadata->buildNumber(), "45");
}

TEST(AppReleaseMetadata, TheVersionIsTestedBeforeTheBuildNumber) {
  EXPECT_EQ(AppReleaseMetadata::make("1.2", "0").error(), Error::invalidMarketingVersion("1.2"));
  EXPECT_EQ(AppReleaseMetadata::make("1.2.3", "0").error(), Error::invalidBuildNumber("0"));
}

TEST(AppReleaseMetadata, NothingIsTrimmed) {
  EXPECT_EQ(AppReleaseMetadata::make(" 1.2.3", "4").error(), Error::invalidMarketingVersion(" 1.2.3"));
  EXPECT_EQ(AppReleaseMetadata::make("1.2.3", "4 ").error(), Error::invalidBuildNumber("4 "));
}

TEST(AppReleaseMetadata, ABundleNamesVersionAndBuild) {
  const MapBundleInfo bundle(
      {{"CFBundleShortVersionString", std::string("1.0.3")}, {"CFBundleVersion", std::string("6")}});
  const auto metadata = AppReleaseMetadata::ofBundle(bundle);
  ASSERT_TRUE(metadata);
  EXPECT_EQ(metadata->marketingVersion(), "1.0.3");
  EXPECT_EQ(metadata->buildNumber(), "6");
}

TEST(AppReleaseMetadata, ABundleWithoutAProperVersionGivesNone) {
  const std::string version = "1.0.3";
  const std::string build = "6";
  const MapBundleInfo::Values bundles[] = {
      {},
      {{"CFBundleShortVersionString", version}},
      {{"CFBundleVersion", build}},
      {{"CFBundleShortVersionString", version}, {"CFBundleVersion", true}},
      {{"CFBundleShortVersionString", true}, {"CFBundleVersion", build}},
      {{"CFBundleShortVersionString", std::string("1.0")}, {"CFBundleVersion", build}},
      {{"CFBundleShortVersionString", version}, {"CFBundleVersion", std::string("0")}},
  };
  for (const auto& values : bundles)
    EXPECT_EQ(AppReleaseMetadata::ofBundle(MapBundleInfo(values)), std::nullopt) << values.size();
}

} // namespace
} // namespace ventolith::app
