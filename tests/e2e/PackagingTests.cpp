// What makes a package for macOS, with tools in place of the Mac's that note down what they are asked to do.
#include "e2e/Program.h"
#include "platform/macos/service/CodeSigningRequirement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace ventolith::e2e {
namespace {

namespace fs = std::filesystem;

const std::string scripts = VENTOLITH_SOURCES "/scripts/";
const std::string identity = "Developer ID Application: Somebody (ABCDE12345)";

using Lines = std::vector<std::string>;

/// A bundle whose code is text, and a folder with a Mac's tools that comes first on PATH. Each notes its
/// call; the one whose call matches $BROKEN fails. What codesign signs it lengthens.
class Packaging : public testing::Test {
protected:
  Packaging() {
    fs::create_directories(tools());
    const std::string note = R"(#!/bin/bash
call="${0##*/} $*"
sed "s,[^ ]*/Ventolith.app,APP,g; s,[^ ]*/image.dmg,IMAGE,g; s,[^ ]*/Ventolith.dmg,IMAGE,g; s,[^ ]*/packaging/,,g" <<<"$call" >>"${0%/*}/../calls"
[ -z "$BROKEN" ] || [[ $call != $BROKEN ]] || exit 1
target=${!#}
)";
    tool("codesign",
         note + R"([ ! -f "$target" ] || [[ $call == *--verify* ]] || echo signed >>"$target"; exit 0)");
    tool("security", note + "echo '  1) 0123 \"" + identity + "\"'");
    tool("ditto", note + R"(exec cp -R "${@: -2:1}" "$target")");
    tool("hdiutil", note + R"(rm "${0%/*}/../busy" 2>/dev/null && exit 1; echo image >"$target")");
    tool("xcrun", note + R"([[ $call != *submit* ]] || printf '  id: 77\n  status: %s\n' "$ANSWER")");
    tool("plutil", "#!/bin/bash\necho 13.0");
    tool("file", "#!/bin/bash\ngrep -q ^code \"$2\" && echo 'Mach-O 64-bit' || echo data");
    // Of code, its lines "needs LIBRARY" and "minos VERSION".
    tool("otool", R"(#!/bin/bash
[ "$1" = -l ] && exec sed -n 's/^minos /    minos /p' "$2"
echo "$2:"
sed -n 's/^needs \(.*\)/\t\1 (compatibility version 1.0.0, current version 1.0.0)/p' "$2")");
    for (const char* const code :
         {"MacOS/ventolith", "MacOS/ventolithctl", "MacOS/ventolith-helper", "Info.plist",
          "PlugIns/styles/style.dylib", "Frameworks/Engine.framework/Versions/B/Engine",
          "Frameworks/Engine.framework/Versions/B/Autoupdate",
          "Frameworks/Engine.framework/Versions/B/XPCServices/Loader.xpc/Contents/MacOS/Loader"})
      write(bundle() / "Contents" / code, "code\n", fs::perms::owner_all);
    fs::remove(folder_.path() / "calls");
  }

  [[nodiscard]] fs::path tools() const { return folder_.path() / "tools"; }
  [[nodiscard]] fs::path bundle() const { return folder_.path() / "Ventolith.app"; }
  [[nodiscard]] fs::path image() const { return folder_.path() / "Ventolith.dmg"; }
  /// While this file is there, hdiutil fails, once.
  [[nodiscard]] fs::path busy() const { return folder_.path() / "busy"; }
  [[nodiscard]] Lines calls() const { return readLines(folder_.path() / "calls"); }
  [[nodiscard]] Ended script(const std::string& name, const Lines& arguments, Environment environment) const {
    environment.emplace("PATH", tools().string() + ":/usr/bin:/bin");
    return run(scripts + name, arguments, environment);
  }
  [[nodiscard]] Ended sign(Environment environment = {}) const {
    environment.emplace("VENTOLITH_SIGNING_IDENTITY", identity);
    return script("sign-bundle", {bundle().string()}, environment);
  }
  [[nodiscard]] Ended notarise(const std::string& answer) const {
    return script("notarise", {image().string()},
                  {{"VENTOLITH_NOTARY_PROFILE", "vendor"}, {"ANSWER", answer}});
  }
  [[nodiscard]] std::string helper() const { return readText(bundle() / "Contents/MacOS/ventolith-helper"); }
  /// The entries of the folder, hidden ones included.
  [[nodiscard]] std::size_t entries() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_.path()), {}));
  }
  static void write(const fs::path& file, const std::string& text, fs::perms permissions) {
    fs::create_directories(file.parent_path());
    TemporaryFolder draft;
    fs::copy_file(draft.write("file", text), file, fs::copy_options::overwrite_existing);
    fs::permissions(file, permissions);
  }

private:
  void tool(const std::string& name, const std::string& text) const {
    write(tools() / name, text, fs::perms::owner_all);
  }

  TemporaryFolder folder_;
};

TEST_F(Packaging, CodeIsSignedFromTheInsideOutUnderTheNamesThatTheHelperAdmits) {
  const Ended ended = sign();
  ASSERT_EQ(ended.status, 0) << ended.err;
  const std::string codesign = "codesign --force --options runtime --timestamp --sign " + identity + " ";
  const std::string engine = "APP/Contents/Frameworks/Engine.framework";
  Lines expected = {codesign + "APP/Contents/PlugIns/styles/style.dylib",
                    codesign + "--preserve-metadata=entitlements " + engine +
                        "/Versions/B/XPCServices/Loader.xpc",
                    codesign + engine + "/Versions/B/Autoupdate",
                    codesign + engine,
                    codesign + "--identifier com.ventolith.helper APP/Contents/MacOS/ventolith-helper",
                    codesign + "--identifier " + std::string(platform::commandLineToolIdentifier) +
                        " APP/Contents/MacOS/ventolithctl",
                    codesign + "--entitlements macos/ventolith.entitlements APP",
                    "codesign --verify --deep --strict APP"};
  Lines signing = calls();
  std::erase_if(signing, [](const std::string& call) { return !call.starts_with("codesign"); });
  EXPECT_EQ(signing, expected);
  EXPECT_EQ(helper(), "code\nsigned\n");
}

TEST_F(Packaging, ABundleThatCannotBeSignedWholeStaysAsItWas) {
  const std::size_t before = entries() + 1; // The notes of the calls.
  for (const std::string broken : {"ditto*", "*/Autoupdate", "*--entitlements*", "codesign --verify*"}) {
    EXPECT_NE(sign({{"BROKEN", broken}}).status, 0) << broken;
    EXPECT_EQ(helper(), "code\n") << broken;
    EXPECT_EQ(entries(), before) << broken;
  }
}

TEST_F(Packaging, AMissingCredentialIsNamedBeforeAnythingIsDone) {
  struct Case {
    std::string name;
    Lines arguments;
    Environment environment;
    std::string complaint;
  };
  write(image(), "image\n", fs::perms::owner_read);
  for (const auto& [name, arguments, environment, complaint] : std::vector<Case>{
           {"sign-bundle", {bundle().string()}, {}, "VENTOLITH_SIGNING_IDENTITY names no identity"},
           {"sign-bundle",
            {bundle().string()},
            {{"VENTOLITH_SIGNING_IDENTITY", "Nobody"}},
            "the keychain holds no valid identity \"Nobody\""},
           {"sign-bundle",
            {bundle().string()},
            {{"VENTOLITH_SIGNING_IDENTITY", identity}, {"PATH", "/usr/bin:/bin"}},
            "there is no codesign here"},
           {"notarise", {image().string()}, {}, "VENTOLITH_NOTARY_PROFILE names no credentials"},
           {"notarise",
            {"--check"},
            {{"VENTOLITH_NOTARY_PROFILE", "vendor"}, {"BROKEN", "xcrun notarytool history*"}},
            "the credentials \"vendor\" are not accepted"},
           {"make-disk-image",
            {bundle().string(), image().string()},
            {{"VENTOLITH_SIGNING_IDENTITY", "Nobody"}},
            "the keychain holds no valid identity \"Nobody\""},
           {"make-disk-image",
            {bundle().string(), image().string()},
            {{"BROKEN", "codesign --verify*"}},
            "is not signed"}}) {
    const Ended ended = script(name, arguments, environment);
    EXPECT_EQ(ended.status, 1) << name;
    EXPECT_NE(ended.err.find(complaint), std::string::npos) << ended.err;
    EXPECT_EQ(helper(), "code\n");
    EXPECT_EQ(readText(image()), "image\n");
  }
}

TEST_F(Packaging, NobodysIdentityAsksNeitherTheKeychainNorForATimeStamp) {
  const Ended ended = sign({{"VENTOLITH_SIGNING_IDENTITY", "-"}});
  ASSERT_EQ(ended.status, 0) << ended.err;
  for (const std::string& call : calls()) {
    EXPECT_EQ(call.find("security"), std::string::npos) << call;
    EXPECT_EQ(call.find("--timestamp"), std::string::npos) << call;
  }
}

TEST_F(Packaging, TheDiskImageIsSignedAndReplacesAnEarlierOne) {
  write(image(), "earlier\n", fs::perms::owner_all);
  const Ended ended = script("make-disk-image", {bundle().string(), image().string()},
                             {{"VENTOLITH_SIGNING_IDENTITY", identity}});
  ASSERT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(readText(image()), "image\nsigned\n");
}

TEST_F(Packaging, ADiskImageThatCannotBeFinishedLeavesTheEarlierOne) {
  write(image(), "earlier\n", fs::perms::owner_all);
  const std::size_t before = entries() + 1;
  for (const std::string broken : {"hdiutil*", "codesign --force*"}) {
    const Ended ended = script("make-disk-image", {bundle().string(), image().string()},
                               {{"VENTOLITH_SIGNING_IDENTITY", identity}, {"BROKEN", broken}});
    EXPECT_NE(ended.status, 0) << broken;
    EXPECT_EQ(readText(image()), "earlier\n") << broken;
    EXPECT_EQ(entries(), before) << broken;
  }
}

TEST_F(Packaging, AVolumeThatSomebodyLooksAtIsTriedAgain) {
  write(busy(), "", fs::perms::owner_all);
  const Ended ended = script("make-disk-image", {bundle().string(), image().string()}, {});
  ASSERT_EQ(ended.status, 0) << ended.err;
  EXPECT_FALSE(fs::exists(busy()));
  EXPECT_EQ(readText(image()), "image\n");
}

TEST_F(Packaging, WhatAppleAcceptsGetsItsTicket) {
  write(image(), "image\n", fs::perms::owner_all);
  ASSERT_EQ(notarise("Accepted").status, 0);
  EXPECT_EQ(calls().back(), "xcrun stapler staple IMAGE");
}

TEST_F(Packaging, WhatAppleRefusesIsAFailureWhoseLogIsShown) {
  write(image(), "image\n", fs::perms::owner_all);
  EXPECT_EQ(notarise("Invalid").status, 1);
  EXPECT_EQ(calls().back(), "xcrun notarytool log 77 --keychain-profile vendor");
}

TEST_F(Packaging, ALibraryThatNeitherTheSystemNorTheBundleHasIsFound) {
  struct Case {
    std::string library;
    bool isThere;
  };
  const fs::path program = bundle() / "Contents/MacOS/ventolith-helper";
  for (const auto& [library, isThere] :
       std::vector<Case>{{"/usr/lib/libSystem.B.dylib", true},
                         {"/System/Library/Frameworks/IOKit.framework/Versions/A/IOKit", true},
                         {"@rpath/Engine.framework/Versions/B/Engine", true},
                         {"@executable_path/../PlugIns/styles/style.dylib", true},
                         {"@loader_path/ventolithctl", true},
                         {"@rpath/libabsent.dylib", false},
                         {"@executable_path/../Frameworks/libabsent.dylib", false},
                         {"/opt/homebrew/opt/libsodium/lib/libsodium.26.dylib", false}}) {
    write(program, "code\nneeds " + library + "\n", fs::perms::owner_all);
    const Ended ended = script("../packaging/macos/check-bundle", {bundle().string()}, {});
    EXPECT_EQ(ended.status, isThere ? 0 : 1) << library;
    EXPECT_EQ(ended.err.find("ventolith-helper: " + library) != std::string::npos, !isThere) << ended.err;
  }
}

TEST_F(Packaging, CodeForANewerSystemIsToldAndLetPass) {
  for (const auto& [needed, isNewer] : std::vector<std::pair<std::string, bool>>{
           {"12.6", false}, {"13.0", false}, {"13.10", true}, {"14.0", true}}) {
    write(bundle() / "Contents/MacOS/ventolithctl", "code\nminos " + needed + "\n", fs::perms::owner_all);
    const Ended ended = script("../packaging/macos/check-bundle", {bundle().string()}, {});
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(ended.err.find("ventolithctl: needs macOS " + needed) != std::string::npos, isNewer) << needed;
  }
}

TEST_F(Packaging, EveryScriptTellsWhatItDoesAndHowItIsCalled) {
  for (const std::string name : {"sign-bundle", "notarise", "make-disk-image",
                                 "../packaging/macos/check-bundle", "../packaging/macos/copy-libraries"}) {
    const Ended help = script(name, {"--help"}, {});
    EXPECT_EQ(help.status, 0) << name;
    EXPECT_TRUE(help.out.starts_with(fs::path(name).filename().string() + " ")) << help.out;
    const Ended called = script(name, {}, {});
    EXPECT_EQ(called.status, 2) << name;
    EXPECT_NE(called.err.find("usage: "), std::string::npos) << name;
  }
}

} // namespace
} // namespace ventolith::e2e
