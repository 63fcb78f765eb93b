// What AppModel derives from its fields, and what it tells its observers.
#include "ModelFixture.h"

namespace ventolith::app {
namespace {

// Derived values.

TEST_F(AppModelTest, TheRepresentativeFanIsTheFastestAndTheFirstOfEquals) {
  auto fast = fan(1);
  auto equal = fan(2);
  fast.currentRPM = equal.currentRPM = 5000;
  readings.next = snapshot({fan(0), fast, equal});
  start();
  EXPECT_EQ(model->representativeFan(), fast);
}

TEST_F(AppModelTest, WithoutFansNoneIsRepresentative) {
  readings.next = snapshot({});
  start();
  EXPECT_EQ(model->representativeFan(), std::nullopt);
}

TEST_F(AppModelTest, TheShownModeFollowsThePlan) {
  const auto shown = [this](FanControlModePlan mode) {
    store.savePlan(support::planOf(std::move(mode)));
    restart();
    return model->mode(fan(0));
  };
  EXPECT_EQ(shown(FanControlModePlan::fixedPercent(100)), core::ControlMode::fullBlast);
  EXPECT_EQ(shown(FanControlModePlan::fixedPercent(99.9)), core::ControlMode::manual);
  EXPECT_EQ(shown(FanControlModePlan::fixedRPM(8000)), core::ControlMode::manual);
  EXPECT_EQ(shown(support::percentAsCelsius()), core::ControlMode::curve);
  EXPECT_EQ(shown(FanControlModePlan::automatic()), core::ControlMode::automatic);
  EXPECT_EQ(model->mode(fan(1)), core::ControlMode::automatic);
}

TEST_F(AppModelTest, TheFirstEntryOfAFanCounts) {
  store.savePlan(fixed({{0, 3000}, {0, 4000}}));
  start();
  EXPECT_EQ(model->planMode(0), FanControlModePlan::fixedRPM(3000));
}

TEST_F(AppModelTest, OnlyAFanOnACurveHasACurve) {
  const auto curve = support::curve({{40, 10}});
  store.savePlan(plan({{0, FanControlModePlan::curve(curve)}, {1, FanControlModePlan::fixedRPM(3000)}}));
  start();
  EXPECT_EQ(model->curve(0), curve);
  EXPECT_EQ(model->curve(1), std::nullopt);
}

TEST_F(AppModelTest, StoppedFansAreThoseOfTheControlState) {
  start();
  EXPECT_TRUE(model->stoppedFanIDs().empty());
  controller().states.yield({.stoppedFans = {{0, 1}}});
  settle();
  EXPECT_EQ(model->stoppedFanIDs(), (std::set<FanID>{0, 1}));
}

// Observers.

TEST_F(AppModelTest, ObserversAreToldOfAReadingBeforeItIsThere) {
  start();
  std::vector<Fields> told;
  core::SensorSnapshot seen;
  const auto observation = model->observe([&](Fields changing) {
    told.push_back(changing);
    seen = model->snapshot();
  });
  const auto before = model->snapshot();
  readings.next = snapshot({fan(7)});
  pass(5);
  EXPECT_EQ(told, (std::vector<Fields>{{Field::snapshot}}));
  EXPECT_EQ(seen, before);
}

TEST_F(AppModelTest, AnActionTellsItsFieldsInTheirOrder) {
  start();
  std::vector<Fields> told;
  const auto observation = model->observe([&](Fields changing) { told.push_back(changing); });
  model->beginManualDrag(fan(0));
  model->commitManualRPM(fan(0));
  EXPECT_EQ(told,
            (std::vector<Fields>{
                {Field::fanSliderRPM}, {Field::draggingFans}, {Field::draggingFans}, {Field::activePlan}}));
}

TEST_F(AppModelTest, AnUpdateCheckTellsItsTwoFieldsTogether) {
  start();
  std::vector<Fields> told;
  const auto observation = model->observe([&](Fields changing) { told.push_back(changing); });
  model->checkForUpdates();
  EXPECT_EQ(told, (std::vector<Fields>{{Field::updateMessage, Field::updateOutcome}}));
}

TEST_F(AppModelTest, ASwapTellsThatTheHelperIsActive) {
  start();
  std::vector<Fields> told;
  const auto observation = model->observe([&](Fields changing) { told.push_back(changing); });
  setHelper(DaemonStatus::enabled);
  EXPECT_EQ(told, (std::vector<Fields>{{Field::isHelperActive}}));
}

TEST_F(AppModelTest, AnObservationThatEndedIsToldNothing) {
  start();
  int told = 0;
  auto observation = model->observe([&](Fields) { ++told; });
  observation.end();
  model->setDashboardVisible(true);
  EXPECT_EQ(told, 0);
}

} // namespace
} // namespace ventolith::app
