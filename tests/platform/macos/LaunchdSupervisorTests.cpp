#include "platform/macos/service/LaunchdSupervisor.h"

#include "fake-timer/Timer.h"

#include <gtest/gtest.h>

#include <optional>

namespace ventolith::platform {
namespace {

using namespace std::chrono_literals;

/// The system's timer is one of the fake's, whose time is the test's. What it ends is a process of its own.
class LaunchdSupervisorTest : public testing::Test {
protected:
  static constexpr const char* lastWords = "does nothing any more";

  fake::Timer timer_;
  std::optional<LaunchdSupervisor> supervisor_{MachService::Domain::system};
};

TEST_F(LaunchdSupervisorTest, WantsToHearOfAHelperEveryTenSeconds) {
  EXPECT_EQ(supervisor_->watchdogInterval(), runtime::Duration(10s));
}

TEST_F(LaunchdSupervisorTest, HelperThatHangsWhileItIsWatchedIsEnded) {
  supervisor_->setWatched(true);
  timer_.pass(9'999ms);
  EXPECT_DEATH(timer_.pass(1ms), lastWords);
}

TEST_F(LaunchdSupervisorTest, EachSignOfLifeGivesItTenSecondsMore) {
  supervisor_->setWatched(true);
  for (int second = 0; second < 60; ++second) {
    timer_.pass(1s);
    supervisor_->alive();
  }
  timer_.pass(9'999ms);
  EXPECT_DEATH(timer_.pass(1ms), lastWords);
}

TEST_F(LaunchdSupervisorTest, HelperThatHoldsNothingIsNotWatched) {
  timer_.pass(1h);
  supervisor_->setWatched(true);
  supervisor_->setWatched(false);
  timer_.pass(1h);
  EXPECT_TRUE(timer_.isThere());
}

TEST_F(LaunchdSupervisorTest, SignOfLifeBeginsNoWatch) {
  supervisor_->alive();
  timer_.pass(1h);
  supervisor_->setWatched(true);
  supervisor_->setWatched(false);
  supervisor_->alive();
  timer_.pass(1h);
  EXPECT_TRUE(timer_.isThere());
}

TEST_F(LaunchdSupervisorTest, NothingIsEndedAfterItHasGone) {
  supervisor_->setWatched(true);
  supervisor_.reset();
  EXPECT_FALSE(timer_.isThere());
  timer_.pass(1h);
}

TEST(UnwatchedSupervisorTest, HelperForDevelopmentMayBeStoppedInADebugger) {
  const fake::Timer timer;
  LaunchdSupervisor supervisor(MachService::Domain::user);
  supervisor.setWatched(true);
  supervisor.alive();
  EXPECT_EQ(supervisor.watchdogInterval(), runtime::Duration::zero());
  EXPECT_FALSE(timer.isThere());
}

} // namespace
} // namespace ventolith::platform
