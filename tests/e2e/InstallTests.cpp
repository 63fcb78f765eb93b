// What `cmake --install` leaves in a system.
#include "e2e/Program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <set>

namespace ventolith::e2e {
namespace {

namespace fs = std::filesystem;

/// Installed once, for all tests.
class Installed : public testing::Test {
protected:
  static void SetUpTestSuite() {
    folder_ = std::make_unique<TemporaryFolder>();
    const Ended ended = run(VENTOLITH_CMAKE, {"--install", VENTOLITH_BUILD, "--prefix", "/usr"},
                            {{"DESTDIR", folder_->path().string()}});
    ASSERT_EQ(ended.status, 0) << ended.err;
  }
  static void TearDownTestSuite() { folder_.reset(); }

  [[nodiscard]] static fs::path file(const std::string& path) { return folder_->path() / path; }
  [[nodiscard]] static std::string text(const std::string& path) { return readText(file(path)); }

private:
  static inline std::unique_ptr<TemporaryFolder> folder_;
};

TEST_F(Installed, IsAllThere) {
  for (const char* const path :
       {"usr/bin/ventolith", "usr/bin/ventolithctl", "usr/libexec/ventolith-helper",
        "usr/lib/systemd/system/ventolith-helper.service",
        "usr/share/dbus-1/system.d/com.ventolith.helper.conf",
        "usr/share/dbus-1/system-services/com.ventolith.helper.service",
        "usr/share/polkit-1/actions/com.ventolith.helper.policy", "usr/share/man/man1/ventolith.1",
        "usr/share/man/man1/ventolithctl.1", "usr/share/man/man8/ventolith-helper.8",
        "usr/share/bash-completion/completions/ventolithctl",
        "usr/share/zsh/vendor-completions/_ventolithctl",
        "usr/share/fish/vendor_completions.d/ventolithctl.fish", "usr/share/doc/ventolith/docs/security.md",
        "usr/share/ventolith/Info.plist", "usr/share/ventolith/THIRD_PARTY_NOTICES.md",
        "usr/share/applications/com.ventolith.app.desktop",
        "usr/share/icons/hicolor/scalable/apps/com.ventolith.app.svg"})
    EXPECT_TRUE(fs::is_regular_file(file(path))) << path;
}

TEST_F(Installed, NamesOnlyProgramsThatAreThere) {
  const std::regex program("(?:Exec|ExecStart|ExecStopPost)=([^ \n]+)");
  for (const std::string path : {"usr/lib/systemd/system/ventolith-helper.service",
                                 "usr/share/dbus-1/system-services/com.ventolith.helper.service"}) {
    const std::string unit = text(path);
    std::set<std::string> named;
    for (std::sregex_iterator match(unit.begin(), unit.end(), program); match != std::sregex_iterator();
         ++match)
      named.insert((*match)[1].str());
    EXPECT_EQ(named, std::set<std::string>{"/usr/libexec/ventolith-helper"}) << path;
  }
}

TEST_F(Installed, TheDesktopFindsTheApplicationAndItsIcon) {
  const std::string entry = text("usr/share/applications/com.ventolith.app.desktop");
  std::smatch named;
  ASSERT_TRUE(std::regex_search(entry, named, std::regex("\nExec=([^ \n]+)\n")));
  EXPECT_TRUE(fs::is_regular_file(file("usr/bin/" + named[1].str())));
  ASSERT_TRUE(std::regex_search(entry, named, std::regex("\nIcon=([^\n]+)\n")));
  EXPECT_TRUE(fs::is_regular_file(file("usr/share/icons/hicolor/scalable/apps/" + named[1].str() + ".svg")));
  EXPECT_NE(text("usr/share/polkit-1/actions/com.ventolith.helper.policy")
                .find("<icon_name>" + named[1].str() + "<"),
            std::string::npos);
}

TEST_F(Installed, TheNoticesNameWhatIsIncludedAndCarryItsTerms) {
  const std::string notices = text("usr/share/ventolith/THIRD_PARTY_NOTICES.md");
  for (const std::string component :
       {"Boost", "CLI11", "{fmt}", "JSON for Modern C++", "libsodium", "Qt", "sdbus-c++"})
    EXPECT_NE(notices.find("\n## " + component + "\n"), std::string::npos) << component;
  EXPECT_NE(notices.find("Boost Software License - Version 1.0"), std::string::npos);
  EXPECT_NE(notices.find("Niels Lohmann"), std::string::npos);
  EXPECT_NE(notices.find("Permission is hereby granted, free of charge"), std::string::npos);
}

TEST_F(Installed, TheBusStartsTheServiceUnderTheNameThatEnablingItMakes) {
  const std::string activation = text("usr/share/dbus-1/system-services/com.ventolith.helper.service");
  const std::string unit = text("usr/lib/systemd/system/ventolith-helper.service");
  EXPECT_NE(activation.find("\nSystemdService=dbus-com.ventolith.helper.service\n"), std::string::npos);
  EXPECT_NE(unit.find("\nAlias=dbus-com.ventolith.helper.service\n"), std::string::npos);
}

TEST_F(Installed, TheBusPolicyLetsThroughExactlyTheTenMessagesOfTheProtocol) {
  const std::string policy = text("usr/share/dbus-1/system.d/com.ventolith.helper.conf");
  const std::regex member("send_interface=\"com.ventolith.FanHelperProtocol\"[^>]*send_member=\"([^\"]+)\"");
  std::set<std::string> members;
  for (std::sregex_iterator match(policy.begin(), policy.end(), member); match != std::sregex_iterator();
       ++match)
    members.insert((*match)[1].str());
  EXPECT_EQ(members, (std::set<std::string>{"HelperVersion", "ShutdownForUpgrade", "SetManualRPM",
                                            "SetPercent", "FullBlast", "Automatic", "ApplyConfig",
                                            "RestoreAuto", "Heartbeat", "ReadState"}));
}

} // namespace
} // namespace ventolith::e2e
