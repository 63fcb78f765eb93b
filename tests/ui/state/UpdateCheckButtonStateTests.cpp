#include "ui/state/UpdateCheckButtonState.h"

#include "support/VirtualTime.h"
#include "ui/state/Text.h"

#include <gtest/gtest.h>

#include <memory>

namespace ventolith::ui {
namespace {

using app::UpdateCheckOutcome;
using std::chrono::milliseconds;
using std::chrono::seconds;
using support::utf8;

class UpdateCheckButton : public testing::Test {
protected:
  support::VirtualTime time;
  int changes = 0;
  std::unique_ptr<UpdateCheckButtonState> button =
      std::make_unique<UpdateCheckButtonState>(time.executor(), time.clock, [this] { ++changes; });

  void take(std::optional<UpdateCheckOutcome> outcome) {
    button->take({.outcome = std::move(outcome), .updatesAvailable = true, .detailMessage = "Idle."});
    time.clock.settle();
  }
  std::string label() const { return utf8(button->label()); }
  std::string detail() const { return utf8(button->detail()); }
};

TEST_F(UpdateCheckButton, OffersACheckWhenIdle) {
  take(std::nullopt);
  EXPECT_EQ(label(), "Check for Updates");
  EXPECT_EQ(detail(), "Idle.");
  EXPECT_TRUE(button->isEnabled());
  EXPECT_EQ(utf8(UpdateCheckButtonState::idleLabel()), "Check for Updates");
}

TEST_F(UpdateCheckButton, RunningCheckStaysOnShowAndDisablesIt) {
  take(UpdateCheckOutcome::checking);
  time.clock.advance(seconds(100));
  EXPECT_EQ(label(), "Checking…");
  EXPECT_EQ(detail(), "Checking for updates…");
  EXPECT_FALSE(button->isEnabled());
}

TEST_F(UpdateCheckButton, ResultShowsForItsTimeAndThenTheButtonIsIdle) {
  struct Row {
    UpdateCheckOutcome outcome;
    const char* label;
    int shownSeconds;
  };
  const Row rows[] = {{UpdateCheckOutcome::upToDate, "Up to date", 4},
                      {UpdateCheckOutcome::updateAvailable("2.0.0"), "Update available", 4},
                      {UpdateCheckOutcome::failed("Broken."), "Check failed", 6},
                      {UpdateCheckOutcome::timedOut, "No response", 6},
                      {UpdateCheckOutcome::unavailable("No feed."), "Unavailable", 6}};
  for (const Row& row : rows) {
    take(row.outcome);
    time.clock.advance(seconds(row.shownSeconds) - milliseconds(1));
    EXPECT_EQ(label(), row.label);
    EXPECT_EQ(detail(), row.outcome.message());
    EXPECT_TRUE(button->isEnabled());
    changes = 0;
    time.clock.advance(milliseconds(1));
    EXPECT_EQ(label(), "Check for Updates") << row.label;
    EXPECT_EQ(detail(), "Idle.");
    EXPECT_EQ(changes, 1);
  }
}

TEST_F(UpdateCheckButton, ResultThatShowsForNoTimeIsNotShown) {
  take(UpdateCheckOutcome::checking);
  take(UpdateCheckOutcome::cancelled);
  EXPECT_FALSE(button->displayedOutcome());
  EXPECT_EQ(label(), "Check for Updates");
  EXPECT_EQ(time.clock.sleeperCount(), 0U);
}

TEST_F(UpdateCheckButton, NewerOutcomeIsNotClearedByTheOlderOnesTime) {
  take(UpdateCheckOutcome::upToDate);
  time.clock.advance(seconds(3));
  take(UpdateCheckOutcome::failed("Broken."));
  time.clock.advance(seconds(5));
  EXPECT_EQ(label(), "Check failed");
  EXPECT_EQ(changes, 0);
  time.clock.advance(seconds(1));
  EXPECT_EQ(label(), "Check for Updates");
  EXPECT_EQ(changes, 1);
}

TEST_F(UpdateCheckButton, NewCheckDuringAResultStaysOnShow) {
  take(UpdateCheckOutcome::upToDate);
  time.clock.advance(seconds(3));
  take(UpdateCheckOutcome::checking);
  time.clock.advance(seconds(100));
  EXPECT_EQ(label(), "Checking…");
}

TEST_F(UpdateCheckButton, SameOutcomeAgainDoesNotProlongItsDisplay) {
  take(UpdateCheckOutcome::upToDate);
  time.clock.advance(seconds(3));
  take(UpdateCheckOutcome::upToDate);
  time.clock.advance(seconds(1));
  EXPECT_EQ(label(), "Check for Updates");
}

TEST_F(UpdateCheckButton, ResultThatTheModelKeepsIsNotShownAgain) {
  take(UpdateCheckOutcome::upToDate);
  time.clock.advance(seconds(10));
  take(UpdateCheckOutcome::upToDate);
  EXPECT_EQ(label(), "Check for Updates");
}

TEST_F(UpdateCheckButton, IdleModelEndsTheDisplayAtOnce) {
  take(UpdateCheckOutcome::upToDate);
  take(std::nullopt);
  EXPECT_EQ(label(), "Check for Updates");
  EXPECT_EQ(time.clock.sleeperCount(), 0U);
}

TEST_F(UpdateCheckButton, WithoutUpdatesItIsDisabledAndSaysWhy) {
  button->take(
      {.outcome = std::nullopt, .updatesAvailable = false, .detailMessage = "No feed is configured."});
  EXPECT_FALSE(button->isEnabled());
  EXPECT_EQ(detail(), "No feed is configured.");
}

TEST_F(UpdateCheckButton, LettingGoEndsTheWait) {
  take(UpdateCheckOutcome::upToDate);
  ASSERT_EQ(time.clock.sleeperCount(), 1U);
  button.reset();
  time.clock.settle();
  EXPECT_EQ(time.clock.sleeperCount(), 0U);
  time.clock.advance(seconds(10));
  EXPECT_EQ(changes, 0);
}

TEST_F(UpdateCheckButton, WhoIsToldMayLetItGo) {
  button = std::make_unique<UpdateCheckButtonState>(time.executor(), time.clock, [this] {
    button.reset();
    ++changes;
  });
  take(UpdateCheckOutcome::upToDate);
  time.clock.advance(seconds(10));
  EXPECT_FALSE(button);
  EXPECT_EQ(changes, 1);
}

} // namespace
} // namespace ventolith::ui
