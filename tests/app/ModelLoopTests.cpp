// AppModel's start, its loops and its end.
#include "ModelFixture.h"

namespace ventolith::app {
namespace {

using Seconds = std::vector<double>;
using Names = std::vector<std::string>;

TEST_F(AppModelTest, StartsWithNothingStored) {
  readings.readings.isClosed = true;
  start();
  EXPECT_EQ(model->snapshot(), core::SensorSnapshot::empty);
  EXPECT_EQ(model->connectionError(), std::nullopt);
  EXPECT_EQ(model->activePlan(), FanControlPlan::allAutomatic);
  EXPECT_TRUE(model->presets().empty());
  EXPECT_EQ(model->activePresetID(), std::nullopt);
  EXPECT_EQ(model->autoSwitch(), core::AutoSwitchSettings::off);
  EXPECT_EQ(model->powerSource(), PowerSource::unknown);
  EXPECT_TRUE(model->fanSliderRPM().empty());
  EXPECT_TRUE(model->draggingFans().empty());
  EXPECT_FALSE(model->isDashboardVisible());
  EXPECT_EQ(model->controlState(), ControlState::idle);
  EXPECT_FALSE(model->isHelperActive());
  EXPECT_TRUE(model->updatesAvailable());
  EXPECT_EQ(model->updateMessage(), "No update check has run yet.");
  EXPECT_EQ(model->updateOutcome(), std::nullopt);
}

TEST_F(AppModelTest, StartsWithWhatIsStored) {
  const auto stored = preset("Mine", fixed({{0, 3000}}));
  const core::AutoSwitchSettings settings{.enabled = true, .onBatteryPresetID = stored.id};
  store.savePlan(fixed({{1, 4000}}));
  store.savePresets({stored});
  store.saveActivePresetID(stored.id);
  store.saveAutoSwitch(settings);
  start();
  EXPECT_EQ(model->activePlan(), fixed({{1, 4000}}));
  EXPECT_EQ(model->presets(), std::vector{stored});
  EXPECT_EQ(model->activePresetID(), stored.id);
  EXPECT_EQ(model->autoSwitch(), settings);
}

TEST_F(AppModelTest, ADamagedPlanIsAllAutomaticUntilTheNextOneOverwritesIt) {
  const std::filesystem::path file = "/home/user/.config/Ventolith/plan.json";
  const std::string damaged = "{\"fans\" : [";
  disk.put(file, damaged);
  startWithHelper();
  EXPECT_EQ(model->activePlan(), FanControlPlan::allAutomatic);
  EXPECT_EQ(sentCount(), 0U);
  EXPECT_EQ(disk.files().at(file), damaged);

  model->applyPlan(fixed({{0, 3000}}));
  restart();
  EXPECT_EQ(model->activePlan(), fixed({{0, 3000}}));
}

TEST_F(AppModelTest, ReadsEveryFiveSecondsWhileNothingIsHeldOrShown) {
  start();
  pass(15);
  EXPECT_EQ(readings.gaps(), (Seconds{5, 5, 5}));
}

TEST_F(AppModelTest, ReadsEveryTwoSecondsWhileTheDashboardIsVisible) {
  start();
  model->setDashboardVisible(true);
  pass(9);
  EXPECT_EQ(readings.gaps(), (Seconds{5, 2, 2})); // The sleep that has begun is not cut short.
}

TEST_F(AppModelTest, ReadsEveryTwoSecondsWhileAFanIsHeld) {
  store.savePlan(fixed({{0, 3000}}));
  start();
  pass(6);
  EXPECT_EQ(readings.gaps(), (Seconds{2, 2, 2}));
}

TEST_F(AppModelTest, FansThatAreAllAutomaticDoNotShortenThePause) {
  store.savePlan(plan({{0, FanControlModePlan::automatic()}}));
  start();
  pass(5);
  EXPECT_EQ(readings.gaps(), (Seconds{5}));
}

TEST_F(AppModelTest, ThePauseCountsFromTheEndOfTheRead) {
  readings.readTime = std::chrono::seconds(1);
  start();
  pass(12);
  EXPECT_EQ(readings.gaps(), (Seconds{6, 6}));
}

TEST_F(AppModelTest, PublishesEachReading) {
  start();
  readings.next = snapshot({fan(4)});
  pass(5);
  EXPECT_EQ(model->snapshot(), readings.next);
}

TEST_F(AppModelTest, AMachineThatDoesNotOpenEndsTheReadingForGood) {
  driver.openError = hardware::SMCError::driverNotFound();
  store.savePlan(fixed({{0, 3000}}));
  start();
  pass(60);
  EXPECT_EQ(model->connectionError(), "Could not open AppleSMC: " + driver.openError->description());
  EXPECT_TRUE(readings.times.empty());
  EXPECT_TRUE(model->presets().empty());
  EXPECT_EQ(controllers.heartbeats.size(), 12U); // The other loops run on.
}

TEST_F(AppModelTest, RulesAloneSendHeartbeatsAndDoNotShortenThePause) {
  store.savePlan(plan({}, {rule()}));
  start();
  pass(10);
  EXPECT_EQ(controllers.heartbeats.size(), 2U);
  EXPECT_EQ(readings.gaps(), (Seconds{5, 5}));
}

TEST_F(AppModelTest, EntriesThatAreAllAutomaticSendHeartbeats) {
  store.savePlan(plan({{0, FanControlModePlan::automatic()}}));
  start();
  pass(10);
  EXPECT_EQ(controllers.heartbeats.size(), 2U);
}

TEST_F(AppModelTest, AllAutomaticSendsNoHeartbeat) {
  startWithHelper();
  pass(3600);
  EXPECT_TRUE(controllers.heartbeats.empty());
}

TEST_F(AppModelTest, TheFirstHeartbeatComesAfterFiveSeconds) {
  store.savePlan(fixed({{0, 3000}}));
  const auto begin = time.clock.now();
  startWithHelper();
  pass(10);
  EXPECT_EQ(controllers.heartbeatTimes,
            (std::vector{begin + std::chrono::seconds(5), begin + std::chrono::seconds(10)}));
}

TEST_F(AppModelTest, MirrorsTheControllersStatesAndNeverChangesThePlanByThem) {
  start();
  ControlState state;
  state.isHolding = true;
  state.perFanMode[0] = core::ControlMode::manual;
  state.lastError = "refused";
  controller().states.yield(state);
  settle();
  EXPECT_EQ(model->controlState(), state);
  EXPECT_EQ(model->activePlan(), FanControlPlan::allAutomatic);
}

TEST_F(AppModelTest, ReleasingTheModelEndsItsLoopsAndItsController) {
  store.savePlan(fixed({{0, 3000}}));
  startWithHelper();
  pass(7);
  const std::weak_ptr<AppModel> gone = model;
  release();
  EXPECT_TRUE(gone.expired());
  EXPECT_EQ(controllers.alive(), 0U);
  EXPECT_EQ(time.clock.sleeperCount(), 0U);
  EXPECT_GT(socket->stopped, 0);
}

TEST_F(AppModelTest, AModelReleasedBeforeItsLoopsBeginReadsNothing) {
  model = AppModel::make(dependencies());
  release();
  pass(60);
  EXPECT_EQ(driver.opened, 0);
  EXPECT_TRUE(readings.times.empty());
  EXPECT_EQ(registration->asked, 0);
}

TEST_F(AppModelTest, SupportOpensTheConfiguredPage) {
  supportURL = "https://example.com/help";
  start();
  model->openSupport();
  EXPECT_EQ(opened, (Names{"https://example.com/help"}));
}

TEST_F(AppModelTest, SupportWithoutAPageDoesNothing) {
  start();
  model->openSupport();
  EXPECT_TRUE(opened.empty());
}

TEST_F(AppModelTest, QuittingGivesTheFansBackAndLeavesWhatIsStored) {
  store.savePlan(fixed({{0, 3000}}));
  startWithHelper();
  const auto stored = disk.files();
  model->restoreAutoOnQuit();
  settle();
  EXPECT_EQ(controllers.restores, (Names{"helper 2"}));
  EXPECT_EQ(model->activePlan(), fixed({{0, 3000}}));
  EXPECT_EQ(disk.files(), stored);
}

TEST_F(AppModelTest, QuittingWithNothingHeldStillGivesTheFansBack) {
  start();
  model->restoreAutoOnQuit();
  settle();
  EXPECT_EQ(controllers.restores, (Names{"preview 1"}));
}

TEST_F(AppModelTest, AModelReleasedRightAfterItsQuitStillGivesTheFansBack) {
  startWithHelper();
  model->restoreAutoOnQuit();
  release();
  EXPECT_EQ(controllers.restores, (Names{"helper 2"}));
}

TEST_F(AppModelTest, APlanSentBeforeTheQuitIsTakenBackByIt) {
  startWithHelper();
  model->applyPlan(fixed({{0, 3000}}));
  model->restoreAutoOnQuit();
  settle();
  EXPECT_EQ(controllers.calls, (Names{"helper 2 applyPlan", "helper 2 restoreAuto"}));
}

} // namespace
} // namespace ventolith::app
