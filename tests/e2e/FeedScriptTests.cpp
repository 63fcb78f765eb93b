// The script that makes update feeds, by what the application reads in them.
#include "e2e/Program.h"
#include "platform/linux/desktop/Appcast.h"
#include "platform/linux/desktop/FeedSignature.h"

#include <gtest/gtest.h>

#include <regex>

namespace ventolith::e2e {
namespace {

namespace fs = std::filesystem;

using Arguments = std::vector<std::string>;

class FeedScript : public testing::Test {
protected:
  FeedScript() : publicKey_(makeKey("key")) {}

  [[nodiscard]] fs::path at(const std::string& name) const { return folder_.path() / name; }
  [[nodiscard]] fs::path feed() const { return at("appcast.xml"); }
  [[nodiscard]] const std::string& publicKey() const { return publicKey_; }
  [[nodiscard]] std::string makeKey(const std::string& name) const {
    const Ended ended = run(VENTOLITH_SOURCES "/scripts/make-update-key", {at(name).string()});
    EXPECT_EQ(ended.status, 0) << ended.err;
    return ended.out.substr(0, ended.out.find('\n'));
  }
  [[nodiscard]] Ended release(const std::string& version, const std::string& build,
                              const Arguments& more = {}, const std::string& key = "key") const {
    Arguments arguments = {"--key",        at(key).string(),
                           "--version",    version,
                           "--build",      build,
                           "--page",       "https://ventolith.example/" + version,
                           feed().string()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(VENTOLITH_SOURCES "/scripts/make-feed", arguments);
  }
  [[nodiscard]] bool isSigned() const {
    return platform::isSignedFeed(readText(feed()), readText(at("appcast.xml.sig")), publicKey_);
  }
  [[nodiscard]] std::optional<platform::AvailableUpdate> offered(const std::set<std::string>& channels,
                                                                 const std::string& runningBuild) const {
    return platform::newestUpdate(platform::parseAppcast(readText(feed())).value(), channels, runningBuild);
  }
  /// Both files of the feed and the folder's number of entries, to see that nothing has changed.
  [[nodiscard]] std::string state() const {
    return readText(feed()) + readText(at("appcast.xml.sig")) +
           std::to_string(std::distance(fs::directory_iterator(folder_.path()), {}));
  }
  std::string write(const std::string& name, const std::string& text) const {
    return folder_.write(name, text).string();
  }

private:
  TemporaryFolder folder_;
  std::string publicKey_;
};

TEST_F(FeedScript, TheApplicationAcceptsTheFeedAndIsOfferedTheRelease) {
  const Ended ended = release("1.0.4", "7");
  ASSERT_EQ(ended.status, 0) << ended.err;
  EXPECT_TRUE(isSigned());
  const platform::AvailableUpdate update{.displayVersion = "1.0.4",
                                         .page = "https://ventolith.example/1.0.4"};
  EXPECT_EQ(offered({}, "6"), update);
  EXPECT_EQ(offered({}, "7"), std::nullopt);
}

TEST_F(FeedScript, ALaterReleaseIsAddedAndBetaIsForThoseWhoTakeIt) {
  ASSERT_EQ(release("1.0.4", "7").status, 0);
  const Ended ended = release("1.1.0", "8", {"--channel", "beta"});
  ASSERT_EQ(ended.status, 0) << ended.err;
  EXPECT_TRUE(isSigned());
  EXPECT_EQ(offered({}, "6")->displayVersion, "1.0.4");
  EXPECT_EQ(offered({"beta"}, "6")->displayVersion, "1.1.0");
}

TEST_F(FeedScript, ADiskImageStandsInItWithItsLengthAndItsOwnSignature) {
  const std::string content = "the disk image";
  const Ended ended =
      release("1.0.4", "7",
              {"--image", write("a.dmg", content), "--image-url", "https://ventolith.example/a.dmg?a=1&b=2"});
  ASSERT_EQ(ended.status, 0) << ended.err;
  const std::string text = readText(feed());
  std::smatch found;
  ASSERT_TRUE(std::regex_search(
      text, found,
      std::regex("<enclosure url=\"([^\"]+)\" [^>]*length=\"14\" sparkle:edSignature=\"([^\"]+)\"")));
  EXPECT_EQ(found[1], "https://ventolith.example/a.dmg?a=1&amp;b=2");
  EXPECT_TRUE(platform::isSignedFeed(content, found[2].str(), publicKey()));
  EXPECT_FALSE(platform::isSignedFeed(content + ".", found[2].str(), publicKey()));
}

TEST_F(FeedScript, AFeedThatTheKeyHasNotSignedIsNotTouched) {
  ASSERT_EQ(release("1.0.4", "7").status, 0);
  (void)makeKey("other");
  std::string before = state();
  EXPECT_EQ(release("1.0.5", "8", {}, "other").status, 1);
  EXPECT_EQ(state(), before);

  write("appcast.xml", readText(feed()) + " ");
  before = state();
  const Ended ended = release("1.0.5", "8");
  EXPECT_EQ(ended.status, 1);
  EXPECT_NE(ended.err.find("is not this key's signature"), std::string::npos) << ended.err;
  EXPECT_EQ(state(), before);
}

TEST_F(FeedScript, WhatNobodyWouldBeOfferedIsRefused) {
  ASSERT_EQ(release("1.0.4", "7").status, 0);
  const std::string before = state();
  for (const std::string build : {"6", "7"})
    EXPECT_EQ(release("1.0.5", build).status, 1) << build;
  EXPECT_EQ(state(), before);
}

TEST_F(FeedScript, WhatIsWrongIsNamedAndNothingIsWritten) {
  struct Case {
    std::string version;
    std::string build;
    Arguments more;
    std::string key;
    int status;
    std::string complaint;
  };
  write("public", "no key");
  for (const auto& [version, build, more, key, status, complaint] : std::vector<Case>{
           {"1.0", "7", {}, "key", 2, "1.0: is no version of three numbers"},
           {"1.0.4", "07", {}, "key", 2, "07: is no build number"},
           {"1.0.4", "7", {"--page", "http://a.example/"}, "key", 2, "is no https address"},
           {"1.0.4", "7", {"--channel", "daily"}, "key", 2, "invalid choice: 'daily'"},
           {"1.0.4", "7", {"--image", "/nowhere.dmg"}, "key", 2, "--image and --image-url belong together"},
           {"1.0.4",
            "7",
            {"--image", "/nowhere.dmg", "--image-url", "https://a.example/"},
            "key",
            1,
            "/nowhere.dmg: there is no such disk image"},
           {"1.0.4", "7", {}, "none", 1, "the secret key cannot be read"},
           {"1.0.4", "7", {}, "public", 1, "is no secret Ed25519 key"}}) {
    const Ended ended = release(version, build, more, key);
    EXPECT_EQ(ended.status, status) << complaint;
    EXPECT_NE(ended.err.find(complaint), std::string::npos) << ended.err;
    EXPECT_FALSE(fs::exists(feed())) << complaint;
  }
}

} // namespace
} // namespace ventolith::e2e
