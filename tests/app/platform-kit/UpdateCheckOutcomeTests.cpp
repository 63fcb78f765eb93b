#include "app/platform-kit/UpdateCheckOutcome.h"

#include <gtest/gtest.h>

#include <vector>

namespace ventolith::app {
namespace {

using Outcome = UpdateCheckOutcome;

struct Row {
  Outcome outcome;
  bool isTerminal;
  std::string_view message;
  std::string_view shortLabel;
  double displaySeconds;
};

const std::vector<Row>& rows() {
  static const std::vector<Row> rows = {
      {Outcome::updateAvailable("1.2.0"), true, "Update available: 1.2.0.", "Update available", 4.0},
      {Outcome::failed("no network"), true, "Update check failed: no network", "Check failed", 6.0},
      {Outcome::unavailable("Not in this build."), true, "Not in this build.", "Unavailable", 6.0},
      {Outcome::checking, false, "Checking for updates\u2026", "Checking\u2026", 0.0},
      {Outcome::upToDate, true, "You're up to date.", "Up to date", 4.0},
      {Outcome::cancelled, true, "Update check cancelled.", "Check for Updates", 0.0},
      {Outcome::timedOut, true, "The update service did not respond. Please try again.", "No response", 6.0},
  };
  return rows;
}

TEST(UpdateCheckOutcome, EachHasItsTextsAndItsTimeOnShow) {
  for (const Row& row : rows()) {
    SCOPED_TRACE(row.message);
    EXPECT_EQ(row.outcome.isTerminal(), row.isTerminal);
    EXPECT_EQ(row.outcome.message(), row.message);
    EXPECT_EQ(row.outcome.shortLabel(), row.shortLabel);
    EXPECT_EQ(row.outcome.transientDisplayDuration(), row.displaySeconds);
  }
}

TEST(UpdateCheckOutcome, IdleHasItsOwnTexts) {
  EXPECT_EQ(Outcome::idleButtonLabel, "Check for Updates");
  EXPECT_EQ(Outcome::idleDetailMessage, "No update check has run yet.");
}

TEST(UpdateCheckOutcome, ACheckMayTakeAMinute) {
  EXPECT_EQ(Outcome::timeoutSeconds, 60.0);
}

TEST(UpdateCheckOutcome, NoTwoOfTheTableAreEqual) {
  for (const Row& one : rows())
    for (const Row& other : rows())
      EXPECT_EQ(one.outcome == other.outcome, &one == &other) << one.message << " and " << other.message;
}

TEST(UpdateCheckOutcome, EqualsTheSameCaseWithTheSamePayload) {
  EXPECT_EQ(Outcome::failed("a"), Outcome::failed("a"));
  EXPECT_NE(Outcome::failed("a"), Outcome::failed("b"));
  EXPECT_NE(Outcome::failed("a"), Outcome::unavailable("a"));
  EXPECT_NE(Outcome::updateAvailable("1.0.0"), Outcome::updateAvailable("1.0.1"));
}

TEST(UpdateCheckOutcome, TheButtonIsDisabledWhileCheckingAndWithoutUpdates) {
  EXPECT_TRUE(Outcome::isCheckButtonDisabled(std::nullopt, false));
  EXPECT_FALSE(Outcome::isCheckButtonDisabled(std::nullopt, true));
  for (const Row& row : rows()) {
    EXPECT_TRUE(Outcome::isCheckButtonDisabled(row.outcome, false)) << row.message;
    EXPECT_EQ(Outcome::isCheckButtonDisabled(row.outcome, true), row.outcome == Outcome::checking)
        << row.message;
  }
}

TEST(UpdateCheckOutcome, TheButtonShowsTheShortLabelOrTheIdleOne) {
  EXPECT_EQ(Outcome::checkButtonLabel(std::nullopt), "Check for Updates");
  EXPECT_EQ(Outcome::checkButtonLabel(Outcome::timedOut), "No response");
}

TEST(UpdateCheckOutcome, TheDetailIsTheMessageOrTheFallback) {
  EXPECT_EQ(Outcome::detailMessage(std::nullopt, "nothing yet"), "nothing yet");
  EXPECT_EQ(Outcome::detailMessage(Outcome::upToDate, "nothing yet"), "You're up to date.");
}

TEST(UpdateCheckOutcome, IsClearedWhileItIsStillTheCurrentOne) {
  EXPECT_TRUE(Outcome::shouldClearOutcome(Outcome::upToDate, 3, 3, Outcome::upToDate));
  EXPECT_TRUE(Outcome::shouldClearOutcome(Outcome::failed("a"), 0, 0, Outcome::failed("a")));
}

TEST(UpdateCheckOutcome, ANewerGenerationKeepsAnEqualOutcome) {
  EXPECT_FALSE(Outcome::shouldClearOutcome(Outcome::upToDate, 3, 4, Outcome::upToDate));
}

TEST(UpdateCheckOutcome, AnotherOutcomeIsNotCleared) {
  EXPECT_FALSE(Outcome::shouldClearOutcome(Outcome::failed("a"), 3, 3, Outcome::failed("b")));
  EXPECT_FALSE(Outcome::shouldClearOutcome(Outcome::upToDate, 3, 3, Outcome::checking));
}

TEST(UpdateCheckOutcome, AnAbsentOutcomeIsNotCleared) {
  EXPECT_FALSE(Outcome::shouldClearOutcome(Outcome::upToDate, 3, 3, std::nullopt));
}

} // namespace
} // namespace ventolith::app
