#include "platform/system/desktop/InstalledBundle.h"

#include "app/platform-kit/AppReleaseMetadata.h"
#include "app/platform-kit/UpdateFeedConfiguration.h"
#include "support/VirtualDisk.h"

#include <gtest/gtest.h>

namespace ventolith::platform {
namespace {

namespace fs = std::filesystem;

const fs::path file = "/usr/share/ventolith/Info.plist";

TEST(InstalledBundle, AnswersWithWhatIsInItsFile) {
  support::VirtualDisk disk;
  disk.put(file, "<plist><dict><key>A</key><string>one</string><key>B</key><true/></dict></plist>");
  const InstalledBundle bundle(disk, file);
  EXPECT_EQ(bundle.complaint(), std::nullopt);
  EXPECT_EQ(bundle.string("A"), "one");
  EXPECT_EQ(bundle.boolean("B"), true);
  EXPECT_EQ(bundle.string("B"), std::nullopt);
  EXPECT_EQ(bundle.string("C"), std::nullopt);
}

TEST(InstalledBundle, IsEmptyAndSaysSoWithoutItsFile) {
  support::VirtualDisk disk;
  const InstalledBundle bundle(disk, file);
  EXPECT_EQ(bundle.complaint(), "/usr/share/ventolith/Info.plist: No such file or directory; this build "
                                "knows neither its version nor its updates");
  EXPECT_EQ(bundle.string("CFBundleVersion"), std::nullopt);
}

TEST(InstalledBundle, IsEmptyAndSaysSoWhenItsFileIsDamaged) {
  support::VirtualDisk disk;
  disk.put(file, "<plist><dict><key>A</key><string>one</string>");
  const InstalledBundle bundle(disk, file);
  EXPECT_EQ(bundle.complaint(), "/usr/share/ventolith/Info.plist: line 1: no element found; this build "
                                "knows neither its version nor its updates");
  EXPECT_EQ(bundle.string("A"), std::nullopt);
}

TEST(InstalledBundle, LiesBesideTheFolderOfTheProgram) {
  const fs::path program = fs::read_symlink("/proc/self/exe");
  EXPECT_EQ(InstalledBundle::propertyListBesideProgram(),
            program.parent_path().parent_path() / "share/ventolith/Info.plist");
}

TEST(InstalledBundle, OfThisBuildSaysWhichVersionItIsAndThatItHasNoUpdates) {
  runtime::SystemFiles files;
  const InstalledBundle bundle(files, VENTOLITH_PROPERTY_LIST);
  EXPECT_EQ(bundle.complaint(), std::nullopt);
  const auto release = app::AppReleaseMetadata::ofBundle(bundle);
  ASSERT_TRUE(release);
  EXPECT_EQ(release->marketingVersion() + "+" + release->buildNumber(), VENTOLITH_VERSION);
  EXPECT_EQ(bundle.string("CFBundleName"), "Ventolith");
  EXPECT_EQ(bundle.string("CFBundleIdentifier"), "com.ventolith.app");
  EXPECT_EQ(app::UpdateFeedConfiguration::ofBundle(bundle), std::nullopt);
  for (const char* const key : {"SUFeedURL", "SUPublicEDKey", "AppUpdateChannel", "AppSupportURL",
                                "PlatformConfigurationKeyID", "PlatformConfigurationPublicKey"})
    EXPECT_EQ(bundle.string(key), std::nullopt) << key;
}

} // namespace
} // namespace ventolith::platform
