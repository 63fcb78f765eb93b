#include "platform/macos/service/HelperCalls.h"

#include "platform/macos/service/Doorway.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace ventolith;
using platform::HelperCalls;
using Reply = HelperCalls::Reply;
namespace replies = helper::replies;

struct HelperCallsTest : testing::Test {
  /// Begins a call whose ends are counted.
  std::uint64_t begin(std::vector<Reply>& ends) {
    auto call = calls.begin();
    time.start([](runtime::Async<Reply> reply, std::vector<Reply>& its) -> runtime::Async<void> {
      its.push_back(co_await std::move(reply));
    }(std::move(call.reply), ends));
    return call.number;
  }
  void settle() { time.clock.settle(); }

  support::VirtualTime time;
  HelperCalls calls{time.executor()};
  std::vector<Reply> one;
  std::vector<Reply> other;
};

TEST_F(HelperCallsTest, ACallEndsWithItsReply) {
  const auto number = begin(one);
  begin(other);
  calls.end(number, replies::Code{5});
  settle();
  EXPECT_EQ(one, std::vector<Reply>{helper::HelperReply(replies::Code{5})});
  EXPECT_TRUE(other.empty());
}

TEST_F(HelperCallsTest, OfTwoEndsTheFirstCounts) {
  const auto number = begin(one);
  calls.end(number, std::nullopt);
  calls.end(number, replies::Code{5});
  settle();
  EXPECT_EQ(one, std::vector<Reply>{std::nullopt});
}

TEST_F(HelperCallsTest, TheEndOfAllLeavesNoneWaitingAndHearsNoLateReply) {
  const auto number = begin(one);
  begin(other);
  calls.endAll();
  calls.end(number, replies::Code{5});
  settle();
  EXPECT_EQ(one, std::vector<Reply>{std::nullopt});
  EXPECT_EQ(other, std::vector<Reply>{std::nullopt});
}

TEST_F(HelperCallsTest, AReplyThatComesBeforeItIsWaitedForIsKept) {
  auto call = calls.begin();
  calls.end(call.number, replies::Done());
  time.start([](runtime::Async<Reply> reply, std::vector<Reply>& its) -> runtime::Async<void> {
    its.push_back(co_await std::move(reply));
  }(std::move(call.reply), one));
  EXPECT_EQ(one, std::vector<Reply>{helper::HelperReply(replies::Done())});
}

TEST(Doorway, LetsWorkThroughInOrderUntilItIsShut) {
  support::VirtualTime time;
  platform::Doorway doorway(time.executor());
  std::vector<int> done;
  doorway.post([&] { done.push_back(1); });
  doorway.post([&] { done.push_back(2); });
  EXPECT_TRUE(done.empty());
  time.clock.settle();
  doorway.shut();
  doorway.post([&] { done.push_back(3); });
  time.clock.settle();
  EXPECT_EQ(done, (std::vector<int>{1, 2}));
}

TEST(Doorway, OutlivesItsExecutor) {
  auto time = std::make_unique<support::VirtualTime>();
  platform::Doorway doorway(time->executor());
  doorway.shut();
  time.reset();
  bool isGone = false;
  doorway.post([guard = std::shared_ptr<void>(nullptr, [&isGone](void*) { isGone = true; })] {});
  EXPECT_TRUE(isGone);
}

} // namespace
