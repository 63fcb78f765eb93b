#include "helper/link/Completion.h"

#include "support/VirtualTime.h"

#include <gtest/gtest.h>

#include <vector>

namespace ventolith::helper {
namespace {

using runtime::Async;

class CompletionTest : public testing::Test {
protected:
  using Number = Completion<int>;

  Async<void> take() { values.push_back(co_await Number::valueOf(completion)); }

  support::VirtualTime time;
  std::shared_ptr<Number> completion = std::make_shared<Number>(time.executor());
  std::vector<int> values;
};

TEST_F(CompletionTest, EveryoneWhoWaitsReceivesTheValue) {
  time.start(take());
  time.start(take());
  EXPECT_TRUE(values.empty());
  completion->complete(7);
  time.clock.settle();
  EXPECT_EQ(values, (std::vector{7, 7}));
}

TEST_F(CompletionTest, WhoComesLaterDoesNotWait) {
  completion->complete(7);
  time.start(take());
  EXPECT_EQ(values, (std::vector{7}));
}

TEST_F(CompletionTest, TheFirstValueCounts) {
  time.start(take());
  completion->complete(7);
  completion->complete(8);
  time.start(take());
  EXPECT_EQ(values, (std::vector{7, 7}));
}

} // namespace
} // namespace ventolith::helper
