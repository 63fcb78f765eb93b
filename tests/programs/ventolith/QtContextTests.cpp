// Qt's event loop as the main executor.
#include "programs/ventolith/window/QtContext.h"

#include "platform/system/SystemClock.h"
#include "programs/ventolith/window/QtWait.h"
#include "runtime/Async.h"
#include "runtime/Event.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

namespace ventolith::programs {
namespace {

using namespace std::chrono_literals;
using runtime::Async;

class QtContextTest : public testing::Test {
protected:
  [[nodiscard]] runtime::Executor executor() { return context.executor(); }
  static void turn() { QCoreApplication::processEvents(); }

  QtContext context;
  std::thread::id testThread = std::this_thread::get_id();
};

TEST_F(QtContextTest, WorkRunsInTheLoopInItsOrder) {
  std::vector<int> ran;
  for (int number = 0; number < 3; ++number)
    boost::asio::post(executor(), [&ran, number] { ran.push_back(number); });
  EXPECT_TRUE(ran.empty());
  turn();
  EXPECT_EQ(ran, (std::vector{0, 1, 2}));
}

TEST_F(QtContextTest, WorkOfOtherThreadsRunsOnThisOne) {
  std::thread::id ranOn;
  std::thread other([&] { boost::asio::post(executor(), [&ranOn] { ranOn = std::this_thread::get_id(); }); });
  other.join();
  turn();
  EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TEST_F(QtContextTest, WorkThatNeverRanGoesWithTheContext) {
  auto kept = std::make_shared<int>(0);
  {
    QtContext shortLived;
    boost::asio::post(runtime::Executor(shortLived.executor()), [kept] { ++*kept; });
  }
  turn();
  EXPECT_EQ(kept.use_count(), 1);
  EXPECT_EQ(*kept, 0);
}

TEST_F(QtContextTest, CallerOnAnotherExecutorComesBackHere) {
  boost::asio::io_context elsewhere(1);
  const auto add = [](int one, int other) -> Async<int> { co_return one + other; };
  int sum = 0;
  bool isBackHere = false;
  const auto call = [&]() -> Async<void> {
    sum = co_await boost::asio::co_spawn(elsewhere, add(1, 2), boost::asio::use_awaitable);
    isBackHere = std::this_thread::get_id() == testThread;
  };
  std::thread engine;
  runtime::start(executor(), "test", call());
  turn();
  engine = std::thread([&] { elsewhere.run(); });
  engine.join();
  EXPECT_EQ(sum, 0);
  turn();
  EXPECT_EQ(sum, 3);
  EXPECT_TRUE(isBackHere);
}

TEST_F(QtContextTest, RunningOutWaitsForWhatWasBegun) {
  runtime::Event told(executor());
  bool isDone = false;
  const auto wait = [&]() -> Async<void> {
    co_await told.wait();
    isDone = true;
  };
  runtime::start(executor(), "test", wait());
  boost::asio::post(executor(), [&] { told.happen(); });
  context.runOut(10s);
  EXPECT_TRUE(isDone);
}

TEST_F(QtContextTest, RunningOutWithNothingToDoReturnsAtOnce) {
  context.runOut(24h);
}

TEST_F(QtContextTest, RunningOutEndsWhenItsTimeIsOver) {
  runtime::Event never(executor());
  const auto wait = [&]() -> Async<void> { co_await never.wait(); };
  runtime::start(executor(), "test", wait());
  context.runOut(0ms);
  never.happen();
  context.runOut(10s);
}

TEST_F(QtContextTest, RunningOutAloneRunsItsWorkAndNothingElse) {
  bool isDone = false, isElseDone = false;
  QObject other;
  QMetaObject::invokeMethod(&other, [&] { isElseDone = true; }, Qt::QueuedConnection);
  const auto hop = [&]() -> Async<void> {
    co_await boost::asio::post(executor(), boost::asio::use_awaitable);
    isDone = true;
  };
  runtime::start(executor(), "test", hop());
  context.runOutAlone(10s);
  EXPECT_TRUE(isDone);
  EXPECT_FALSE(isElseDone);
}

TEST_F(QtContextTest, RunningOutAloneEndsWhenItsTimeIsOver) {
  runtime::Event never(executor());
  const auto wait = [&]() -> Async<void> { co_await never.wait(); };
  runtime::start(executor(), "test", wait());
  context.runOutAlone(0ms);
  never.happen();
  context.runOut(10s);
}

TEST_F(QtContextTest, ClockSleepsInTheLoop) {
  platform::SystemClock clock(waitInQt());
  int woken = 0;
  const auto sleep = [&](runtime::Duration span) -> Async<void> {
    co_await clock.sleep(span, {});
    ++woken;
  };
  runtime::start(executor(), "test", sleep(2ms));
  runtime::start(executor(), "test", sleep(1ms));
  context.runOut(10s);
  EXPECT_EQ(woken, 2);
}

TEST_F(QtContextTest, StoppedSleepEndsAtOnce) {
  platform::SystemClock clock(waitInQt());
  runtime::StopSource stop;
  const auto sleep = [&]() -> Async<void> { co_await clock.sleep(24h, stop.token()); };
  runtime::start(executor(), "test", sleep());
  turn();
  stop.requestStop();
  context.runOut(10s);
}

} // namespace
} // namespace ventolith::programs
