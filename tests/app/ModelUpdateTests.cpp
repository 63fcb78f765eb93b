// AppModel's check for updates, with all that can come late, twice or never.
#include "ModelFixture.h"

namespace ventolith::app {
namespace {

using Outcome = UpdateCheckOutcome;

const PlatformError broken{
    .domain = "NSURLErrorDomain", .code = -1001, .description = "The request timed out."};
const PlatformError calledOff{.domain = PlatformErrors::updaterDomain,
                              .code = PlatformErrors::installationCancelled};

class UpdateCheckTest : public AppModelTest {
protected:
  UpdateEngineDelegate& engine() { return *updateService->delegate; }

  void expectShown(const Outcome& outcome) {
    settle();
    EXPECT_EQ(model->updateOutcome(), outcome);
    EXPECT_EQ(model->updateMessage(), outcome.message());
  }
  void expectIdle() {
    settle();
    EXPECT_EQ(model->updateOutcome(), std::nullopt);
    EXPECT_EQ(model->updateMessage(), "No update check has run yet.");
  }
  void check() {
    model->checkForUpdates();
    settle();
  }

  /// Begins a check, once, in the middle of the model's next change.
  [[nodiscard]] runtime::Observation pressAtTheNextChange() {
    return model->observe([this, isPressed = false](Fields) mutable {
      if (!std::exchange(isPressed, true)) model->checkForUpdates();
    });
  }
  void expectThatTheSecondCheckRunsItsCourse() {
    expectShown(Outcome::checking);
    EXPECT_EQ(updateService->checks, 2);
    pass(7); // What was left to do for the first one comes due.
    expectShown(Outcome::checking);
    engine().didFindValidUpdate("2.0");
    expectShown(Outcome::updateAvailable("2.0"));
    pass(4);
    expectIdle();
  }
};

TEST_F(UpdateCheckTest, ACheckIsShownAndHandedToTheEngine) {
  start();
  check();
  expectShown(Outcome::checking);
  EXPECT_EQ(updateService->checks, 1);
}

TEST_F(UpdateCheckTest, AnUpdateIsShownForFourSeconds) {
  start();
  check();
  engine().didFindValidUpdate("2.0");
  engine().didFinishUpdateCycle(std::nullopt);
  expectShown(Outcome::updateAvailable("2.0"));
  pass(3.9);
  expectShown(Outcome::updateAvailable("2.0"));
  pass(0.1);
  expectIdle();
}

TEST_F(UpdateCheckTest, NoUpdateIsShownForFourSeconds) {
  start();
  check();
  engine().didNotFindUpdate();
  expectShown(Outcome::upToDate);
  pass(4);
  expectIdle();
}

TEST_F(UpdateCheckTest, AFailureIsShownForSixSeconds) {
  start();
  check();
  engine().didAbort(broken);
  expectShown(Outcome::failed("The request timed out."));
  pass(5.9);
  expectShown(Outcome::failed("The request timed out."));
  pass(0.1);
  expectIdle();
}

TEST_F(UpdateCheckTest, ACancelledCheckIsSaidAndClearedInTheSameMoment) {
  start();
  check();
  std::vector<std::string> shown;
  const auto observation = model->observe([&](Fields) { shown.push_back(model->updateMessage()); });
  engine().didAbort(calledOff);
  expectIdle();
  EXPECT_EQ(shown, (std::vector{Outcome::checking.message(), Outcome::cancelled.message()}));
}

TEST_F(UpdateCheckTest, ACheckWithoutAnAnswerTimesOut) {
  start();
  check();
  pass(59.9);
  expectShown(Outcome::checking);
  pass(0.1);
  expectShown(Outcome::timedOut);
  pass(6);
  expectIdle();
}

TEST_F(UpdateCheckTest, AnOutcomeInTimeIsNotReplacedByTheTimeOut) {
  start();
  check();
  pass(58);
  engine().didNotFindUpdate();
  pass(2);
  expectShown(Outcome::upToDate);
}

TEST_F(UpdateCheckTest, AnIdleDisplayIsLeftAloneByTheTimeOut) {
  start();
  check();
  engine().didNotFindUpdate();
  pass(60);
  expectIdle();
}

TEST_F(UpdateCheckTest, AnOutcomeAfterTheTimeOutStillLands) {
  start();
  check();
  pass(63);
  engine().didFindValidUpdate("2.0");
  expectShown(Outcome::updateAvailable("2.0"));
  pass(3.5); // The clearing of the time-out comes due and leaves it alone.
  expectShown(Outcome::updateAvailable("2.0"));
  pass(0.5);
  expectIdle();
}

TEST_F(UpdateCheckTest, ASecondCheckReplacesTheFirst) {
  start();
  check();
  pass(30);
  engine().didAbort(broken); // The first one's outcome, which comes to the model too late.
  check();
  EXPECT_EQ(updateService->checks, 2);
  pass(30); // The first one's limit.
  expectShown(Outcome::checking);
  engine().didNotFindUpdate();
  expectShown(Outcome::upToDate);
  pass(4);
  expectIdle();
  pass(60); // The second one's limit finds no check.
  expectIdle();
}

// What an outcome belongs to is decided by when the engine told it.

TEST_F(UpdateCheckTest, AnOutcomeToldBeforeTheFirstCheckIsIgnored) {
  start();
  engine().didAbort(broken);
  check();
  expectShown(Outcome::checking);
}

TEST_F(UpdateCheckTest, AnOutcomeToldBeforeTheSecondCheckIsIgnored) {
  start();
  check();
  engine().didAbort(broken);
  model->checkForUpdates();
  expectShown(Outcome::checking);
  engine().didNotFindUpdate();
  expectShown(Outcome::upToDate);
}

TEST_F(UpdateCheckTest, WhatIsToldAfterTheSecondPressAnswersIt) {
  start();
  check();
  model->checkForUpdates();
  engine().didFindValidUpdate("2.0");
  expectShown(Outcome::updateAvailable("2.0"));
  pass(4);
  expectIdle();
}

TEST_F(UpdateCheckTest, TheEndOfACheckThatAlreadyFailedIsIgnoredByTheNext) {
  start();
  check();
  engine().didAbort(broken);
  engine().didFinishUpdateCycle(broken);
  model->checkForUpdates();
  expectShown(Outcome::checking);
}

TEST_F(UpdateCheckTest, OfTwoReportsOfOneFailureTheFirstCounts) {
  start();
  check();
  engine().didAbort(broken);
  engine().didFinishUpdateCycle(PlatformError{.domain = "Other", .code = 1, .description = "second"});
  expectShown(Outcome::failed("The request timed out."));
}

TEST_F(UpdateCheckTest, AnErrorAtTheEndOfTheCycleAloneCounts) {
  start();
  check();
  engine().didFinishUpdateCycle(broken);
  expectShown(Outcome::failed("The request timed out."));
}

TEST_F(UpdateCheckTest, ACheckOfTheEnginesOwnChangesNothing) {
  start();
  int told = 0;
  const auto observation = model->observe([&](Fields) { ++told; });
  engine().didFindValidUpdate("2.0");
  engine().didAbort(broken);
  engine().didFinishUpdateCycle(broken);
  expectIdle();
  EXPECT_EQ(told, 0);
}

TEST_F(UpdateCheckTest, ANewCheckIsNotClearedWithTheOldOutcome) {
  start();
  check();
  engine().didNotFindUpdate();
  settle();
  pass(3);
  check();
  pass(1);
  expectShown(Outcome::checking);
}

TEST_F(UpdateCheckTest, AnOldOutcomeIsNotClearedBeforeTheSameOneThatIsNew) {
  start();
  check();
  engine().didNotFindUpdate();
  settle();
  pass(3);
  check();
  engine().didNotFindUpdate();
  settle();
  pass(1);
  expectShown(Outcome::upToDate);
  pass(3);
  expectIdle();
}

// An observer is told before a change, and may begin a check from there.

TEST_F(UpdateCheckTest, ACheckBegunWhileAnOutcomeIsPublishedIsShown) {
  start();
  check();
  const auto pressing = pressAtTheNextChange();
  engine().didNotFindUpdate();
  expectThatTheSecondCheckRunsItsCourse();
}

TEST_F(UpdateCheckTest, ACheckBegunWhileTheTimeOutIsPublishedIsShown) {
  start();
  check();
  const auto pressing = pressAtTheNextChange();
  pass(60);
  expectThatTheSecondCheckRunsItsCourse();
}

TEST_F(UpdateCheckTest, ACheckBegunWhileTheDisplayReturnsToIdleIsShown) {
  start();
  check();
  engine().didNotFindUpdate();
  settle();
  const auto pressing = pressAtTheNextChange();
  pass(4);
  expectThatTheSecondCheckRunsItsCourse();
}

TEST_F(UpdateCheckTest, ACheckBegunWhileAnotherOneIsPublishedIsTheOnlyOne) {
  start();
  const auto loops = time.clock.sleeperCount();
  const auto pressing = pressAtTheNextChange();
  check();
  expectShown(Outcome::checking);
  EXPECT_EQ(updateService->checks, 1);
  EXPECT_EQ(time.clock.sleeperCount(), loops + 1); // One limit of time.
  engine().didNotFindUpdate();
  expectShown(Outcome::upToDate);
  pass(4);
  expectIdle();
}

class BuildWithoutUpdatesTest : public UpdateCheckTest {
protected:
  void startWithoutSettings() {
    auto its = dependencies();
    model = AppModel::make({.mainExecutor = its.mainExecutor,
                            .engineExecutor = its.engineExecutor,
                            .clock = its.clock,
                            .smc = its.smc,
                            .sensors = its.sensors,
                            .makePreviewController = its.makePreviewController,
                            .makeHelperController = its.makeHelperController,
                            .daemonService = std::move(its.daemonService),
                            .configStore = its.configStore,
                            .powerSource = std::move(its.powerSource),
                            .bundle = empty,
                            .makeUpdateEngine = its.makeUpdateEngine,
                            .supportURL = std::nullopt,
                            .openURL = its.openURL});
    settle();
  }
  void expectIdleWithReason() {
    settle();
    EXPECT_EQ(model->updateOutcome(), std::nullopt);
    EXPECT_EQ(model->updateMessage(), reason);
  }

