// What the bundle for macOS holds besides programs: its launch daemon and its icon.
#include "e2e/Program.h"
#include "platform/macos/service/CodeSigningRequirement.h"
#include "platform/macos/service/MachService.h"

#include <gtest/gtest.h>

#include <utility>

namespace ventolith::e2e {
namespace {

namespace fs = std::filesystem;

const fs::path launchDaemon = VENTOLITH_SOURCES "/packaging/macos/com.ventolith.helper.plist";

/// What Python's own reader of property lists finds under an expression of `p`.
std::string valueOf(const fs::path& file, const std::string& expression) {
  const Ended ended =
      run("/usr/bin/python3", {"-c",
                               "import plistlib, sys\np = plistlib.load(open(sys.argv[1], 'rb'))\n"
                               "print(" +
                                   expression + ", end='')",
                               file.string()});
  EXPECT_EQ(ended.status, 0) << ended.err;
  return ended.out;
}

TEST(LaunchDaemon, HasTheNamesUnderWhichTheApplicationLooksForIt) {
  const std::string name = platform::helperServiceName;
  EXPECT_EQ(launchDaemon.filename(), name + ".plist");
  EXPECT_EQ(valueOf(launchDaemon, "p['Label']"), name);
  EXPECT_EQ(valueOf(launchDaemon, "p['MachServices']"), "{'" + name + "': True}");
  EXPECT_EQ(valueOf(launchDaemon, "*p['AssociatedBundleIdentifiers']"), platform::applicationIdentifier);
}

TEST(LaunchDaemon, StartsTheProgramThatIsInstalledWithOptionsThatItHas) {
  EXPECT_EQ(valueOf(launchDaemon, "p['BundleProgram']"), "Contents/MacOS/ventolith-helper");
  EXPECT_EQ(valueOf(launchDaemon, "*p['ProgramArguments']"), "ventolith-helper --system-service");
  EXPECT_NE(run("ventolith-helper", {"--help"}).out.find("--system-service"), std::string::npos);
}

TEST(LaunchDaemon, IsStartedAgainAfterACrashAlone) {
  EXPECT_EQ(valueOf(launchDaemon, "p['KeepAlive']"), "{'SuccessfulExit': False}");
}

TEST(InformationTemplate, IsAnApplicationOfTheMenuBarWithTheIdentifierThatTheHelperAdmits) {
  EXPECT_EQ(
      valueOf(VENTOLITH_BUILD "/share/ventolith/Info.plist", "p['LSUIElement'], p['CFBundleExecutable']"),
      "True ventolith");
  EXPECT_EQ(valueOf(VENTOLITH_BUILD "/share/ventolith/Info.plist", "p['CFBundleIdentifier']"),
            platform::applicationIdentifier);
}

TEST(InformationTemplate, LetsHTTPThroughOnlyWhereTheFeedMayBeOnThisComputer) {
  EXPECT_EQ(
      valueOf(
          VENTOLITH_BUILD "/share/ventolith/Info.plist",
          "p['NSAppTransportSecurity'] == {'NSAllowsLocalNetworking': p['AppUpdateAllowInsecureLocalhost']}"),
      "True");
}

TEST(Entitlements, ThereAreNone) {
  EXPECT_EQ(valueOf(VENTOLITH_SOURCES "/packaging/macos/ventolith.entitlements", "p"), "{}");
}

/// The four bytes there, most significant first.
std::size_t numberAt(const std::string& bytes, std::size_t place) {
  std::size_t number = 0;
  for (const char byte : bytes.substr(place, 4))
    number = number * 256 + static_cast<unsigned char>(byte);
  return number;
}

TEST(Icon, HoldsAPictureOfEachSize) {
  const TemporaryFolder folder;
  const fs::path file = folder.path() / "icon.icns";
  const Ended ended =
      run("ventolith-icon", {VENTOLITH_SOURCES "/packaging/icons/ventolith.svg", file.string()});
  ASSERT_EQ(ended.status, 0) << ended.err;
  const std::string bytes = readText(file);
  ASSERT_TRUE(bytes.starts_with("icns"));
  EXPECT_EQ(numberAt(bytes, 4), bytes.size());

  std::vector<std::pair<std::string, std::size_t>> found;
  for (std::size_t place = 8; place < bytes.size(); place += numberAt(bytes, place + 4)) {
    ASSERT_EQ(bytes.substr(place + 8, 8), "\x89PNG\r\n\x1A\n");
    EXPECT_EQ(numberAt(bytes, place + 24), numberAt(bytes, place + 28)); // Width and height.
    found.emplace_back(bytes.substr(place, 4), numberAt(bytes, place + 24));
  }
  const std::vector<std::pair<std::string, std::size_t>> expected = {
      {"ic11", 32},  {"ic12", 64},  {"ic07", 128}, {"ic13", 256},
      {"ic08", 256}, {"ic14", 512}, {"ic09", 512}, {"ic10", 1024}};
  EXPECT_EQ(found, expected);
}

TEST(Icon, WithoutADrawingThereIsNoFile) {
  const TemporaryFolder folder;
  const fs::path file = folder.path() / "icon.icns";
  EXPECT_EQ(run("ventolith-icon", {folder.write("drawing.svg", "no drawing").string(), file.string()}).status,
            1);
  EXPECT_FALSE(fs::exists(file));
}

} // namespace
} // namespace ventolith::e2e
