// The Debian package, as cpack makes it of this build. What its scripts do is tried by scripts/try-service.
#include "e2e/Program.h"

#include <gtest/gtest.h>

namespace ventolith::e2e {
namespace {

namespace fs = std::filesystem;

class DebianPackage : public testing::Test {
protected:
  static void SetUpTestSuite() {
    folder_ = std::make_unique<TemporaryFolder>();
    // Quickly, without dpkg-dev, and though a build for development names nobody who answers for it.
    const Ended made = run(VENTOLITH_CPACK,
                           {"--config", VENTOLITH_BUILD "/CPackConfig.cmake", "-B", folder_->path().string(),
                            "-D", "CPACK_PACKAGE_CONTACT=nobody", "-D", "CPACK_DEBIAN_PACKAGE_SHLIBDEPS=OFF",
                            "-D", "CPACK_DEBIAN_COMPRESSION_TYPE=gzip"});
    ASSERT_EQ(made.status, 0) << made.out << made.err;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_->path()))
      if (entry.path().extension() == ".deb") file_ = entry.path();
    const Ended unpacked =
        run("/usr/bin/dpkg-deb", {"--raw-extract", file_.string(), (folder_->path() / "tree").string()});
    ASSERT_EQ(unpacked.status, 0) << unpacked.err;
  }
  static void TearDownTestSuite() { folder_.reset(); }

  [[nodiscard]] static const fs::path& file() { return file_; }
  [[nodiscard]] static fs::path tree(const std::string& path) { return folder_->path() / "tree" / path; }
  [[nodiscard]] static std::string field(const std::string& name) {
    const std::string text = run("/usr/bin/dpkg-deb", {"--field", file_.string(), name}).out;
    return text.substr(0, text.find('\n'));
  }

private:
  static inline std::unique_ptr<TemporaryFolder> folder_;
  static inline fs::path file_;
};

TEST_F(DebianPackage, HoldsTheProgramsWithTheirPapersAsDebianHasThem) {
  for (const std::string path :
       {"usr/bin/ventolith", "usr/bin/ventolithctl", "usr/libexec/ventolith-helper",
        "usr/lib/systemd/system/ventolith-helper.service", "usr/share/man/man1/ventolith.1.gz",
        "usr/share/man/man8/ventolith-helper.8.gz", "usr/share/doc/ventolith/changelog.gz",
        "usr/share/doc/ventolith/copyright"})
    EXPECT_TRUE(fs::is_regular_file(tree(path))) << path;
  for (const std::string path : {"usr/share/man/man1/ventolith.1", "usr/share/doc/ventolith/LICENSE"})
    EXPECT_FALSE(fs::exists(tree(path))) << path;
  const std::string papers = readText(tree("usr/share/doc/ventolith/copyright"));
  EXPECT_NE(papers.find("The Ventolith developers"), std::string::npos);
  EXPECT_NE(papers.find("\n## Boost\n"), std::string::npos);
  EXPECT_NE(readText(tree("usr/lib/systemd/system/ventolith-helper.service"))
                .find("=/usr/libexec/ventolith-helper"),
            std::string::npos)
      << "the unit names the helper where it was packed, not where it will be";
}

TEST_F(DebianPackage, LeavesItToTheUserToEnableTheHelper) {
  EXPECT_FALSE(fs::exists(tree("etc")));
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(tree("usr")))
    EXPECT_FALSE(entry.is_symlink()) << entry.path();
  EXPECT_EQ(readText(tree("DEBIAN/postinst")).find("systemctl enable"), std::string::npos);
}

TEST_F(DebianPackage, NamesItsBuildAndTheScriptsThatTakeTheHelperAway) {
  EXPECT_EQ(field("Package"), "ventolith");
  EXPECT_EQ(field("Version"), VENTOLITH_VERSION);
  EXPECT_EQ(file().filename(), "ventolith_" VENTOLITH_VERSION "_" + field("Architecture") + ".deb");
  for (const std::string script : {"DEBIAN/postinst", "DEBIAN/prerm", "DEBIAN/postrm"})
    EXPECT_NE(fs::status(tree(script)).permissions() & fs::perms::others_exec, fs::perms::none) << script;
}

} // namespace
} // namespace ventolith::e2e
