#include "platform/macos/desktop/IOPowerSource.h"

#include "MacTest.h"
#include "fake/MainThread.h"

#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace ventolith::platform {
namespace {

using app::PowerSource;

class IOPowerSourceTest : public MacTest {
protected:
  ~IOPowerSourceTest() override {
    provider_.reset();
    main_.runQueue(); // What the system was given goes with it.
    EXPECT_EQ(main_.sourcesInLoop(), 0U);
  }

  void start() {
    provider_->start([this] { ++told_; });
  }
  /// How much there was to do.
  std::size_t runEngine() {
    time_.context.restart();
    return time_.context.poll();
  }

  fake::MainThread main_;
  std::unique_ptr<IOPowerSource> provider_ = std::make_unique<IOPowerSource>(time_.executor());
  int told_ = 0;
};

// What it says

TEST_F(IOPowerSourceTest, KnowsMainsAndBatteryAndNothingElse) {
  const std::vector<std::pair<std::optional<std::string>, PowerSource>> cases = {
      {"AC Power", PowerSource::ac},       {"Battery Power", PowerSource::battery},
      {"UPS Power", PowerSource::unknown}, {"ac power", PowerSource::unknown},
      {"", PowerSource::unknown},          {std::nullopt, PowerSource::unknown},
  };
  for (const auto& [text, source] : cases) {
    main_.providing = text;
    EXPECT_EQ(provider_->current(), source) << text.value_or("no answer");
  }
}

TEST_F(IOPowerSourceTest, WithoutASnapshotTheSourceIsUnknown) {
  main_.givesSnapshot = false;
  EXPECT_EQ(provider_->current(), PowerSource::unknown);
}

// Notifications

TEST_F(IOPowerSourceTest, IsInTheMainRunLoopFromTheStartOn) {
  EXPECT_EQ(main_.sourcesInLoop(), 0U);
  start();
  EXPECT_EQ(main_.sourcesInLoop(), 1U);
}

TEST_F(IOPowerSourceTest, NotificationIsToldOnTheEnginesExecutor) {
  start();
  EXPECT_EQ(told_, 0);
  main_.notify();
  EXPECT_EQ(told_, 0);
  EXPECT_EQ(runEngine(), 1U);
  EXPECT_EQ(told_, 1);
}

TEST_F(IOPowerSourceTest, EveryNotificationIsTold) {
  start();
  for (int time = 0; time < 3; ++time)
    main_.notify();
  runEngine();
  EXPECT_EQ(told_, 3);
}

TEST_F(IOPowerSourceTest, WithoutASourceOfNotificationsItTellsNothing) {
  main_.givesSource = false;
  start();
  EXPECT_EQ(main_.sourcesInLoop(), 0U);
  EXPECT_EQ(provider_->current(), PowerSource::ac);
  provider_->stop();
  main_.runQueue();
  EXPECT_EQ(told_, 0);
}

TEST_F(IOPowerSourceTest, StopTakesItOutOfTheRunLoop) {
  start();
  provider_->stop();
  EXPECT_EQ(main_.sourcesInLoop(), 0U);
  main_.notify();
  EXPECT_EQ(runEngine(), 0U);
}

TEST_F(IOPowerSourceTest, SecondStopDoesNothing) {
  start();
  provider_->stop();
  provider_->stop();
  main_.runQueue();
  EXPECT_EQ(main_.sourcesInLoop(), 0U);
}

TEST_F(IOPowerSourceTest, DestructionIsAStop) {
  start();
  provider_.reset();
  EXPECT_EQ(main_.sourcesInLoop(), 0U);
}

TEST_F(IOPowerSourceTest, StopWithoutAStartDoesNothing) {
  provider_->stop();
  EXPECT_EQ(main_.sourcesInLoop(), 0U);
}

TEST_F(IOPowerSourceTest, NotificationUnderWayAtTheStopIsNotToldAndPostsNothing) {
  start();
  provider_.reset();
  main_.notifyAllThatEverWere();
  EXPECT_EQ(runEngine(), 0U);
  EXPECT_EQ(told_, 0);
}

// For a sanitizer to look at, too: the main thread is another one.
TEST_F(IOPowerSourceTest, NothingIsToldAfterAStopWhileTheMainThreadNotifies) {
  start();
  std::thread mainThread([this] {
    for (int time = 0; time < 1000; ++time)
      main_.notifyAllThatEverWere();
  });
  while (told_ == 0)
    runEngine();
  provider_.reset();
  const int toldBefore = told_;
  mainThread.join();
  runEngine();
  EXPECT_EQ(told_, toldBefore);
}

TEST_F(IOPowerSourceTest, NotificationThatWaitsAtTheStopIsNotTold) {
  start();
  main_.notify();
  provider_->stop();
  EXPECT_EQ(runEngine(), 1U);
  EXPECT_EQ(told_, 0);
}

TEST_F(IOPowerSourceTest, WhoIsToldMayLetGoOfIt) {
  provider_->start([this] {
    provider_.reset();
    ++told_;
  });
  main_.notify();
  main_.notify();
  runEngine();
  EXPECT_EQ(told_, 1);
}

// Below a monitor

using Sources = std::vector<PowerSource>;

TEST_F(IOPowerSourceTest, MonitorTellsTheSourceAtItsStartAndAtEachNotification) {
  Sources sources;
  app::PowerSourceMonitor monitor(std::move(provider_),
                                  [&sources](PowerSource source) { sources.push_back(source); });
  monitor.start();
  EXPECT_EQ(sources, Sources{PowerSource::ac});
  main_.providing = "Battery Power";
  main_.notify();
  main_.notify();
  runEngine();
  EXPECT_EQ(sources, (Sources{PowerSource::ac, PowerSource::battery, PowerSource::battery}));
}

TEST_F(IOPowerSourceTest, MonitorTellsTheSourceOnceWhereNothingNotifies) {
  main_.givesSource = false;
  Sources sources;
  app::PowerSourceMonitor monitor(std::move(provider_),
                                  [&sources](PowerSource source) { sources.push_back(source); });
  monitor.start();
  main_.notify();
  runEngine();
  EXPECT_EQ(sources, Sources{PowerSource::ac});
}

} // namespace
} // namespace ventolith::platform
