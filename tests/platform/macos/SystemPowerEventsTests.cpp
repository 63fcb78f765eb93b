#include "platform/macos/service/SystemPowerEvents.h"

#include "fake-power/PowerRoot.h"
#include "runtime/Event.h"
#include "support/VirtualTime.h"

#include <IOKit/IOMessage.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <thread>

namespace {

using namespace ventolith;
using fake::Log;

struct SystemPowerEventsTest : testing::Test {
  void observe() {
    events = std::make_unique<platform::SystemPowerEvents>(time.executor());
    events->observe(
        {.willSleep = [this] { return willSleep(); }, .didWake = [this] { root.note("did wake"); }});
  }
  ~SystemPowerEventsTest() override {
    isReady.happen();
    settle();
    events.reset();
    settle();
    EXPECT_EQ(root.queues(), 0);
  }

  runtime::Async<void> willSleep() {
    root.note("will sleep");
    co_await isReady.wait();
  }
  void settle() { time.clock.settle(); }

  fake::PowerRoot root;
  support::VirtualTime time;
  runtime::Event isReady{time.executor()};
  std::unique_ptr<platform::SystemPowerEvents> events;
};

TEST_F(SystemPowerEventsTest, TheMachineWaitsForTheHandlerAndIsAnsweredOnce) {
  observe();
  root.tell(kIOMessageSystemWillSleep, 7);
  EXPECT_TRUE(root.log().empty()); // Nothing happens where the system calls.
  settle();
  EXPECT_EQ(root.log(), Log{"will sleep"});
  isReady.happen();
  settle();
  EXPECT_EQ(root.log(), (Log{"will sleep", "allowed 7"}));
}

TEST_F(SystemPowerEventsTest, WhetherTheMachineMaySleepIsAnsweredAtOnce) {
  observe();
  root.tell(kIOMessageCanSystemSleep, 5);
  EXPECT_EQ(root.log(), Log{"allowed 5"});
  settle();
  EXPECT_EQ(root.log(), Log{"allowed 5"});
}

TEST_F(SystemPowerEventsTest, TellsOfTheWakeUpAndAnswersNothing) {
  isReady.happen();
  observe();
  root.tell(kIOMessageSystemWillSleep, 7);
  settle();
  root.tell(kIOMessageSystemWillPowerOn, 8);
  settle();
  EXPECT_EQ(root.log(), (Log{"will sleep", "allowed 7"}));
  root.tell(kIOMessageSystemHasPoweredOn, 9);
  settle();
  EXPECT_EQ(root.log(), (Log{"will sleep", "allowed 7", "did wake"}));
}

TEST_F(SystemPowerEventsTest, ASleepThatIsCalledOffIsNoNews) {
  observe();
  root.tell(kIOMessageCanSystemSleep, 5);
  root.tell(kIOMessageSystemWillNotSleep, 6);
  settle();
  EXPECT_EQ(root.log(), Log{"allowed 5"});
}

TEST_F(SystemPowerEventsTest, GivesBackWhatItTookInOrder) {
  observe();
  settle();
  events.reset();
  EXPECT_EQ(root.log(), (Log{"deregistered", "port destroyed", "connection closed"}));
}

TEST_F(SystemPowerEventsTest, AnswersASleepThatIsUnderWayWhenItGoesBeforeItCloses) {
  observe();
  root.tell(kIOMessageSystemWillSleep, 7);
  settle();
  events.reset();
  isReady.happen();
  settle();
  EXPECT_EQ(root.log(),
            (Log{"will sleep", "deregistered", "port destroyed", "allowed 7", "connection closed"}));
}

TEST_F(SystemPowerEventsTest, AnswersASleepThatItCannotHandleAnyMore) {
  observe();
  settle();
  root.tell(kIOMessageSystemWillSleep, 7);
  events.reset();
  settle();
  EXPECT_EQ(root.log(), (Log{"deregistered", "port destroyed", "allowed 7", "connection closed"}));
}

TEST_F(SystemPowerEventsTest, MessagesOfOtherChangesAreNeitherToldNorAnswered) {
  observe();
  root.tell(kIOMessageSystemWillPowerOff, 5);
  root.tell(kIOMessageSystemWillRestart, 6);
  settle();
  EXPECT_EQ(root.log(), Log{});
}

TEST_F(SystemPowerEventsTest, AThreadThatHangsHoldsUpSleepForTenSecondsAtMost) {
  observe();
  root.tell(kIOMessageSystemWillSleep, 7); // Nobody runs what it posts.
  root.pass(9);
  EXPECT_EQ(root.log(), Log{});
  root.pass(10);
  EXPECT_EQ(root.log(), Log{"allowed 7"});
}

TEST_F(SystemPowerEventsTest, AHandlerThatTakesTooLongIsNotWaitedForAndTheAnswerIsGivenOnce) {
  observe();
  root.tell(kIOMessageSystemWillSleep, 7);
  settle();
  root.pass(10);
  root.tell(kIOMessageSystemHasPoweredOn, 8);
  settle();
  EXPECT_EQ(root.log(), (Log{"will sleep", "allowed 7"}));
  isReady.happen();
  settle();
  EXPECT_EQ(root.log(), (Log{"will sleep", "allowed 7", "did wake"}));
}

TEST_F(SystemPowerEventsTest, ASleepThatWasAnsweredIsNotAnsweredLater) {
  isReady.happen();
  observe();
  root.tell(kIOMessageSystemWillSleep, 7);
  settle();
  root.pass(10);
  EXPECT_EQ(root.log(), (Log{"will sleep", "allowed 7"}));
}

TEST_F(SystemPowerEventsTest, AThreadThatHangsWhenItGoesStillHasTenSecondsAtMost) {
  observe();
  root.tell(kIOMessageSystemWillSleep, 7);
  settle();
  events.reset();
  root.pass(10);
  EXPECT_EQ(root.log(), (Log{"will sleep", "deregistered", "port destroyed", "allowed 7"}));
}

// The system's thread is in the callback when it goes: for a sanitizer to look at, too.
TEST_F(SystemPowerEventsTest, EveryNoticeIsAnsweredOnceAlsoWhileItGoes) {
  isReady.happen();
  observe();
  std::atomic<std::size_t> told = 0;
  std::thread system([&] {
    for (int time = 0; time < 2000; ++time)
      told += root.tell(kIOMessageSystemWillSleep, 7) ? 1 : 0;
  });
  while (told == 0)
    settle();
  events.reset();
  system.join();
  settle();
  const Log log = root.log();
  EXPECT_EQ(static_cast<std::size_t>(std::count(log.begin(), log.end(), "allowed 7")), told.load());
}

TEST_F(SystemPowerEventsTest, WithoutARegistrationNothingIsCalledAndNothingGivenBack) {
  root.takesRegistrations = false;
  observe();
  root.tell(kIOMessageSystemWillSleep, 7);
  settle();
  events.reset();
  settle();
  EXPECT_TRUE(root.log().empty());
}

} // namespace
