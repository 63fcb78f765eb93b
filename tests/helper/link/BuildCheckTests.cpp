// How XPCFanController brings the helper to the application's own build.
#include "helper/link/LinkFixture.h"

namespace ventolith::helper {
namespace {

using std::chrono::milliseconds;

class BuildCheckTest : public LinkTest {
protected:
  /// From here on the helper ends when it is asked to, and is there again, with `build`, after `pause`.
  void restartWhenAsked(std::string build, runtime::Duration pause) {
    helper.whenAsked = [this, build = std::move(build), pause](const HelperMessage& message) {
      if (!std::holds_alternative<messages::ShutdownForUpgrade>(message)) return;
      const auto swap = [](BuildCheckTest& test, std::string next, runtime::Duration span) -> Async<void> {
        co_await boost::asio::post(boost::asio::use_awaitable); // After the answer.
        test.link.killHelper();
        co_await test.time.clock.sleep(span, runtime::StopToken());
        test.helper.build = std::move(next);
        test.bringUp();
      };
      runtime::start(time.executor(), "the swap", swap(*this, build, pause));
    };
  }
};

TEST_F(BuildCheckTest, AHelperOfTheSameBuildIsAskedOnce) {
  const auto controller = makeConnectedController();
  for (int time = 0; time < 5; ++time)
    run(controller->automatic());
  EXPECT_EQ(helper.count("HelperVersion"), 0);
  EXPECT_EQ(helper.count("Automatic"), 5);
}

TEST_F(BuildCheckTest, TwoCommandsShareOneCheck) {
  bringUp();
  helper.hold("HelperVersion");
  const auto controller = makeController();
  const auto blast = begin(controller->fullBlast());
  const auto automatic = begin(controller->automatic());
  EXPECT_EQ(helper.log(), (Log{"HelperVersion"})); // No command overtakes the check.
  helper.letGo();
  time.clock.settle();
  EXPECT_EQ(*blast, ControlResult::applied);
  EXPECT_EQ(*automatic, ControlResult::applied);
  EXPECT_EQ(helper.count("HelperVersion"), 1);
}

TEST_F(BuildCheckTest, ACommandThatWaitedPastARestoreIsNotSent) {
  bringUp();
  helper.hold("HelperVersion");
  const auto controller = makeController();
  const auto plan = begin(controller->applyPlan(FanControlPlan::allAutomatic));
  run(controller->restoreAuto());
  helper.letGo();
  pass(10);
  EXPECT_EQ(*plan, ControlResult::acquiring);
  EXPECT_EQ(helper.log(), (Log{"HelperVersion", "RestoreAuto"})); // Nor is anything polled.
}

TEST_F(BuildCheckTest, ACommandAfterARestoreIsSentWhenTheCheckIsOver) {
  bringUp();
  helper.hold("HelperVersion");
  const auto controller = makeController();
  run(controller->restoreAuto());
  const auto blast = begin(controller->fullBlast());
  helper.letGo();
  time.clock.settle();
  EXPECT_EQ(*blast, ControlResult::applied);
  EXPECT_EQ(helper.log(), (Log{"HelperVersion", "RestoreAuto", "FullBlast", "ReadState"}));
}

TEST_F(BuildCheckTest, ACommandWaitsForTheWholeSwap) {
  bringUp();
  helper.build = "1.0.2+5";
  restartWhenAsked(ownBuild, milliseconds(100));
  const auto controller = makeController();
  const auto result = begin(controller->automatic());
  pass(0.299);
  EXPECT_EQ(*result, std::nullopt);
  pass(0.001);
  EXPECT_EQ(*result, ControlResult::applied);
  EXPECT_EQ(helper.log(), (Log{"HelperVersion", "ShutdownForUpgrade", "HelperVersion", "Automatic"}));
  EXPECT_EQ(attempts.count(), 1);
}

TEST_F(BuildCheckTest, AnySingleCharacterMakesAnotherBuild) {
  for (const std::string& build : {"1.0.3+7", "1.0.3+60", "1.0.3+", "1.0.3+6 ", " 1.0.3+6", "", "2.0.0+6"}) {
    ProcessWideCounter none;
    bringUp();
    helper.messages.clear();
    helper.build = build;
    const auto controller = XPCFanController::make(time.executor(), time.executor(), time.clock,
                                                   link.channels(), {.ownBuildVersion = ownBuild}, none);
    time.clock.settle();
    EXPECT_EQ(helper.log(), (Log{"HelperVersion", "ShutdownForUpgrade"})) << build;
    kill();
  }
}

TEST_F(BuildCheckTest, TheOwnBuildIsThisProgramsUnlessToldOtherwise) {
  bringUp();
  helper.build = HelperBuildVersion::identifier;
  const auto controller = makeController(XPCFanControllerOptions());
  EXPECT_EQ(helper.log(), (Log{"HelperVersion"}));
}

TEST_F(BuildCheckTest, AfterThreeShutdownRequestsTheHelperIsStale) {
  bringUp();
  helper.build = "old";
  const auto manager = makeManager();
  const auto controller = makeController();
  pass(0.8);
  EXPECT_FALSE(manager->isHelperStale());
  pass(0.1); // Three pauses of 0.3 s.
  EXPECT_TRUE(manager->isHelperStale());
  pass(60);
  EXPECT_EQ(helper.count("ShutdownForUpgrade"), 3);
  EXPECT_EQ(helper.count("HelperVersion"), 4);
  EXPECT_EQ(attempts.count(), 3);
}

TEST_F(BuildCheckTest, TheLimitIsAnOption) {
  bringUp();
  helper.build = "old";
  const auto manager = makeManager();
  const auto controller = makeController({.ownBuildVersion = ownBuild, .maxUpgradeAttempts = 0});
  EXPECT_TRUE(manager->isHelperStale());
  EXPECT_EQ(helper.log(), (Log{"HelperVersion"}));
}

TEST_F(BuildCheckTest, TheAttemptsAreCountedAcrossControllers) {
  bringUp();
  helper.build = "old";
  auto first = makeController();
  pass(0.3); // The second attempt.
  first.reset();
  time.clock.settle();
  ASSERT_EQ(helper.count("ShutdownForUpgrade"), 2);
  const auto second = makeController();
  pass(60);
  EXPECT_EQ(helper.count("ShutdownForUpgrade"), 3);
  EXPECT_EQ(attempts.count(), 3);
}

TEST_F(BuildCheckTest, TheAttemptsOfAProcessStartAtNone) {
  EXPECT_EQ(ProcessWideCounter().count(), 0);
  EXPECT_EQ(&processWideUpgradeAttempts(), &processWideUpgradeAttempts());
}

TEST_F(BuildCheckTest, ControllersOfAProcessShareItsAttemptsUnlessTheyAreGivenOthers) {
  bringUp();
  helper.build = "old";
  const auto before = processWideUpgradeAttempts().count();
  for (int controllers = 0; controllers < 2; ++controllers) {
    const auto controller =
        XPCFanController::make(time.executor(), time.executor(), time.clock, link.channels(),
                               {.ownBuildVersion = ownBuild, .maxUpgradeAttempts = before + 1});
    pass(5);
  }
  EXPECT_EQ(processWideUpgradeAttempts().count(), before + 1);
}

TEST_F(BuildCheckTest, ANewConnectionDoesNotStartTheCountAnew) {
  bringUp();
  helper.build = "old";
  const auto controller = makeController();
  pass(1);
  kill();
  bringUp();
  run(controller->automatic());
  EXPECT_EQ(helper.count("ShutdownForUpgrade"), 3);
}

TEST_F(BuildCheckTest, AStaleVerdictStopsNoCommand) {
  bringUp();
  helper.build = "old";
  const auto manager = makeManager();
  const auto controller = makeController();
  pass(1);
  ASSERT_TRUE(manager->isHelperStale());
  helper.messages.clear();
  EXPECT_EQ(run(controller->automatic()), ControlResult::applied);
  EXPECT_EQ(run(controller->automatic()), ControlResult::applied);
  EXPECT_EQ(helper.log(), (Log{"Automatic", "Automatic"})); // And nobody asks again.
}

TEST_F(BuildCheckTest, AHelperThatDoesNotTellIsStaleWithoutAnAttempt) {
  bringUp();
  helper.answers["HelperVersion"] = Refusal{Refusal::Reason::shuttingDown, "ending"};
  const auto manager = makeManager();
  const auto controller = makeController();
  EXPECT_TRUE(manager->isHelperStale());
  EXPECT_EQ(helper.count("ShutdownForUpgrade"), 0);
}

TEST_F(BuildCheckTest, WithoutAHelperItIsStale) {
  const auto manager = makeManager();
  const auto controller = makeController();
  EXPECT_TRUE(manager->isHelperStale());
}

TEST_F(BuildCheckTest, AHelperThatIsNotBackInTimeIsStaleUntilItIs) {
  bringUp();
  helper.build = "old";
  restartWhenAsked(ownBuild, milliseconds(500));
  const auto manager = makeManager();
  const auto controller = makeController();
  pass(0.3);
  EXPECT_TRUE(manager->isHelperStale());
  pass(1);
  link.breakChannels(); // A change of the connection.
  time.clock.settle();
  EXPECT_EQ(run(controller->automatic()), ControlResult::applied);
  EXPECT_FALSE(manager->isHelperStale());
}

TEST_F(BuildCheckTest, ARestartedHelperOfTheOwnBuildIsNotStaleAnyMore) {
  bringUp();
  helper.build = "old";
  const auto manager = makeManager();
  const auto controller = makeController();
  pass(1);
  ASSERT_TRUE(manager->isHelperStale());
  helper.build = ownBuild;
  restart();
  run(controller->automatic());
  EXPECT_FALSE(manager->isHelperStale());
}

TEST_F(BuildCheckTest, AShutdownRequestThatIsNotAnsweredWaits) {
  bringUp();
  helper.build = "old";
  helper.hold("ShutdownForUpgrade");
  const auto controller = makeController();
  pass(60);
  EXPECT_EQ(helper.log(), (Log{"HelperVersion", "ShutdownForUpgrade"}));
  helper.build = ownBuild;
  restart(); // Which ends the request.
  pass(0.3);
  EXPECT_EQ(helper.log(), (Log{"HelperVersion"}));
}

TEST_F(BuildCheckTest, AConnectionThatBreaksOverTheSwapIsReplaced) {
  bringUp();
  helper.build = "old";
  helper.hold("ShutdownForUpgrade");
  const auto controller = makeController();
  helper.build = ownBuild;
  link.breakChannels();
  pass(0.3);
  EXPECT_EQ(link.channelsMade(), 2U);
  EXPECT_EQ(helper.log(), (Log{"HelperVersion", "ShutdownForUpgrade", "HelperVersion"}));
}

TEST_F(BuildCheckTest, AVerdictOnAHelperThatHasGoneMeanwhileIsNone) {
  bringUp();
  helper.hold("HelperVersion");
  const auto controller = makeController();
  kill(); // The check ends without a reply, which says nothing about the next helper.
  helper.letGo();
  bringUp();
  helper.messages.clear();
  run(controller->automatic());
  EXPECT_EQ(helper.log(), (Log{"HelperVersion", "Automatic"}));
}

TEST_F(BuildCheckTest, AHelperThatNeverTellsHoldsCommandsUntilItIsGone) {
  bringUp();
  helper.hold("HelperVersion");
  const auto controller = makeController();
  const auto result = begin(controller->automatic());
  pass(3600);
  EXPECT_EQ(*result, std::nullopt);
  kill();
  EXPECT_EQ(*result, ControlResult::noHelper);
}

TEST_F(BuildCheckTest, AControllerThatIsLetGoEndsItsCheck) {
  bringUp();
  helper.build = "old";
  auto controller = makeController();
  const auto result = begin(controller->automatic());
  controller.reset();
  pass(60);
  EXPECT_EQ(*result, ControlResult::noHelper);
  EXPECT_EQ(helper.count("ShutdownForUpgrade"), 1);
  EXPECT_EQ(helper.count("HelperVersion"), 1);
}

TEST_F(BuildCheckTest, IsReportedOnTheMainExecutor) {
  bringUp();
  const auto manager = makeManager();
  boost::asio::io_context mainLoop;
  HelperManager::reportHelperStale(true);
  const auto controller = XPCFanController::make(time.executor(), mainLoop.get_executor(), time.clock,
                                                 link.channels(), {.ownBuildVersion = ownBuild}, attempts);
  const auto result = begin(controller->automatic());
  EXPECT_TRUE(manager->isHelperStale());
  EXPECT_EQ(*result, std::nullopt); // The check has not ended yet.
  mainLoop.poll();
  EXPECT_FALSE(manager->isHelperStale());
  time.clock.settle();
  EXPECT_EQ(*result, ControlResult::applied);
}

} // namespace
} // namespace ventolith::helper
