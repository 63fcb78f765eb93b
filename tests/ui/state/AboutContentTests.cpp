#include "ui/state/AboutContent.h"

#include "support/TemporaryFolder.h"
#include "ui/state/RootTexts.h"
#include "ui/state/Text.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace ventolith::ui {
namespace {

using app::MapBundleInfo;
using support::utf8;

TEST(About, NameIsTheBundlesOwnOrVentolith) {
  EXPECT_EQ(utf8(applicationName(MapBundleInfo({{"CFBundleName", "Breeze"}}))), "Breeze");
  EXPECT_EQ(utf8(applicationName(MapBundleInfo({}))), "Ventolith");
  EXPECT_EQ(utf8(applicationName(MapBundleInfo({{"CFBundleName", true}}))), "Ventolith");
}

TEST(About, VersionNamesReleaseAndBuild) {
  const MapBundleInfo bundle({{"CFBundleShortVersionString", "1.0.3"}, {"CFBundleVersion", "6"}});
  EXPECT_EQ(utf8(versionText(bundle)), "Version 1.0.3 (6)");
}

TEST(About, MalformedVersionIsUnavailableEvenWithAName) {
  using Values = MapBundleInfo::Values;
  const Values rows[] = {
      {{"CFBundleName", "Ventolith"}},
      {{"CFBundleName", "Ventolith"}, {"CFBundleShortVersionString", "1.0.3"}},
      {{"CFBundleName", "Ventolith"}, {"CFBundleShortVersionString", "1.0"}, {"CFBundleVersion", "6"}},
      {{"CFBundleName", "Ventolith"}, {"CFBundleShortVersionString", "1.0.3"}, {"CFBundleVersion", "0"}},
  };
  for (const Values& values : rows)
    EXPECT_EQ(utf8(versionText(MapBundleInfo(values))), "Version unavailable");
}

class Notices : public testing::Test {
protected:
  support::TemporaryFolder folder;

  std::filesystem::path file() const { return folder.path() / "THIRD_PARTY_NOTICES.md"; }
  void write(const std::string& bytes) const { folder.write(file().filename().string(), bytes); }
  std::optional<QString> read() const {
    return thirdPartyNotices(QString::fromStdString(folder.path().string()));
  }
};

TEST_F(Notices, AreShownAsTheyStand) {
  write("# Notices\n\n*Größe*\r\n");
  ASSERT_TRUE(read());
  EXPECT_EQ(utf8(*read()), "# Notices\n\n*Größe*\r\n");
}

TEST_F(Notices, MayBeEmpty) {
  write("");
  ASSERT_TRUE(read());
  EXPECT_TRUE(read()->isEmpty());
}

TEST_F(Notices, AreAbsentWithoutAFile) {
  EXPECT_FALSE(read());
}

TEST_F(Notices, AreAbsentWhenAFolderBearsTheName) {
  std::filesystem::create_directory(file());
  EXPECT_FALSE(read());
}

TEST_F(Notices, AreAbsentWhenTheyAreNotUTF8) {
  for (const std::string bytes : {"Latin \xF6 1", "torn \xE2\x82"}) {
    write(bytes);
    EXPECT_FALSE(read()) << bytes;
  }
}

TEST(About, ScreenKeepsItsWords) {
  const AboutTexts texts = aboutTexts();
  EXPECT_EQ(utf8(texts.support), "Support");
  EXPECT_EQ(utf8(texts.noticesHeading), "Third-Party Notices");
  EXPECT_EQ(utf8(texts.noNotices), "Third-party notices are unavailable in this build.");
}

TEST(Root, ToolbarKeepsItsWords) {
  EXPECT_EQ(utf8(rootTexts().restoreAuto), "Restore Auto");
  EXPECT_EQ(utf8(rootTexts().restoreAutoToolTip), "Return all fans to firmware Auto");
}

} // namespace
} // namespace ventolith::ui
