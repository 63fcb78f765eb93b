#include "runtime/ManualClock.h"

#include "runtime/StateStream.h"
#include "support/VirtualTime.h"

#include <boost/asio/post.hpp>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace ventolith::runtime {
namespace {

using namespace std::chrono_literals;
using support::VirtualTime;

/// Notes who woke and when.
struct Sleepers {
  explicit Sleepers(VirtualTime& virtualTime) : time(virtualTime), start(virtualTime.clock.now()) {}

  void sleep(Duration span, std::string name, StopToken stop = {}) {
    time.start(wait(span, std::move(name), std::move(stop)));
  }

  Async<void> wait(Duration span, std::string name, StopToken stop) {
    co_await time.clock.sleep(span, std::move(stop));
    woken.push_back(name + "@" + std::to_string((time.clock.now() - start) / 1s));
  }

  VirtualTime& time;
  Instant start;
  std::vector<std::string> woken;
};
using Names = std::vector<std::string>;

TEST(ManualClock, TimeStandsStillWithoutAdvance) {
  VirtualTime time;
  const Instant start = time.clock.now();
  time.clock.settle();
  EXPECT_EQ(time.clock.now(), start);
}

TEST(ManualClock, AdvanceMovesBothTimesByTheSpan) {
  VirtualTime time;
  const Instant start = time.clock.now();
  const WallTime date = time.clock.wallTime();
  time.clock.advance(90s);
  EXPECT_EQ(time.clock.now() - start, 90s);
  EXPECT_EQ(time.clock.wallTime() - date, 90s);
}

TEST(ManualClock, StartsAtTheInstantThatItIsGiven) {
  boost::asio::io_context context;
  const ManualClock clock(context, Instant(7s));
  EXPECT_EQ(clock.now(), Instant(7s));
}

TEST(ManualClock, SleepersWakeInTheOrderOfTheirDeadlines) {
  VirtualTime time;
  Sleepers sleepers(time);
  sleepers.sleep(3s, "c");
  sleepers.sleep(1s, "a");
  sleepers.sleep(2s, "b");
  time.clock.advance(10s);
  EXPECT_EQ(sleepers.woken, (Names{"a@1", "b@2", "c@3"}));
}

TEST(ManualClock, EqualDeadlinesWakeInTheOrderOfArrival) {
  VirtualTime time;
  Sleepers sleepers(time);
  sleepers.sleep(2s, "first");
  sleepers.sleep(2s, "second");
  time.clock.advance(1s);
  sleepers.sleep(1s, "third");
  time.clock.advance(1s);
  EXPECT_EQ(sleepers.woken, (Names{"first@2", "second@2", "third@2"}));
}

TEST(ManualClock, WorkSettlesBetweenTwoWakeUps) {
  VirtualTime time;
  Sleepers sleepers(time);
  const auto busy = [&]() -> Async<void> {
    co_await sleepers.wait(1s, "busy", {});
    boost::asio::post(time.context, [&] {
      boost::asio::post(time.context, [&] { sleepers.woken.emplace_back("its work"); });
    });
  };
  time.start(busy());
  sleepers.sleep(1s, "next");
  time.clock.advance(1s);
  EXPECT_EQ(sleepers.woken, (Names{"busy@1", "its work", "next@1"}));
}

TEST(ManualClock, SleeperWakesExactlyAtItsDeadline) {
  VirtualTime time;
  Sleepers sleepers(time);
  sleepers.sleep(2s, "a");
  time.clock.advance(2s - 1ns);
  EXPECT_TRUE(sleepers.woken.empty());
  time.clock.advance(1ns);
  EXPECT_EQ(sleepers.woken, Names{"a@2"});
}

TEST(ManualClock, SleepBegunDuringAnAdvanceEndsWithinIt) {
  VirtualTime time;
  int ticks = 0;
  const auto loop = [&]() -> Async<void> {
    for (;;) {
      co_await time.clock.sleep(1500ms, StopToken());
      ++ticks;
    }
  };
  time.start(loop());
  time.clock.advance(8h);
  EXPECT_EQ(ticks, 19200);
}

TEST(ManualClock, DeadlineThatHasPassedIsNotWaitedFor) {
  VirtualTime time;
  Sleepers sleepers(time);
  sleepers.sleep(0s, "now");
  sleepers.sleep(-5s, "past");
  EXPECT_EQ(sleepers.woken, (Names{"now@0", "past@0"}));
  EXPECT_EQ(time.clock.sleeperCount(), 0U);
}

TEST(ManualClock, SleepThatIsStoppedAlreadyReturnsAtOnce) {
  VirtualTime time;
  Sleepers sleepers(time);
  StopSource source;
  source.requestStop();
  sleepers.sleep(10s, "a", source.token());
  EXPECT_EQ(sleepers.woken, Names{"a@0"});
}

TEST(ManualClock, StopEndsASleepWithoutTimePassing) {
  VirtualTime time;
  Sleepers sleepers(time);
  StopSource source;
  sleepers.sleep(10s, "a", source.token());
  time.clock.advance(3s);
  source.requestStop();
  time.clock.settle();
  EXPECT_EQ(sleepers.woken, Names{"a@3"});
  EXPECT_EQ(time.clock.sleeperCount(), 0U);
}

TEST(ManualClock, StopOfOneSleeperLeavesTheOthers) {
  VirtualTime time;
  Sleepers sleepers(time);
  StopSource source;
  sleepers.sleep(10s, "stopped", source.token());
  sleepers.sleep(10s, "other");
  source.requestStop();
  time.clock.settle();
  EXPECT_EQ(time.clock.sleeperCount(), 1U);
  time.clock.advance(10s);
  EXPECT_EQ(sleepers.woken, (Names{"stopped@0", "other@10"}));
}

TEST(ManualClock, StopBeforeAnAdvanceWakesAtThePresentTime) {
  VirtualTime time;
  Sleepers sleepers(time);
  StopSource source;
  sleepers.sleep(2s, "stopped", source.token());
  source.requestStop();
  time.clock.advance(5s);
  EXPECT_EQ(sleepers.woken, Names{"stopped@0"});
}

TEST(ManualClock, StopRequestedByAWakeUpWakesTheOtherAtThatMoment) {
  VirtualTime time;
  Sleepers sleepers(time);
  StopSource source;
  const auto stopper = [&]() -> Async<void> {
    co_await time.clock.sleep(1s, StopToken());
    source.requestStop();
  };
  sleepers.sleep(2s, "stopped", source.token());
  time.start(stopper());
  time.clock.advance(5s);
  EXPECT_EQ(sleepers.woken, Names{"stopped@1"});
}

TEST(ManualClock, StopAfterTheWakeUpChangesNothing) {
  VirtualTime time;
  Sleepers sleepers(time);
  StopSource source;
  sleepers.sleep(1s, "a", source.token());
  time.clock.advance(1s);
  source.requestStop();
  time.clock.settle();
  EXPECT_EQ(sleepers.woken, Names{"a@1"});
}

TEST(ManualClock, LongestSleepIsOneThatOnlyAStopEnds) {
  VirtualTime time;
  Sleepers sleepers(time);
  StopSource source;
  sleepers.sleep(Duration::max(), "a", source.token());
  time.clock.advance(24h * 365);
  EXPECT_TRUE(sleepers.woken.empty());
  source.requestStop();
  time.clock.settle();
  EXPECT_EQ(sleepers.woken.size(), 1U);
}

TEST(ManualClock, RunReturnsTheResultOnceTheWaitsAreOver) {
  VirtualTime time;
  const Instant start = time.clock.now();
  const auto work = [&]() -> Async<std::string> {
    co_await time.clock.sleep(3s, StopToken());
    co_await time.clock.sleep(4s, StopToken());
    co_return "done";
  };
  EXPECT_EQ(time.clock.run(work()), "done");
  EXPECT_EQ(time.clock.now() - start, 7s);
}

TEST(ManualClock, RunOfWorkWithoutWaitsLetsNoTimePass) {
  VirtualTime time;
  const Instant start = time.clock.now();
  const auto work = []() -> Async<int> { co_return 42; };
  EXPECT_EQ(time.clock.run(work()), 42);
  EXPECT_EQ(time.clock.now(), start);
}

TEST(ManualClock, RunWakesTheOthersThatAreDueMeanwhile) {
  VirtualTime time;
  Sleepers sleepers(time);
  sleepers.sleep(1s, "before");
  sleepers.sleep(9s, "after");
  time.clock.run(sleepers.wait(5s, "own", {}));
  EXPECT_EQ(sleepers.woken, (Names{"before@1", "own@5"}));
}

TEST(ManualClock, RunPassesAnExceptionOn) {
  VirtualTime time;
  const auto plain = []() -> Async<void> {
    throw std::runtime_error("broken");
    co_return;
  };
  const auto withResult = [&]() -> Async<int> {
    co_await time.clock.sleep(1s, StopToken());
    throw std::runtime_error("broken");
  };
  EXPECT_THROW(time.clock.run(plain()), std::runtime_error);
  EXPECT_THROW(time.clock.run(withResult()), std::runtime_error);
}

TEST(ManualClock, RunOfWorkThatWaitsForNothingIsReported) {
  StateStream<int> stream;
  VirtualTime time;
  EXPECT_THROW(time.clock.run(stream.next(StopToken())), std::logic_error);
}

TEST(ManualClock, RunLetsTheLastSleeperEndWhatTheWorkWaitsFor) {
  StateStream<int> stream;
  VirtualTime time;
  const auto producer = [&]() -> Async<void> {
    co_await time.clock.sleep(5s, StopToken());
    stream.yield(5);
  };
  time.start(producer());
  EXPECT_EQ(time.clock.run(stream.next(StopToken())), 5);
}

} // namespace
} // namespace ventolith::runtime
