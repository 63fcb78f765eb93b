// AppModel and the helper: the replacement of the controller, and the helper's registration.
#include "ModelFixture.h"

namespace ventolith::app {
namespace {

using Names = std::vector<std::string>;

TEST_F(AppModelTest, AHelperThatIsEnabledAlreadyGetsTheStoredPlanBeforeTheFirstReading) {
  store.savePlan(fixed({{0, 3000}}));
  readings.readings.isClosed = true;
  startWithHelper();
  EXPECT_TRUE(model->isHelperActive());
  EXPECT_EQ(controllers.plans, (std::vector<ControllerLog::Sent>{{"helper 2", fixed({{0, 3000}})}}));
  pass(60);
  EXPECT_EQ(sentCount(), 1U);
}

TEST_F(AppModelTest, NoReadingWaitsForTheHelpersStatus) {
  registration->answers.isClosed = true;
  start();
  pass(10);
  EXPECT_EQ(readings.times.size(), 3U);
  EXPECT_EQ(model->helperManager(), nullptr);
}

TEST_F(AppModelTest, AHelperEnabledMeanwhileIsTakenUpWithinThreeSeconds) {
  store.savePlan(fixed({{0, 3000}}));
  start();
  pass(4);
  registration->status = DaemonStatus::enabled;
  pass(1.9);
  EXPECT_FALSE(model->isHelperActive());
  pass(0.1);
  EXPECT_TRUE(model->isHelperActive());
  EXPECT_TRUE(model->canControlFans());
  EXPECT_EQ(controllers.plans, (std::vector<ControllerLog::Sent>{{"helper 2", fixed({{0, 3000}})}}));
}

TEST_F(AppModelTest, AnEmptyPlanIsNotSentToAHelperThatIsEnabled) {
  startWithHelper();
  EXPECT_TRUE(model->isHelperActive());
  EXPECT_EQ(sentCount(), 0U);
}

TEST_F(AppModelTest, APlanOfRulesIsSentToAHelperThatIsEnabled) {
  store.savePlan(plan({}, {rule()}));
  startWithHelper();
  EXPECT_EQ(sentCount(), 1U);
}

TEST_F(AppModelTest, APlanOfAutomaticEntriesIsSentToAHelperThatIsEnabled) {
  const auto stored = plan({{0, FanControlModePlan::automatic()}});
  store.savePlan(stored);
  startWithHelper();
  EXPECT_EQ(controllers.plans, (std::vector<ControllerLog::Sent>{{"helper 2", stored}}));
}

TEST_F(AppModelTest, ADisabledHelperLeavesThePlanAndGetsItAgainOnItsReturn) {
  store.savePlan(fixed({{0, 3000}}));
  startWithHelper();
  setHelper(DaemonStatus::notRegistered);
  EXPECT_FALSE(model->canControlFans());
  EXPECT_EQ(model->activePlan(), fixed({{0, 3000}}));

  model->setFanAutomatic(fan(1)); // Goes to the preview.
  settle();
  setHelper(DaemonStatus::enabled);
  EXPECT_EQ(controllers.plans, (std::vector<ControllerLog::Sent>{{"helper 2", fixed({{0, 3000}})},
                                                                 {"preview 3", fixed({{0, 3000}})},
                                                                 {"helper 4", fixed({{0, 3000}})}}));
}

TEST_F(AppModelTest, AnyOtherStatusThanEnabledIsInactive) {
  for (const auto status :
       {DaemonStatus::notRegistered, DaemonStatus::requiresApproval, DaemonStatus::notFound}) {
    startWithHelper();
    setHelper(status);
    EXPECT_FALSE(model->isHelperActive()) << static_cast<int>(status);
    release();
  }
}

TEST_F(AppModelTest, APlanRefusedOnReactivationStays) {
  store.savePlan(fixed({{0, 3000}}));
  controllers.results = {ControlResult::noHelper};
  startWithHelper();
  EXPECT_EQ(model->activePlan(), fixed({{0, 3000}}));
  EXPECT_EQ(sentCount(), 1U);
}

TEST_F(AppModelTest, NothingOfAnOldControllerStays) {
  start();
  for (int round = 0; round < 10; ++round) {
    setHelper(DaemonStatus::enabled);
    setHelper(DaemonStatus::notFound);
  }
  EXPECT_EQ(controllers.made, 21);
  EXPECT_EQ(controllers.alive(), 1U);
}

TEST_F(AppModelTest, ACommandUnderWayEndsOnTheOldController) {
  start();
  controllers.commands.isClosed = true;
  model->applyPlan(fixed({{0, 3000}}));
  settle();
  setHelper(DaemonStatus::enabled);
  EXPECT_EQ(controllers.alive(), 2U);
  controllers.commands.open();
  settle();
  EXPECT_EQ(controllers.alive(), 1U);
  EXPECT_EQ(controllers.plans.front().controller, "preview 1");
}

TEST_F(AppModelTest, StatesOfAnOldControllerAreNotMirrored) {
  start();
  controllers.commands.isClosed = true;
  model->applyPlan(fixed({{0, 3000}}));
  settle();
  auto& old = controller(); // Kept by the command.
  setHelper(DaemonStatus::enabled);
  ControlState late;
  late.lastError = "late";
  old.states.yield(late);
  settle();
  EXPECT_EQ(model->controlState(), ControlState::idle);
}

TEST_F(AppModelTest, StatesOfAnOldControllerThatACommandKeepsDoNotPileUp) {
  start();
  controllers.commands.isClosed = true; // The command takes as long as it likes.
  model->applyPlan(fixed({{0, 3000}}));
  settle();
  auto& old = controller();
  setHelper(DaemonStatus::enabled);
  for (int times = 0; times < 3; ++times) {
    old.states.yield({.lastError = "late"});
    settle();
    EXPECT_EQ(old.states.tryNext(), std::nullopt) << times;
  }
}

TEST_F(AppModelTest, OnboardingRegistersAndTakesTheHelperUp) {
  registration->statusAfterRegistering = DaemonStatus::enabled;
  start();
  model->beginHelperOnboarding();
  settle();
  EXPECT_TRUE(model->isHelperActive());
  EXPECT_EQ(registration->log, (Names{"register"}));
}

TEST_F(AppModelTest, OnboardingLeadsToWhereTheHelperIsAllowed) {
  registration->statusAfterRegistering = DaemonStatus::requiresApproval;
  start();
  model->beginHelperOnboarding();
  settle();
  EXPECT_FALSE(model->isHelperActive());
  EXPECT_EQ(registration->log, (Names{"register", "openSystemSettings"}));
}

TEST_F(AppModelTest, OnboardingBeforeTheFirstStatusWaitsForIt) {
  registration->answers.isClosed = true;
  start();
  model->beginHelperOnboarding();
  settle();
  EXPECT_TRUE(registration->log.empty());
  registration->answers.open();
  settle();
  EXPECT_EQ(registration->log, (Names{"register"}));
}

TEST_F(AppModelTest, ASecondOnboardingWhileOneRunsDoesNothing) {
  start();
  registration->statusAfterRegistering = DaemonStatus::requiresApproval;
  model->beginHelperOnboarding();
  model->beginHelperOnboarding();
  settle();
  EXPECT_EQ(registration->log, (Names{"register", "openSystemSettings"}));
}

TEST_F(AppModelTest, OnboardingThatHasEndedCanBeginAgain) {
  start();
  model->beginHelperOnboarding();
  settle();
  model->beginHelperOnboarding();
  settle();
  EXPECT_EQ(registration->log, (Names{"register", "register"}));
}

TEST_F(AppModelTest, OnboardingOfAModelThatIsGoneBeforeTheFirstStatusRegistersNothing) {
  registration->answers.isClosed = true;
  start();
  model->beginHelperOnboarding();
  settle();
  release();
  registration->answers.open();
  settle();
  EXPECT_TRUE(registration->log.empty());
}

} // namespace
} // namespace ventolith::app
