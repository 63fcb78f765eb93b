#include "runtime/Event.h"

#include <boost/asio/io_context.hpp>
#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace ventolith::runtime {
namespace {

struct Waiters {
  boost::asio::io_context context;
  Event event{context.get_executor()};
  int woken = 0;

  void add() {
    start(context.get_executor(), "test", [](Waiters& self) -> Async<void> {
      co_await self.event.wait();
      ++self.woken;
    }(*this));
    context.poll();
  }
};

TEST(Event, WakesAllWhoWait) {
  Waiters waiters;
  waiters.add();
  waiters.add();
  EXPECT_EQ(waiters.woken, 0);
  EXPECT_FALSE(waiters.event.hasHappened());

  waiters.event.happen();
  EXPECT_TRUE(waiters.event.hasHappened());
  waiters.context.restart();
  waiters.context.poll();
  EXPECT_EQ(waiters.woken, 2);
}

TEST(Event, IsNotWaitedForOnceItHasHappened) {
  Waiters waiters;
  waiters.event.happen();
  waiters.add();
  EXPECT_EQ(waiters.woken, 1);
}

TEST(Event, HappensOnce) {
  Waiters waiters;
  waiters.add();
  waiters.event.happen();
  waiters.event.happen();
  waiters.context.restart();
  waiters.context.poll();
  EXPECT_EQ(waiters.woken, 1);
}

// Who waits in its own frame goes with the event loop, as it would on a timer.
TEST(Event, WaitThatNothingEndsIsTakenDownWithItsLoop) {
  const auto held = std::make_shared<int>();
  {
    boost::asio::io_context context;
    start(context.get_executor(), "test", [](std::shared_ptr<int>) -> Async<void> {
      Event never(co_await boost::asio::this_coro::executor);
      co_await never.wait();
    }(held));
    context.poll();
    EXPECT_GT(held.use_count(), 1);
  }
  EXPECT_EQ(held.use_count(), 1);
}

} // namespace
} // namespace ventolith::runtime
