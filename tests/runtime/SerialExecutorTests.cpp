#include "runtime/Async.h"

#include "support/VirtualTime.h"

#include <boost/asio/this_coro.hpp>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace ventolith::runtime {
namespace {

using namespace std::chrono_literals;
using support::VirtualTime;

Async<Executor> presentExecutor() {
  co_return co_await boost::asio::this_coro::executor;
}

TEST(SerialExecutor, WorkRunsOnIt) {
  VirtualTime time;
  const SerialExecutor serial(time.executor());
  EXPECT_EQ(time.clock.run(serial.run(presentExecutor())), serial.executor());
}

TEST(SerialExecutor, CallerResumesOnItsOwnExecutor) {
  VirtualTime time;
  const SerialExecutor caller(time.executor());
  const SerialExecutor callee(time.executor());
  const auto call = [&]() -> Async<Executor> {
    co_await callee.run(presentExecutor());
    co_return co_await boost::asio::this_coro::executor;
  };
  EXPECT_EQ(time.clock.run(caller.run(call())), caller.executor());
}

TEST(SerialExecutor, TwoOfThemAreDifferent) {
  VirtualTime time;
  const SerialExecutor first(time.executor());
  const SerialExecutor second(time.executor());
  EXPECT_NE(first.executor(), second.executor());
}

TEST(SerialExecutor, ResultAndExceptionReachTheCaller) {
  VirtualTime time;
  const SerialExecutor serial(time.executor());
  const auto good = []() -> Async<std::string> { co_return "good"; };
  const auto bad = []() -> Async<void> {
    throw std::runtime_error("bad");
    co_return;
  };
  EXPECT_EQ(time.clock.run(serial.run(good())), "good");
  EXPECT_THROW(time.clock.run(serial.run(bad())), std::runtime_error);
}

TEST(SerialExecutor, SecondCallRunsWhereTheFirstWaits) {
  VirtualTime time;
  const SerialExecutor serial(time.executor());
  std::string order;
  const auto first = [&]() -> Async<void> {
    order += "1";
    co_await time.clock.sleep(2s, StopToken());
    order += "1";
  };
  const auto second = [&]() -> Async<void> {
    order += "2";
    co_await time.clock.sleep(1s, StopToken());
    order += "2";
  };
  time.start(serial.run(first()));
  time.start(serial.run(second()));
  time.clock.advance(2s);
  EXPECT_EQ(order, "1221");
}

TEST(SerialExecutor, SecondCallWaitsForAFirstThatNeverSuspends) {
  VirtualTime time;
  const SerialExecutor serial(time.executor());
  std::string order;
  const auto work = [&](std::string name) -> Async<void> {
    order += name;
    order += name;
    co_return;
  };
  runtime::start(time.executor(), "a", serial.run(work("a")));
  runtime::start(time.executor(), "b", serial.run(work("b")));
  time.clock.settle();
  EXPECT_EQ(order, "aabb");
}

TEST(SerialExecutor, NothingRunsBeforeTheCallerAwaits) {
  VirtualTime time;
  const SerialExecutor serial(time.executor());
  bool ran = false;
  const auto work = [&]() -> Async<void> {
    ran = true;
    co_return;
  };
  {
    const auto forgotten = serial.run(work());
  }
  time.clock.settle();
  EXPECT_FALSE(ran);
}

TEST(StartDeathTest, EscapedExceptionIsReportedUnderItsNameAndEndsTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto fail = [] {
    VirtualTime time;
    const auto work = []() -> Async<void> {
      throw std::runtime_error("out of luck");
      co_return;
    };
    runtime::start(time.executor(), "the hold loop", work());
    time.clock.settle();
  };
  EXPECT_DEATH(fail(), "ventolith: the hold loop ended by an exception: out of luck");
}

} // namespace
} // namespace ventolith::runtime
