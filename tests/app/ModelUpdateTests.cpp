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

TEST_F(UpdateCheckTest, ABuildWithoutSettingsSaysSo) {
  const std::string reason = "Updates are not configured in this build.";
  const MapBundleInfo empty{{}};
  auto its = dependencies();
  AppModelDependencies without{.mainExecutor = its.mainExecutor,
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
                               .openURL = its.openURL};
  model = AppModel::make(std::move(without));
  settle();
  EXPECT_FALSE(model->updatesAvailable());
  EXPECT_EQ(updateService->delegate, nullptr);
  EXPECT_EQ(model->updateMessage(), reason);

  for (int press = 0; press < 2; ++press) {
    check();
    expectShown(Outcome::unavailable(reason));
    pass(6);
    EXPECT_EQ(model->updateOutcome(), std::nullopt);
    EXPECT_EQ(model->updateMessage(), reason);
  }
  EXPECT_EQ(updateService->checks, 0);
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

TEST_F(UpdateCheckTest, TheDelegateOffersTheChannelsOfTheBuild) {
  start();
  EXPECT_EQ(engine().allowedChannels(), sparkleAllowedChannels(UpdateChannel::stable));
}

// Pure.

TEST(UpdateController, TellsWhatAnAbortComesTo) {
  const auto underlying = [](PlatformError error) {
    return PlatformError{.domain = "Outer",
                         .code = 1,
                         .description = "outer",
                         .underlying = std::make_shared<const PlatformError>(std::move(error))};
  };
  const PlatformError urlCancelled{.domain = "NSURLErrorDomain", .code = -999};
  const PlatformError userCancelled{.domain = "NSCocoaErrorDomain", .code = 3072};
  const PlatformError task{.domain = "x", .code = 1, .isTaskCancellation = true};

  EXPECT_EQ(outcomeForAbort({.domain = "SUSparkleErrorDomain", .code = 1001}), Outcome::upToDate);
  EXPECT_EQ(outcomeForAbort({.domain = "SUSparkleErrorDomain", .code = 4007}), Outcome::cancelled);
  EXPECT_EQ(outcomeForAbort(urlCancelled), Outcome::cancelled);
  EXPECT_EQ(outcomeForAbort(userCancelled), Outcome::cancelled);
  EXPECT_EQ(outcomeForAbort(task), Outcome::cancelled);
  EXPECT_EQ(outcomeForAbort(underlying(urlCancelled)), Outcome::cancelled);
  EXPECT_EQ(outcomeForAbort(underlying(userCancelled)), Outcome::cancelled);

  EXPECT_EQ(outcomeForAbort(underlying(underlying(urlCancelled))), Outcome::failed("outer"));
  EXPECT_EQ(outcomeForAbort(underlying(task)), Outcome::failed("outer"));
  EXPECT_EQ(outcomeForAbort(underlying({.domain = "SUSparkleErrorDomain", .code = 4007})),
            Outcome::failed("outer"));
  EXPECT_EQ(outcomeForAbort({.domain = "NSCocoaErrorDomain", .code = -999, .description = "d"}),
            Outcome::failed("d"));
  EXPECT_EQ(outcomeForAbort({.domain = "NSURLErrorDomain", .code = 1001, .description = "d"}),
            Outcome::failed("d"));
}

} // namespace
} // namespace ventolith::app