  static inline const std::string reason = "Updates are not configured in this build.";
  static inline const MapBundleInfo empty{{}};
};

TEST_F(BuildWithoutUpdatesTest, ItSaysSo) {
  startWithoutSettings();
  EXPECT_FALSE(model->updatesAvailable());
  EXPECT_EQ(updateService->delegate, nullptr);
  expectIdleWithReason();

  for (int press = 0; press < 2; ++press) {
    check();
    expectShown(Outcome::unavailable(reason));
    pass(6);
    expectIdleWithReason();
  }
  EXPECT_EQ(updateService->checks, 0);
}

TEST_F(BuildWithoutUpdatesTest, ASecondPressDoesNotLengthenTheDisplay) {
  startWithoutSettings();
  check();
  pass(3);
  check(); // No new check, which is why the clearing of the first display holds for this one as well.
  pass(2.9);
  expectShown(Outcome::unavailable(reason));
  pass(0.1);
  expectIdleWithReason();
}

TEST_F(UpdateCheckTest, AModelThatIsGoneIsToldNothing) {
  start();
  check();
  const auto delegate = updateService->delegate;
  delegate->didNotFindUpdate();
  release();
  delegate->didAbort(broken);
  settle();
  EXPECT_EQ(time.clock.sleeperCount(), 0U);
}

} // namespace
} // namespace ventolith::app
