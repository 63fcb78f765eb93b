#include "platform/macos/service/SleepNotices.h"

#include "runtime/Event.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using namespace ventolith;
using platform::SleepNotices;
using Log = std::vector<std::string>;

struct SleepNoticesTest : testing::Test {
  SleepNoticesTest() { notices->handleOn(time.executor()); }
  ~SleepNoticesTest() override {
    notices->stop();
    isReady.happen();
    settle();
  }

  runtime::Async<void> willSleep() {
    log.emplace_back("will sleep");
    if (isHeld) co_await isReady.wait();
    log.emplace_back("is ready");
  }
  /// Stands for the machine's wait for the answer to one notice.
  SleepNotices::Delay delay(const std::string& name) {
    return std::shared_ptr<const void>(this, [this, name](const void*) { log.push_back(name + " goes on"); });
  }
  void settle() { time.clock.settle(); }

  support::VirtualTime time;
  bool isHeld = false;
  runtime::Event isReady{time.executor()};
  Log log;
  std::shared_ptr<SleepNotices> notices = std::make_shared<SleepNotices>(helper::SleepEvents::Handlers{
      .willSleep = [this] { return willSleep(); }, .didWake = [this] { log.emplace_back("did wake"); }});
};

TEST_F(SleepNoticesTest, SleepGoesOnWhenTheHandlerHasEnded) {
  isHeld = true;
  notices->sleepBegins(delay("sleep"));
  settle();
  EXPECT_EQ(log, Log{"will sleep"});
  isReady.happen();
  settle();
  EXPECT_EQ(log, (Log{"will sleep", "is ready", "sleep goes on"}));
}

TEST_F(SleepNoticesTest, TellsOfTheWakeUpThatFollowsASleep) {
  notices->sleepBegins(delay("sleep"));
  notices->sleepEnded();
  settle();
  EXPECT_EQ(log, (Log{"will sleep", "is ready", "sleep goes on", "did wake"}));
}

TEST_F(SleepNoticesTest, TellsOfAWakeUpThatDidNotWaitForTheHandlerAfterIt) {
  isHeld = true;
  notices->sleepBegins(delay("sleep"));
  settle();
  notices->sleepEnded();
  settle();
  EXPECT_EQ(log, Log{"will sleep"});
  isReady.happen();
  settle();
  EXPECT_EQ(log, (Log{"will sleep", "is ready", "sleep goes on", "did wake"}));
}

TEST_F(SleepNoticesTest, TellsOfNoWakeUpWithoutASleep) {
  notices->sleepEnded();
  settle();
  EXPECT_TRUE(log.empty());
}

TEST_F(SleepNoticesTest, ASecondSleepWithoutAWakeUpGoesOnAtOnce) {
  notices->sleepBegins(delay("sleep"));
  settle();
  notices->sleepBegins(delay("the same"));
  settle();
  EXPECT_EQ(log, (Log{"will sleep", "is ready", "sleep goes on", "the same goes on"}));
}

TEST_F(SleepNoticesTest, TellsOfEachSleepAndWakeUp) {
  for (int night = 0; night < 2; ++night) {
    notices->sleepBegins(delay("sleep"));
    notices->sleepEnded();
  }
  settle();
  EXPECT_EQ(log.size(), 8U);
  EXPECT_EQ(log[4], "will sleep");
  EXPECT_EQ(log[7], "did wake");
}

TEST_F(SleepNoticesTest, AStopLetsASleepGoOnThatNobodyHasHeardOf) {
  isHeld = true;
  notices->sleepBegins(delay("first"));
  settle();
  notices->sleepEnded();
  notices->sleepBegins(delay("second"));
  notices->stop();
  EXPECT_EQ(log, (Log{"will sleep", "second goes on"}));
  isReady.happen();
  settle();
  EXPECT_EQ(log, (Log{"will sleep", "second goes on", "is ready", "first goes on"}));
}

TEST_F(SleepNoticesTest, NothingIsKeptAfterAStop) {
  const std::weak_ptr<SleepNotices> weak = notices;
  notices->stop();
  settle();
  notices = std::make_shared<SleepNotices>(helper::SleepEvents::Handlers{});
  EXPECT_TRUE(weak.expired());
}

} // namespace
