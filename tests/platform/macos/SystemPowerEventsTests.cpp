#include "platform/macos/service/SystemPowerEvents.h"

#include "fake-power/PowerRoot.h"
#include "runtime/Event.h"
#include "support/VirtualTime.h"

#include <IOKit/IOMessage.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using namespace ventolith;
using Log = std::vector<std::string>;

struct SystemPowerEventsTest : testing::Test {
  void observe() {
    events = std::make_unique<platform::SystemPowerEvents>(time.executor());
    events->observe({.willSleep = [this] { return willSleep(); },
                     .didWake = [this] { root.log.emplace_back("did wake"); }});
  }
  ~SystemPowerEventsTest() override {
    isReady.happen();
    settle();
    events.reset();
    settle();
    EXPECT_EQ(root.queues, 0);
  }

  runtime::Async<void> willSleep() {
    root.log.emplace_back("will sleep");
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
  EXPECT_TRUE(root.log.empty()); // Nothing happens where the system calls.
  settle();
  EXPECT_EQ(root.log, Log{"will sleep"});
  isReady.happen();
  settle();
  EXPECT_EQ(root.log, (Log{"will sleep", "allowed 7"}));
}

TEST_F(SystemPowerEventsTest, WhetherTheMachineMaySleepIsAnsweredAtOnce) {
  observe();
  root.tell(kIOMessageCanSystemSleep, 5);
  EXPECT_EQ(root.log, Log{"allowed 5"});
  settle();
  EXPECT_EQ(root.log, Log{"allowed 5"});
}

TEST_F(SystemPowerEventsTest, TellsOfTheWakeUpAndAnswersNothing) {
  isReady.happen();
  observe();
  root.tell(kIOMessageSystemWillSleep, 7);
  settle();
  root.tell(kIOMessageSystemWillPowerOn, 8);
  settle();
  EXPECT_EQ(root.log, (Log{"will sleep", "allowed 7"}));
  root.tell(kIOMessageSystemHasPoweredOn, 9);
  settle();
  EXPECT_EQ(root.log, (Log{"will sleep", "allowed 7", "did wake"}));
}

TEST_F(SystemPowerEventsTest, ASleepThatIsCalledOffIsNoNews) {
  observe();
  root.tell(kIOMessageCanSystemSleep, 5);
  root.tell(kIOMessageSystemWillNotSleep, 6);
  settle();
  EXPECT_EQ(root.log, Log{"allowed 5"});
}

TEST_F(SystemPowerEventsTest, GivesBackWhatItTookInOrder) {
  observe();
  settle();
  events.reset();
  EXPECT_EQ(root.log, (Log{"deregistered", "port destroyed", "connection closed"}));
}

TEST_F(SystemPowerEventsTest, AnswersASleepThatIsUnderWayWhenItGoesBeforeItCloses) {
  observe();
  root.tell(kIOMessageSystemWillSleep, 7);
  settle();
  events.reset();
  isReady.happen();
  settle();
  EXPECT_EQ(root.log,
            (Log{"will sleep", "deregistered", "port destroyed", "allowed 7", "connection closed"}));
}

TEST_F(SystemPowerEventsTest, AnswersASleepThatItCannotHandleAnyMore) {
  observe();
  settle();
  root.tell(kIOMessageSystemWillSleep, 7);
  events.reset();
  settle();
  EXPECT_EQ(root.log, (Log{"deregistered", "port destroyed", "allowed 7", "connection closed"}));
}

TEST_F(SystemPowerEventsTest, WithoutARegistrationNothingIsCalledAndNothingGivenBack) {
  root.takesRegistrations = false;
  observe();
  root.tell(kIOMessageSystemWillSleep, 7);
  settle();
  events.reset();
  settle();
  EXPECT_TRUE(root.log.empty());
}

} // namespace
