// Programs and helper of different builds.
#include "e2e/HelperHouse.h"

#include <gtest/gtest.h>

#include <csignal>
#include <stdexcept>

namespace ventolith::e2e {
namespace {

namespace fs = std::filesystem;

const std::string otherBuild = "1.0.2+5";

std::string ownBuild() {
  const std::string said = run("ventolith-helper", {"--version"}).out;
  return said.substr(0, said.find('\n'));
}

/// A house whose bus starts what is installed, and which keeps count of that.
class Installation {
public:
  Installation() {
    house.activateBy("echo started >>'" + starts().string() + "'; exec '" + installed().string() +
                     "' --allow-same-user");
  }

  void install(const std::string& program) const {
    const fs::path draft = house.folder() / "draft";
    fs::create_symlink(fs::path(VENTOLITH_PROGRAMS) / program, draft);
    fs::rename(draft, installed());
  }
  [[nodiscard]] std::size_t startCount() const { return readLines(starts()).size(); }
  [[nodiscard]] std::string runningBuild() const { return house.waitForHelper(); }

  HelperHouse house;

private:
  [[nodiscard]] fs::path installed() const { return house.folder() / "installed-helper"; }
  [[nodiscard]] fs::path starts() const { return house.folder() / "starts"; }
};

TEST(HelperUpgrade, AHelperOfAnotherBuildIsSwappedBeforeACommandReachesIt) {
  Installation installation;
  installation.install("other-build-helper");
  ASSERT_EQ(installation.runningBuild(), otherBuild);
  installation.install("ventolith-helper");

  const Ended ended = installation.house.ctl({"set", "0", "3000"});
  EXPECT_EQ(ended.status, 0) << ended.out << ended.err;
  EXPECT_EQ(installation.runningBuild(), ownBuild());
  EXPECT_EQ(installation.startCount(), 2u);
  EXPECT_EQ(installation.house.mac().lastWrite("F0Md"), "01");
}

TEST(HelperUpgrade, TheOldHelperGivesItsFansBackBeforeItAnswers) {
  Installation installation;
  installation.install("other-build-helper");
  const Peer peer(installation.house.bus().address());
  ASSERT_EQ(peer.call<std::int64_t>("FullBlast"), 0);
  installation.install("ventolith-helper");

  peer.callForNothing("ShutdownForUpgrade");
  EXPECT_TRUE(installation.house.isEveryFanBack());
  EXPECT_EQ(installation.startCount(), 1u);
}

TEST(HelperUpgrade, AHelperThatStaysAnotherBuildIsStaleAfterThreeTriesAndIsUsedAllTheSame) {
  Installation installation;
  installation.install("other-build-helper");
  ASSERT_EQ(installation.runningBuild(), otherBuild);

  const Ended ended = installation.house.ctl({"set", "0", "3000"});
  EXPECT_EQ(ended.status, 0) << ended.out << ended.err;
  EXPECT_EQ(installation.startCount(), 4u); // The first one, and three swaps.
  EXPECT_EQ(installation.runningBuild(), otherBuild);
  EXPECT_EQ(installation.house.mac().lastWrite("F0Md"), "01");

  const Ended status = installation.house.ctl({"status"});
  EXPECT_NE(status.out.find(otherBuild), std::string::npos) << status.out << status.err;
}

TEST(HelperUpgrade, AHolderNoticesTheSwapOfItsHelperAndHoldsAgain) {
  Installation installation;
  installation.install("ventolith-helper");
  const auto holder = installation.house.startHolding();
  const auto before = installation.startCount();

  Peer(installation.house.bus().address()).callForNothing("ShutdownForUpgrade");
  waitUntil("the next helper", [&] {
    if (!holder->isRunning()) throw std::runtime_error("the holder ended: " + holder->out() + holder->err());
    return installation.startCount() > before;
  });
  installation.house.waitUntilHeldBy(*holder);
}

TEST(HelperUpgrade, AHolderChecksTheBuildAnewAfterItsHelperWasKilled) {
  Installation installation;
  installation.install("ventolith-helper");
  const auto holder = installation.house.startHolding();
  ASSERT_EQ(installation.startCount(), 1u);
  installation.install("other-build-helper");

  ::kill(installation.house.helperProcess(), SIGKILL);
  waitUntil("a third start, which only a swap asks for", [&] { return installation.startCount() >= 3; });
}

} // namespace
} // namespace ventolith::e2e
