// What becomes of the fans when one of the processes around them ends, or hangs.
#include "e2e/HelperHouse.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <thread>

namespace ventolith::e2e {
namespace {

using Moment = std::chrono::steady_clock;

constexpr std::int64_t applied = 0;
constexpr std::chrono::seconds heartbeatLimit{15};
constexpr std::chrono::seconds heartbeatPeriod{5};
constexpr std::chrono::milliseconds oneRound{1500};

TEST(HelperLife, BeginsByGivingBackWhatAKilledHelperLeftHeld) {
  HelperHouse house;
  {
    const auto killed = house.startHelper();
    ASSERT_EQ(Peer(house.bus().address()).call<std::int64_t>("FullBlast"), applied);
    killed->signal(SIGKILL);
    killed->wait();
  }
  ASSERT_TRUE(house.isEveryFanHeld());
  const auto helper = house.startHelper();
  EXPECT_TRUE(house.isEveryFanBack());
}

TEST(HelperLife, GiveBackGivesBackWhatAKilledHelperLeftHeldWithoutABus) {
  HelperHouse house;
  const auto killed = house.startHelper();
  ASSERT_EQ(Peer(house.bus().address()).call<std::int64_t>("FullBlast"), applied);
  killed->signal(SIGKILL);
  killed->wait();
  house.bus().kill();

  const Ended ended = run("ventolith-helper", {"--give-back"}, house.environment());
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_TRUE(house.isEveryFanBack());
}

TEST(HelperLife, GiveBackLeavesTheFansOfAHelperThatLivesAlone) {
  HelperHouse house;
  const auto helper = house.startHelper();
  ASSERT_EQ(Peer(house.bus().address()).call<std::int64_t>("FullBlast"), applied);

  const Ended ended = run("ventolith-helper", {"--give-back"}, house.environment());
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_FALSE(ended.err.empty());
  EXPECT_TRUE(house.isEveryFanHeld());
}

TEST(HelperLife, GiveBackWaitsTwoSecondsForABusThatHangs) {
  HelperHouse house;
  const auto killed = house.startHelper();
  ASSERT_EQ(Peer(house.bus().address()).call<std::int64_t>("FullBlast"), applied);
  killed->signal(SIGKILL);
  killed->wait();
  house.bus().signal(SIGSTOP);

  const auto start = Moment::now();
  const Ended ended = run("ventolith-helper", {"--give-back"}, house.environment());
  house.bus().signal(SIGCONT);
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_GE(Moment::now() - start, std::chrono::seconds(2));
  EXPECT_TRUE(house.isEveryFanBack());
}

TEST(HelperLife, GivesTheFansBackWhenItIsTerminated) {
  HelperHouse house;
  const auto helper = house.startHelper();
  ASSERT_EQ(Peer(house.bus().address()).call<std::int64_t>("FullBlast"), applied);
  helper->signal(SIGTERM);
  EXPECT_EQ(helper->wait().status, 0) << helper->err();
  EXPECT_TRUE(house.isEveryFanBack());
}

TEST(HelperLife, ASecondHelperEndsWithoutTouchingTheFans) {
  HelperHouse house;
  const auto helper = house.startHelper();
  ASSERT_EQ(Peer(house.bus().address()).call<std::int64_t>("FullBlast"), applied);

  const Ended second = run("ventolith-helper", {"--allow-same-user"}, house.environment());
  EXPECT_EQ(second.status, 3);
  EXPECT_FALSE(second.err.empty());
  EXPECT_TRUE(house.isEveryFanHeld());
  EXPECT_EQ(Peer(house.bus().address()).state().at("isHolding"), true);
}

TEST(HelperLife, AKilledClientsFansGoBackThoughAStrangerSendsHeartbeats) {
  HelperHouse house;
  const auto helper = house.startHelper();
  const auto holder = house.startHolding();
  holder->signal(SIGKILL);
  holder->wait();
  const auto silence = Moment::now();

  const Peer stranger(house.bus().address()); // Has asked for no change.
  waitUntil("fans that are back", [&] {
    stranger.heartbeat();
    return house.isEveryFanBack();
  });
  // The last heartbeat was sent up to a period before the client died.
  EXPECT_GE(Moment::now() - silence, heartbeatLimit - heartbeatPeriod - oneRound);
  EXPECT_LE(Moment::now() - silence, heartbeatLimit + 2 * oneRound);
  EXPECT_NE(stranger.state().at("lastError").get<std::string>().find("heartbeat"), std::string::npos)
      << stranger.state();
}

TEST(HelperLife, AKilledHelperIsReplacedAndTheHolderHoldsAgain) {
  HelperHouse house;
  auto helper = house.startHelper();
  const auto holder = house.startHolding();
  helper->signal(SIGKILL);
  helper->wait();
  const auto before = house.mac().journal().size();

  helper = house.startHelper();
  waitUntil("fans that are taken again", [&] {
    const auto journal = house.mac().journal();
    bool isBack = false;
    for (std::size_t place = before; place < journal.size(); ++place) {
      const JournalLine& line = journal[place];
      if (line.operation != "write" || line.key != "F0Md" || line.result != 0) continue;
      if (line.bytes == "00") isBack = true;
      if (line.bytes == "01") return isBack;
    }
    return false;
  });
  house.waitUntilHeldBy(*holder);

  holder->signal(SIGINT);
  EXPECT_EQ(holder->wait().status, 0) << holder->err();
  EXPECT_TRUE(house.isEveryFanBack());
}

TEST(HelperLife, AKilledBusEndsTheHelperWithTheFansBackAndANewBusServesANewOne) {
  HelperHouse house;
  auto helper = house.startHelper();
  const auto holder = house.startHolding();
  house.bus().kill();
  EXPECT_NE(helper->wait().status, 0);
  EXPECT_TRUE(house.isEveryFanBack());

  house.bus().restart();
  helper = house.startHelper();
  house.waitUntilHeldBy(*holder); // The holder has found the new one.
}

TEST(HelperLife, AHelperThatNeverAnswersIsToldFromNone) {
  HelperHouse house;
  const auto helper = house.startHelper();
  helper->signal(SIGSTOP);
  const Ended hanging = house.ctl({"status"});
  helper->signal(SIGKILL);
  helper->wait();
  const Ended gone = house.ctl({"status"});

  EXPECT_NE(hanging.status, 0);
  EXPECT_NE((hanging.out + hanging.err).find("does not answer"), std::string::npos)
      << hanging.out << hanging.err;
  EXPECT_EQ(gone.status, 16) << gone.out << gone.err;
}

TEST(HelperLife, SleepWaitsForTheFansAndTheyAreHeldAgainAfterIt) {
  HelperHouse house;
  MockPeer logind(house.bus(),
                  {"org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager"},
                  "logind");
  const auto helper = house.startHelper();
  const auto holder = house.startHolding();

  logind.emit("PrepareForSleep", "b", true);
  house.waitUntilBack();
  std::this_thread::sleep_for(2 * oneRound);
  EXPECT_TRUE(house.isEveryFanBack()); // Asleep, whatever the holder sends.

  logind.emit("PrepareForSleep", "b", false);
  house.waitUntilHeldBy(*holder);
}

} // namespace
} // namespace ventolith::e2e
