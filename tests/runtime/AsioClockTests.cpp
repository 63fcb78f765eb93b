#include "runtime/AsioClock.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <gtest/gtest.h>

namespace ventolith::runtime {
namespace {

using namespace std::chrono_literals;

// The clock takes a plain function, so what it reads is static.
int readings = 0;
Instant standingStill() {
  return Instant(100s);
}
Instant microsecondPerReading() {
  return Instant(100s) + std::chrono::microseconds(readings++);
}

struct Sleep {
  boost::asio::io_context context;
  bool ended = false;

  Async<void> wait(AsioClock& clock, Instant deadline, StopToken stop) {
    co_await clock.sleepUntil(deadline, std::move(stop));
    ended = true;
  }
  void start(AsioClock& clock, Instant deadline, StopToken stop = {}) {
    runtime::start(context.get_executor(), "test", wait(clock, deadline, std::move(stop)));
  }
};

TEST(AsioClock, ReadsTheElapsedTimeThatItIsGiven) {
  const AsioClock clock(standingStill);
  EXPECT_EQ(clock.now(), Instant(100s));
}

TEST(AsioClock, WallTimeIsTheDateOfTheSystem) {
  const AsioClock clock(standingStill);
  const WallTime before = std::chrono::system_clock::now();
  const WallTime shown = clock.wallTime();
  EXPECT_GE(shown, before);
  EXPECT_LE(shown, std::chrono::system_clock::now());
}

TEST(AsioClock, SleepThatIsStoppedAlreadyReturnsAtOnce) {
  AsioClock clock(standingStill);
  StopSource source;
  source.requestStop();
  Sleep sleep;
  sleep.start(clock, Instant(10h), source.token());
  sleep.context.poll();
  EXPECT_TRUE(sleep.ended);
}

TEST(AsioClock, DeadlineThatHasPassedIsNotWaitedFor) {
  AsioClock clock(standingStill);
  for (const Instant deadline : {Instant(100s), Instant(99s), Instant(), Instant(-10h)}) {
    Sleep sleep;
    sleep.start(clock, deadline);
    sleep.context.poll();
    EXPECT_TRUE(sleep.ended);
  }
}

TEST(AsioClock, DeadlineInTheFutureIsWaitedFor) {
  AsioClock clock(standingStill);
  Sleep sleep;
  sleep.start(clock, Instant(10h));
  sleep.context.poll();
  EXPECT_FALSE(sleep.ended);
}

TEST(AsioClock, StopEndsASleepEarly) {
  AsioClock clock(standingStill);
  StopSource source;
  Sleep sleep;
  sleep.start(clock, Instant(10h), source.token());
  sleep.context.poll();
  boost::asio::post(sleep.context, [&] { source.requestStop(); });
  sleep.context.run();
  EXPECT_TRUE(sleep.ended);
}

TEST(AsioClock, FarthestDeadlineIsOneThatOnlyAStopEnds) {
  AsioClock clock(standingStill);
  StopSource source;
  Sleep sleep;
  sleep.start(clock, Instant::max(), source.token());
  sleep.context.poll();
  EXPECT_FALSE(sleep.ended);
  source.requestStop();
  sleep.context.run();
  EXPECT_TRUE(sleep.ended);
}

// The timer's clock runs apart from ours here, where only readings make time pass: a wait for 3 µs by the
// timer ends with our deadline still ahead.
TEST(AsioClock, WakeUpThatComesTooEarlyWaitsForTheRest) {
  readings = 0;
  AsioClock clock(microsecondPerReading);
  Sleep sleep;
  sleep.start(clock, Instant(100s) + 3us);
  sleep.context.run();
  EXPECT_TRUE(sleep.ended);
  EXPECT_EQ(readings, 4);
}

} // namespace
} // namespace ventolith::runtime
