#include "platform/posix/TimerClock.h"

#include <boost/asio/io_context.hpp>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace ventolith::platform {
namespace {

using namespace std::chrono_literals;
using runtime::Async;
using runtime::Instant;
using Log = std::vector<std::string>;

constexpr int descriptor = 42;

/// "set 3" for three seconds after the beginning of time.
class LoggedTimer final : public KernelTimer {
public:
  explicit LoggedTimer(Log& log) : log_(log) {}

  [[nodiscard]] int descriptor() const override { return platform::descriptor; }
  void set(Instant deadline) override {
    log_.push_back("set " + std::to_string(deadline.time_since_epoch() / 1s));
  }
  void clear() override { log_.emplace_back("clear"); }
  void acknowledge() override { log_.emplace_back("acknowledge"); }

private:
  Log& log_;
};

/// The wait under way, if any, for the test to end.
using Waiting = std::function<void()>;

class ManualWait final : public ReadableWait {
public:
  explicit ManualWait(Waiting& waiting) : waiting_(waiting) {}

  void begin(std::function<void()> onReadable) override {
    EXPECT_FALSE(waiting_) << "a wait was begun while one was under way";
    waiting_ = std::move(onReadable);
  }
  void cancel() override { waiting_ = nullptr; }

private:
  Waiting& waiting_;
};

class ClockInHand final : public TimerClock {
public:
  ClockInHand(Log& log, const ReadableWaitFactory& makeWait)
      : TimerClock(std::make_unique<LoggedTimer>(log), makeWait) {}

  [[nodiscard]] Instant now() const override { return time; }

  Instant time{100s};
};

class TimerClockTest : public testing::Test {
protected:
  void sleep(char name, Instant deadline, runtime::StopToken stop = {}) {
    runtime::start(context_.get_executor(), "test", sleeper(*this, name, deadline, std::move(stop)));
    poll();
  }
  void poll() {
    context_.restart();
    context_.poll();
  }
  /// The timer has run out at `time`.
  void runOut(Instant time) {
    clock_.time = time;
    ASSERT_TRUE(waiting_) << "nobody waits for the timer";
    std::exchange(waiting_, nullptr)();
    poll();
  }

  boost::asio::io_context context_;
  Log log_;
  Waiting waiting_;
  int waitedFor_ = 0;
  ClockInHand clock_{log_, [this](int waited) {
                       waitedFor_ = waited;
                       return std::make_unique<ManualWait>(waiting_);
                     }};
  std::string ended_;

private:
  static Async<void> sleeper(TimerClockTest& self, char name, Instant deadline, runtime::StopToken stop) {
    co_await self.clock_.sleepUntil(deadline, std::move(stop));
    self.ended_ += name;
  }
};

TEST_F(TimerClockTest, WaitsForTheTimersDescriptor) {
  EXPECT_EQ(waitedFor_, descriptor);
}

TEST_F(TimerClockTest, WithoutASleeperTheTimerIsLeftAloneAndNothingIsWaitedFor) {
  EXPECT_EQ(log_, Log{});
  EXPECT_FALSE(waiting_);
}

TEST_F(TimerClockTest, DeadlineThatIsReachedTouchesNoTimer) {
  sleep('a', Instant(100s));
  sleep('b', Instant(99s));
  sleep('c', runtime::distantPast);
  EXPECT_EQ(ended_, "abc");
  EXPECT_EQ(log_, Log{});
}

TEST_F(TimerClockTest, TimerIsSetForTheFirstDeadlineAlone) {
  sleep('b', Instant(120s));
  sleep('c', Instant(130s));
  sleep('a', Instant(110s));
  EXPECT_EQ(log_, (Log{"set 120", "set 110"}));
  EXPECT_TRUE(waiting_);
}

TEST_F(TimerClockTest, TimerThatRanOutIsAcknowledgedAndSetForTheNext) {
  sleep('a', Instant(110s));
  sleep('b', Instant(120s));
  log_.clear();
  runOut(Instant(110s));
  EXPECT_EQ(ended_, "a");
  EXPECT_EQ(log_, (Log{"acknowledge", "set 120"}));
  EXPECT_TRUE(waiting_);
}

TEST_F(TimerClockTest, TimerThatRanOutLateWakesAllWhoseTimeHasComeTheEarliestFirst) {
  sleep('c', Instant(130s));
  sleep('b', Instant(120s));
  sleep('a', Instant(110s));
  runOut(Instant(125s));
  EXPECT_EQ(ended_, "ab");
  EXPECT_EQ(log_.back(), "set 130");
}

TEST_F(TimerClockTest, TimerThatRanOutEarlyWakesNobodyAndIsSetAgain) {
  sleep('a', Instant(110s));
  log_.clear();
  runOut(Instant(109s));
  EXPECT_EQ(ended_, "");
  EXPECT_EQ(log_, (Log{"acknowledge", "set 110"}));
  EXPECT_TRUE(waiting_);
  runOut(Instant(110s));
  EXPECT_EQ(ended_, "a");
}

TEST_F(TimerClockTest, AfterTheLastSleeperNothingIsWaitedFor) {
  sleep('a', Instant(110s));
  runOut(Instant(110s));
  EXPECT_FALSE(waiting_);
  EXPECT_EQ(log_.back(), "acknowledge");
}

TEST_F(TimerClockTest, StopOfTheOnlySleeperSwitchesTheTimerOff) {
  runtime::StopSource source;
  sleep('a', Instant(110s), source.token());
  source.requestStop();
  poll();
  EXPECT_EQ(ended_, "a");
  EXPECT_EQ(log_, (Log{"set 110", "clear"}));
  EXPECT_FALSE(waiting_);
}

TEST_F(TimerClockTest, SameDeadlineIsSetAgainAfterTheTimerWasSwitchedOff) {
  runtime::StopSource source;
  sleep('a', Instant(110s), source.token());
  source.requestStop();
  poll();
  log_.clear();
  sleep('b', Instant(110s));
  EXPECT_EQ(log_, Log{"set 110"});
}

TEST_F(TimerClockTest, StopOfTheFirstSleeperLeavesTheTimerToTheSecond) {
  runtime::StopSource source;
  sleep('a', Instant(110s), source.token());
  sleep('b', Instant(120s));
  log_.clear();
  source.requestStop();
  poll();
  EXPECT_EQ(ended_, "a");
  EXPECT_EQ(log_, Log{"set 120"});
}

} // namespace
} // namespace ventolith::platform
