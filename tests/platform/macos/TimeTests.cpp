#include "fake/Kernel.h"
#include "platform/macos/ElapsedTime.h"
#include "platform/macos/MachTime.h"
#include "platform/macos/SystemClock.h"

#include <boost/asio/io_context.hpp>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <system_error>

namespace ventolith::platform {
namespace {

using namespace std::chrono_literals;
using runtime::Instant;

// 24 million ticks are a second.
constexpr std::uint64_t ticksPerSecond = 24'000'000;

// Units

TEST(MachTime, TicksAreRoundedDownToNanoseconds) {
  EXPECT_EQ(fromMachTicks(0), 0ns);
  EXPECT_EQ(fromMachTicks(1), 41ns);
  EXPECT_EQ(fromMachTicks(2), 83ns);
  EXPECT_EQ(fromMachTicks(3), 125ns);
  EXPECT_EQ(fromMachTicks(ticksPerSecond), 1s);
}

TEST(MachTime, TimesAreRoundedUpToTicks) {
  EXPECT_EQ(toMachTicks(0ns), 0U);
  EXPECT_EQ(toMachTicks(1ns), 1U);
  EXPECT_EQ(toMachTicks(41ns), 1U);
  EXPECT_EQ(toMachTicks(42ns), 2U);
  EXPECT_EQ(toMachTicks(125ns), 3U);
  EXPECT_EQ(toMachTicks(126ns), 4U);
  EXPECT_EQ(toMachTicks(1s), ticksPerSecond);
}

TEST(MachTime, TickOfATimeIsNeverBeforeIt) {
  for (std::int64_t nanoseconds = 0; nanoseconds < 1000; ++nanoseconds) {
    const runtime::Duration time = 1000h + std::chrono::nanoseconds(nanoseconds);
    EXPECT_GE(fromMachTicks(toMachTicks(time)), time);
    EXPECT_LT(fromMachTicks(toMachTicks(time) - 1), time);
  }
}

TEST(MachTime, LongestTimeHasATick) {
  // 2^63 - 1 nanoseconds, times 3/125.
  EXPECT_EQ(toMachTicks(runtime::Duration::max()), 221'360'928'884'514'620U);
}

// Clocks

TEST(MacElapsedTime, IsTheContinuousCounter) {
  fake::Kernel kernel;
  kernel.continuousTicks = 90 * ticksPerSecond;
  kernel.absoluteTicks = 30 * ticksPerSecond;
  EXPECT_EQ(elapsedTime(), Instant(90s));
}

TEST(MacElapsedTime, TimeAsleepIsWhatTheOtherCounterMissed) {
  fake::Kernel kernel;
  kernel.continuousTicks = 90 * ticksPerSecond;
  kernel.absoluteTicks = 30 * ticksPerSecond;
  EXPECT_EQ(timeAsleep(), 60s);
}

TEST(MacElapsedTime, TimeAsleepIsNeverNegative) {
  for (int time = 0; time < 1000; ++time)
    EXPECT_GE(timeAsleep(), 0ns);
}

class MacSystemClockTest : public testing::Test {
protected:
  void sleepUntil(Instant deadline, runtime::StopToken stop) {
    runtime::start(context_.get_executor(), "test", clock_.sleepUntil(deadline, std::move(stop)));
    context_.restart();
    context_.poll();
  }
  void stop() {
    source_.requestStop();
    context_.restart();
    context_.poll();
  }

  fake::Kernel kernel_;
  boost::asio::io_context context_;
  SystemClock clock_{context_.get_executor()};
  runtime::StopSource source_;
};

TEST_F(MacSystemClockTest, TimerIsForOneMomentOfTheTimeThatCountsSleep) {
  kernel_.continuousTicks = 90 * ticksPerSecond;
  sleepUntil(Instant(100s), source_.token());
  ASSERT_EQ(kernel_.changes.size(), 1U);
  EXPECT_EQ(kernel_.changes[0].filter, EVFILT_TIMER);
  EXPECT_EQ(kernel_.changes[0].flags, EV_ADD | EV_ONESHOT);
  EXPECT_EQ(kernel_.changes[0].fflags & ~NOTE_CRITICAL,
            NOTE_ABSOLUTE | NOTE_MACHTIME | NOTE_MACH_CONTINUOUS_TIME);
  EXPECT_EQ(static_cast<std::uint64_t>(kernel_.changes[0].data), 100 * ticksPerSecond);
  stop();
}

TEST_F(MacSystemClockTest, TimerIsNotPutOffToSavePower) {
  sleepUntil(elapsedTime() + 10h, source_.token());
  ASSERT_EQ(kernel_.changes.size(), 1U);
  EXPECT_NE(kernel_.changes[0].fflags & NOTE_CRITICAL, 0U);
  stop();
}

TEST_F(MacSystemClockTest, TimerOfNobodyIsTakenOut) {
  sleepUntil(elapsedTime() + 10h, source_.token());
  stop();
  ASSERT_EQ(kernel_.changes.size(), 2U);
  EXPECT_EQ(kernel_.changes[1].flags, EV_DELETE);
  EXPECT_EQ(kernel_.changes[1].ident, kernel_.changes[0].ident);
  EXPECT_EQ(kernel_.changes[1].filter, kernel_.changes[0].filter);
}

/// Makes waits as Asio does, and tells of which descriptor.
ReadableWaitFactory waitSeenIn(const boost::asio::io_context::executor_type& executor, int& descriptor) {
  return [&descriptor, wait = waitInAsio(executor)](int waited) {
    descriptor = waited;
    return wait(waited);
  };
}

TEST_F(MacSystemClockTest, DescriptorIsNotInherited) {
  int descriptor = -1;
  const SystemClock clock(waitSeenIn(context_.get_executor(), descriptor));
  EXPECT_EQ(::fcntl(descriptor, F_GETFD), FD_CLOEXEC);
}

TEST_F(MacSystemClockTest, TimerThatRanOutCannotBeReadAnyMore) {
  int descriptor = -1;
  SystemClock clock(waitSeenIn(context_.get_executor(), descriptor));
  runtime::start(context_.get_executor(), "test", clock.sleep(100us, {}));
  context_.run();
  pollfd readable{.fd = descriptor, .events = POLLIN, .revents = 0};
  EXPECT_EQ(::poll(&readable, 1, 0), 0);
}

TEST(MacSystemClock, IsNotMadeWithoutAQueue) {
  fake::Kernel kernel;
  kernel.makesQueues = false;
  boost::asio::io_context context;
  EXPECT_THROW(SystemClock clock(context.get_executor()), std::system_error);
}

TEST(MacSystemClockDeath, EndsTheProcessWhereNobodyWouldBeWokenAnyMore) {
  const auto sleep = [] {
    fake::Kernel kernel;
    kernel.takesTimers = false;
    boost::asio::io_context context;
    SystemClock clock(context.get_executor());
    runtime::start(context.get_executor(), "sleeper", clock.sleepUntil(elapsedTime() + 10h, {}));
    context.run();
  };
  EXPECT_DEATH(sleep(), "sleeper ended by an exception: kevent");
}

} // namespace
} // namespace ventolith::platform
