#include "platform/system/SystemClock.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace ventolith::platform {
namespace {

using namespace std::chrono_literals;
using runtime::Async;
using runtime::Instant;

struct Sleepers {
  boost::asio::io_context context;
  SystemClock clock{context.get_executor()};
  std::string ended; // The names of those whose sleep has ended, in order.

  void start(char name, Instant deadline, runtime::StopToken stop = {}) {
    runtime::start(context.get_executor(), "test", sleep(*this, name, deadline, std::move(stop)));
  }
  void poll() {
    context.restart();
    context.poll();
  }

private:
  static Async<void> sleep(Sleepers& self, char name, Instant deadline, runtime::StopToken stop) {
    co_await self.clock.sleepUntil(deadline, std::move(stop));
    self.ended += name;
  }
};

TEST(SystemClock, ReadsTheTimeSinceBoot) {
  const Sleepers sleepers;
  const Instant before = elapsedTime();
  const Instant read = sleepers.clock.now();
  EXPECT_GE(read, before);
  EXPECT_LE(read, elapsedTime());
}

TEST(SystemClock, SleepThatIsStoppedAlreadyReturnsAtOnce) {
  Sleepers sleepers;
  runtime::StopSource source;
  source.requestStop();
  sleepers.start('a', elapsedTime() + 10h, source.token());
  sleepers.poll();
  EXPECT_EQ(sleepers.ended, "a");
}

TEST(SystemClock, DeadlineThatHasPassedIsNotWaitedFor) {
  Sleepers sleepers;
  for (const Instant deadline : {elapsedTime(), Instant(), Instant(-10h), runtime::distantPast})
    sleepers.start('a', deadline);
  sleepers.poll();
  EXPECT_EQ(sleepers.ended, "aaaa");
}

TEST(SystemClock, DeadlineAheadIsWaitedForThoughALaterOneWasSetBefore) {
  Sleepers sleepers;
  runtime::StopSource source;
  const Instant start = elapsedTime();
  sleepers.start('b', start + 10h, source.token());
  sleepers.start('a', start + 200us);
  while (sleepers.ended.empty())
    sleepers.context.run_one();
  EXPECT_EQ(sleepers.ended, "a");
  EXPECT_GE(elapsedTime(), start + 200us);
  source.requestStop();
  sleepers.context.run(); // Ends because nobody sleeps any more.
  EXPECT_EQ(sleepers.ended, "ab");
}

TEST(SystemClock, StopEndsASleepEarlyAndNoOther) {
  Sleepers sleepers;
  runtime::StopSource source;
  sleepers.start('a', elapsedTime() + 10h, source.token());
  sleepers.start('b', elapsedTime() + 20h);
  sleepers.poll();
  EXPECT_EQ(sleepers.ended, "");
  source.requestStop();
  sleepers.poll();
  EXPECT_EQ(sleepers.ended, "a");
}

TEST(SystemClock, FarthestDeadlineIsOneThatOnlyAStopEnds) {
  Sleepers sleepers;
  runtime::StopSource source;
  sleepers.start('a', Instant::max(), source.token());
  sleepers.poll();
  EXPECT_EQ(sleepers.ended, "");
  source.requestStop();
  sleepers.context.restart();
  sleepers.context.run();
  EXPECT_EQ(sleepers.ended, "a");
}

TEST(SystemClock, SleepsAgainAfterEverybodyWasWoken) {
  Sleepers sleepers;
  for (const char name : {'a', 'b'}) {
    sleepers.start(name, elapsedTime() + 100us);
    sleepers.context.restart();
    sleepers.context.run();
  }
  EXPECT_EQ(sleepers.ended, "ab");
}

TEST(SystemClock, SleeperThatStartsAnotherSleepIsWokenAgain) {
  Sleepers sleepers;
  const auto twice = [](Sleepers& self) -> Async<void> {
    co_await self.clock.sleep(100us, {});
    self.ended += 'a';
    co_await self.clock.sleep(100us, {});
    self.ended += 'b';
  };
  runtime::start(sleepers.context.get_executor(), "test", twice(sleepers));
  sleepers.context.run();
  EXPECT_EQ(sleepers.ended, "ab");
}

} // namespace
} // namespace ventolith::platform
