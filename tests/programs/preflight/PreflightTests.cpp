#include "programs/preflight/Preflight.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>

namespace ventolith::programs {
namespace {

using Settings = std::map<std::string, std::string>; // By key; the value as it stands in the property list.

Settings goodSettings() {
  return {{"CFBundleShortVersionString", "<string>1.2.3</string>"},
          {"CFBundleVersion", "<string>45</string>"},
          {"SUFeedURL", "<string>https://updates.example/appcast.xml</string>"},
          {"SUPublicEDKey", "<string>AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8=</string>"},
          {"AppUpdateChannel", "<string>stable</string>"},
          {"AppUpdateAllowInsecureLocalhost", "<false/>"}};
}

/// A program that has run.
struct Preflight : testing::Test {
  support::TemporaryFolder folder;
  std::ostringstream out;
  std::ostringstream err;

  int run(std::vector<std::string> arguments) { return runPreflight(std::move(arguments), out, err); }

  int check(const Settings& settings) {
    std::string text = "<plist version=\"1.0\"><dict>";
    for (const auto& [key, value] : settings)
      text += "<key>" + key + "</key>" + value;
    return run({folder.write("Info.plist", text + "</dict></plist>").string()});
  }
};

TEST_F(Preflight, GoodSettingsAreReadyForRelease) {
  EXPECT_EQ(check(goodSettings()), 0);
  EXPECT_EQ(out.str(), (folder / "Info.plist").string() + ": ready for release\n");
  EXPECT_EQ(err.str(), "");
}

TEST_F(Preflight, EverythingThatIsWrongIsTold) {
  EXPECT_EQ(check({{"CFBundleShortVersionString", "<string>1.2</string>"},
                   {"CFBundleVersion", "<string>0</string>"},
                   {"SUFeedURL", "<string>http://updates.example/</string>"},
                   {"SUPublicEDKey", "<string>AAEC</string>"},
                   {"AppUpdateChannel", "<string>nightly</string>"}}),
            1);
  EXPECT_EQ(out.str(), "The marketing version must use major.minor.patch format.\n"
                       "The build number must be a positive integer.\n"
                       "The update feed URL must use HTTPS (or explicit localhost development mode).\n"
                       "The Sparkle update signing public key is invalid.\n"
                       "The update channel must be stable or beta.\n");
  EXPECT_EQ(err.str(), "");
}

TEST_F(Preflight, ADevelopersBuildLacksFeedAndKey) {
  Settings settings = goodSettings();
  settings.erase("SUFeedURL");
  settings.erase("SUPublicEDKey");
  EXPECT_EQ(check(settings), 1);
  EXPECT_EQ(out.str(), "No update feed is configured for this build.\n"
                       "No Sparkle update signing public key is configured for this build.\n");
}

TEST_F(Preflight, AFeedOfThisComputerNeedsToBeAllowed) {
  Settings settings = goodSettings();
  settings["SUFeedURL"] = "<string>http://localhost:8000/appcast.xml</string>";
  EXPECT_EQ(check(settings), 1);
  settings["AppUpdateAllowInsecureLocalhost"] = "<true/>";
  EXPECT_EQ(check(settings), 0);
}

TEST_F(Preflight, AVersionThatIsNoStringCountsAsMissing) {
  Settings settings = goodSettings();
  settings["CFBundleVersion"] = "<integer>45</integer>";
  EXPECT_EQ(check(settings), 1);
  EXPECT_EQ(out.str(), "The build number must be a positive integer.\n");
}

TEST_F(Preflight, WhatCannotBeReadIsNotChecked) {
  EXPECT_EQ(run({(folder / "none.plist").string()}), 2);
  EXPECT_EQ(err.str(),
            "ventolith-preflight: " + (folder / "none.plist").string() + ": No such file or directory\n");
  EXPECT_EQ(out.str(), "");
}

TEST_F(Preflight, WhatIsNoPropertyListIsNotChecked) {
  EXPECT_EQ(run({folder.write("Info.plist", "{}").string()}), 2);
  EXPECT_NE(err.str().find("Info.plist: line 1: "), std::string::npos) << err.str();
  EXPECT_EQ(out.str(), "");
}

TEST_F(Preflight, ExactlyOnePropertyListIsChecked) {
  EXPECT_EQ(run({}), 2);
  EXPECT_EQ(run({"a.plist", "b.plist"}), 2);
  EXPECT_EQ(run({"--unknown"}), 2);
  EXPECT_EQ(out.str(), "");
}

TEST_F(Preflight, HelpTellsTheStatuses) {
  EXPECT_EQ(run({"--help"}), 0);
  EXPECT_NE(out.str().find("2 it could not be checked"), std::string::npos) << out.str();
}

} // namespace
} // namespace ventolith::programs
