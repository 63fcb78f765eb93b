// AppModel's control actions, and what a refusal takes back.
#include "ModelFixture.h"

#include "app/ControlActions.h"

namespace ventolith::app {
namespace {

using Plans = std::vector<FanControlPlan>;

class ControlActionTest : public AppModelTest {
protected:
  /// With `stored` in force, a preset active, and a helper that has the plan.
  void startWith(FanControlPlan stored) {
    const auto active = preset("Active", fixed({{0, 1}}));
    store.savePlan(stored);
    store.savePresets({active});
    store.saveActivePresetID(active.id);
    startWithHelper();
    controllers.plans.clear();
  }
  /// What was sent since, all of it published and stored as well.
  FanControlPlan onlySent() {
    settle();
    EXPECT_EQ(sentCount(), 1U);
    EXPECT_EQ(store.loadPlan(), model->activePlan());
    EXPECT_EQ(sentPlans(), Plans{model->activePlan()});
    return model->activePlan();
  }
  [[nodiscard]] bool isPresetActive() const {
    EXPECT_EQ(store.loadActivePresetID(), model->activePresetID());
    return model->activePresetID().has_value();
  }
};

TEST_F(ControlActionTest, AutomaticForOneFanLeavesAllElse) {
  const auto curve = support::percentAsCelsius();
  const auto hot = rule();
  startWith(plan({{0, curve}, {1, curve}}, {hot}));
  model->setFanAutomatic(fan(0));
  EXPECT_EQ(onlySent(), plan({{1, curve}}, {hot}));
  EXPECT_FALSE(isPresetActive());
}

TEST_F(ControlActionTest, FullBlastForOneFanMakesItsOneEntryTheLast) {
  startWith(fixed({{0, 3000}, {1, 4000}, {0, 5000}}));
  model->setFanFullBlast(fan(0));
  EXPECT_EQ(onlySent(), (FanControlPlan{.fans = {{1, FanControlModePlan::fixedRPM(4000)},
                                                 {0, FanControlModePlan::fixedPercent(100)}}}));
  EXPECT_EQ(model->fanSliderRPM().at(0), 8000);
  EXPECT_FALSE(isPresetActive());
}

TEST_F(ControlActionTest, ADragBeginsAtTheMinimumOfAFanThatStands) {
  startWith({});
  auto standing = fan(0, 1200, 6000);
  standing.currentRPM = 0;
  model->beginManualDrag(standing);
  EXPECT_EQ(model->sliderValue(standing), 1200);
  EXPECT_EQ(model->draggingFans(), (std::set<FanID>{0}));
}

TEST_F(ControlActionTest, ADragPicksUpWhereTheLastOneLeftTheSlider) {
  startWith({});
  model->previewSliderRPM(fan(0), 4321);
  model->commitManualRPM(fan(0));
  model->setFanAutomatic(fan(0));
  model->beginManualDrag(fan(0));
  EXPECT_EQ(model->sliderValue(fan(0)), 4321);
}

TEST_F(ControlActionTest, AMovingSliderSendsNothing) {
  startWith({});
  model->beginManualDrag(fan(0));
  for (int rpm = 2000; rpm < 3000; ++rpm)
    model->previewSliderRPM(fan(0), rpm);
  settle();
  EXPECT_EQ(sentCount(), 0U);
  EXPECT_EQ(model->sliderValue(fan(0)), 2999);
  EXPECT_TRUE(isPresetActive());
}

TEST_F(ControlActionTest, ACommitSendsTheRoundedSpeed) {
  startWith({});
  model->previewSliderRPM(fan(0), 2345.6);
  model->commitManualRPM(fan(0));
  EXPECT_EQ(onlySent(), fixed({{0, 2346}}));
  EXPECT_FALSE(isPresetActive());
}

TEST_F(ControlActionTest, HalvesAreRoundedAwayFromZero) {
  startWith({});
  model->previewSliderRPM(fan(0), 2344.5);
  model->commitManualRPM(fan(0));
  EXPECT_EQ(onlySent(), fixed({{0, 2345}}));
}

TEST_F(ControlActionTest, ACommitDoesNotMindTheLimitsOfTheFan) {
  startWith({});
  model->previewSliderRPM(fan(0), 99999);
  model->commitManualRPM(fan(0));
  EXPECT_EQ(onlySent(), fixed({{0, 99999}}));
}

TEST_F(ControlActionTest, ACommitWithoutASliderPinsTheFanAtItsSpeed) {
  startWith({});
  auto running = fan(1);
  running.currentRPM = 2789;
  model->commitManualRPM(running);
  EXPECT_EQ(onlySent(), fixed({{1, 2789}}));
}

TEST_F(ControlActionTest, AfterACommitTheSliderShowsThePlan) {
  startWith({});
  model->previewSliderRPM(fan(0), 2345.6);
  model->commitManualRPM(fan(0));
  EXPECT_TRUE(model->draggingFans().empty());
  EXPECT_EQ(model->sliderValue(fan(0)), 2346);
  EXPECT_EQ(model->fanSliderRPM().at(0), 2345.6);
}

TEST_F(ControlActionTest, AnAbandonedDragSendsNothingAndShowsThePlan) {
  startWith(fixed({{0, 3000}}));
  model->beginManualDrag(fan(0));
  model->previewSliderRPM(fan(0), 2345.6);
  model->abandonManualDrag(fan(0));
  settle();
  EXPECT_EQ(sentCount(), 0U);
  EXPECT_TRUE(model->draggingFans().empty());
  EXPECT_EQ(model->sliderValue(fan(0)), 3000);
  EXPECT_TRUE(isPresetActive());
}

TEST_F(ControlActionTest, FullBlastForAllIsForTheFansOfTheSnapshot) {
  const auto hot = rule();
  startWith(plan({{5, FanControlModePlan::fixedRPM(1)}}, {hot}));
  model->activateFullBlast();
  EXPECT_EQ(
      onlySent(),
      plan({{0, FanControlModePlan::fixedPercent(100)}, {1, FanControlModePlan::fixedPercent(100)}}, {hot}));
  EXPECT_EQ(model->fanSliderRPM(), (std::map<FanID, double>{{0, 8000}, {1, 8000}}));
  EXPECT_FALSE(isPresetActive());
}

TEST_F(ControlActionTest, FullBlastWithoutFansTakesAllFansOut) {
  readings.next = snapshot({});
  const auto hot = rule();
  startWith(plan({{0, FanControlModePlan::fixedRPM(1)}}, {hot}));
  model->activateFullBlast();
  EXPECT_EQ(onlySent(), plan({}, {hot}));
}

TEST_F(ControlActionTest, AutomaticForAllTakesRulesAndTuningToo) {
  startWith(plan({{0, FanControlModePlan::fixedRPM(1)}}, {rule()}));
  model->activateAutomatic();
  EXPECT_EQ(onlySent(), FanControlPlan::allAutomatic);
  EXPECT_FALSE(isPresetActive());
}

TEST_F(ControlActionTest, ACurveForLinkedFansIsTheSameForAll) {
  startWith(fixed({{1, 3000}, {2, 4000}}));
  const auto curve = support::curve({{40, 10}, {80, 90}});
  model->setFanCurve(curve, {1, 0});
  EXPECT_EQ(onlySent(), (FanControlPlan{.fans = {{2, FanControlModePlan::fixedRPM(4000)},
                                                 {1, FanControlModePlan::curve(curve)},
                                                 {0, FanControlModePlan::curve(curve)}}}));
  EXPECT_FALSE(isPresetActive());
}

TEST_F(ControlActionTest, TuningLeavesThePresetActive) {
  startWith(fixed({{0, 3000}}));
  model->setTuning(support::direct);
  EXPECT_EQ(onlySent().tuning, support::direct);
  EXPECT_EQ(model->activePlan().fans, fixed({{0, 3000}}).fans);
  EXPECT_TRUE(isPresetActive());
}

TEST_F(ControlActionTest, ARuleIsAddedAtTheEnd) {
  const auto first = rule();
  const auto second = rule();
  startWith(plan({}, {first}));
  model->addRule(second);
  EXPECT_EQ(onlySent().rules, (std::vector{first, second}));
  EXPECT_TRUE(isPresetActive());
}

TEST_F(ControlActionTest, ARuleIsEditedInItsPlace) {
  const auto first = rule();
  const auto second = rule();
  startWith(plan({}, {first, second}));
  auto edited = first;
  edited.name = "edited";
  model->updateRule(edited);
  EXPECT_EQ(onlySent().rules, (std::vector{edited, second}));
}

TEST_F(ControlActionTest, AnUnknownRuleStillSendsThePlanAgain) {
  const auto stored = plan({}, {rule()});
  startWith(stored);
  model->updateRule(rule());
  EXPECT_EQ(onlySent(), stored);
}

TEST_F(ControlActionTest, ARuleIsDeletedByItsIdentifier) {
  const auto first = rule();
  const auto second = rule();
  startWith(plan({}, {first, second}));
  model->deleteRule(first.id);
  EXPECT_EQ(onlySent().rules, std::vector{second});
  EXPECT_TRUE(isPresetActive());
}

TEST_F(ControlActionTest, RulesMoveBeforeTheOneAtTheDestination) {
  const auto a = rule();
  const auto b = rule();
  const auto c = rule();
  startWith(plan({}, {a, b, c}));
  model->moveRules({0}, 2);
  EXPECT_EQ(onlySent().rules, (std::vector{b, a, c}));
  EXPECT_TRUE(isPresetActive());
}

TEST_F(ControlActionTest, ActionsWithoutAHelperGoToThePreview) {
  start();
  model->setFanFullBlast(fan(0));
  settle();
  EXPECT_EQ(controllers.plans.front().controller, "preview 1");
}

TEST_F(ControlActionTest, AnActionPublishesAndStoresBeforeAnythingIsSent) {
  startWith({});
  model->setFanFullBlast(fan(0));
  EXPECT_EQ(sentCount(), 0U);
  EXPECT_EQ(store.loadPlan(), model->activePlan());
  EXPECT_EQ(model->mode(fan(0)), core::ControlMode::fullBlast);
}

TEST_F(ControlActionTest, PlansAreSentInTheOrderOfTheActions) {
  startWith({});
  model->applyPlan(fixed({{0, 3000}}));
  model->applyPlan(fixed({{0, 4000}}));
  model->applyPlan(fixed({{0, 5000}}));
  settle();
  EXPECT_EQ(sentPlans(), (Plans{fixed({{0, 3000}}), fixed({{0, 4000}}), fixed({{0, 5000}})}));
}

TEST_F(ControlActionTest, APlanGoesToTheControllerOfTheMomentItIsSent) {
  start();
  const auto tuned = plan({}, {}); // Which a helper is not sent again when it is taken up.
  const auto askForItBeforeTheSwap = [&](Fields changing) {
    if (changing.contains(Field::isHelperActive)) model->applyPlan(tuned);
  };
  const auto observation = model->observe(askForItBeforeTheSwap);
  setHelper(DaemonStatus::enabled);
  EXPECT_EQ(controllers.plans, (std::vector<ControllerLog::Sent>{{"helper 2", tuned}}));
}

TEST_F(ControlActionTest, AFailedSaveDoesNotKeepThePlanFromBeingSent) {
  startWith({});
  auto endless = fixed({{0, std::numeric_limits<double>::infinity()}}); // Has no form on disk.
  model->applyPlan(endless);
  settle();
  EXPECT_EQ(store.loadPlan(), FanControlPlan{});
  EXPECT_EQ(sentPlans(), Plans{endless});
}

TEST_F(ControlActionTest, AnAppliedPlanAndOneUnderWayStay) {
  startWith({});
  controllers.results = {ControlResult::applied, ControlResult::acquiring};
  model->applyPlan(fixed({{0, 3000}}));
  model->applyPlan(fixed({{0, 4000}}));
  settle();
  EXPECT_EQ(model->activePlan(), fixed({{0, 4000}}));
  EXPECT_EQ(sentCount(), 2U);
}

TEST_F(ControlActionTest, EveryOtherResultTakesTheFansOutOnce) {
  const auto hot = rule();
  const std::vector<ControlResult> refusals = {ControlResult::rejected(5),   ControlResult::failed("x"),
                                               ControlResult::timedOut,      ControlResult::reclaimed,
                                               ControlResult::notPrivileged, ControlResult::noHelper};
  for (const auto& refusal : refusals) {
    startWith({});
    controllers.results = {refusal, refusal};
    const auto asked =
        plan({{0, FanControlModePlan::fixedRPM(1)}, {1, FanControlModePlan::fixedRPM(2)}}, {hot});
    model->applyPlan(asked);
    settle();
    EXPECT_EQ(model->activePlan(), plan({}, {hot})) << refusal.text();
    EXPECT_EQ(store.loadPlan(), plan({}, {hot}));
    EXPECT_EQ(sentPlans(), (Plans{asked, plan({}, {hot})})) << refusal.text();
    EXPECT_TRUE(isPresetActive());
    controllers.results.clear();
    release();
  }
}

TEST_F(ControlActionTest, ARevertWorksOnTheNewerPlan) {
  startWith({});
  controllers.commands.isClosed = true;
  controllers.results = {ControlResult::timedOut};
  model->applyPlan(fixed({{0, 3000}}));
  settle();
  const auto hot = rule();
  auto newer = fixed({{1, 4000}, {0, 5000}});
  newer.rules = {hot};
  model->applyPlan(newer);
  settle();
  controllers.commands.open();
  settle();
  auto reverted = fixed({{1, 4000}}); // The fan was also in the plan that failed.
  reverted.rules = {hot};
  EXPECT_EQ(model->activePlan(), reverted);
  EXPECT_EQ(sentPlans().back(), reverted);
  EXPECT_EQ(sentCount(), 3U);
}

TEST_F(ControlActionTest, AFailedAutomaticIsSentOnceMore) {
  startWith(fixed({{0, 3000}}));
  controllers.results = {ControlResult::noHelper, ControlResult::noHelper};
  model->activateAutomatic();
  settle();
  EXPECT_EQ(sentPlans(), (Plans{FanControlPlan::allAutomatic, FanControlPlan::allAutomatic}));
  EXPECT_EQ(model->activePlan(), FanControlPlan::allAutomatic);
}

TEST_F(ControlActionTest, AModelReleasedMeanwhileRevertsNothing) {
  startWith({});
  controllers.commands.isClosed = true;
  controllers.results = {ControlResult::timedOut};
  model->applyPlan(fixed({{0, 3000}}));
  settle();
  release();
  controllers.commands.open();
  settle();
  EXPECT_EQ(store.loadPlan(), fixed({{0, 3000}}));
  EXPECT_EQ(sentCount(), 1U);
}

// Pure.

TEST(ControlActions, TheSliderOfAFanThatNobodyHoldsFollowsThePlan) {
  auto running = fan(0, 1200, 6200);
  running.currentRPM = 2500;
  struct Case {
    FanControlModePlan mode;
    double rpm;
  };
  const std::vector<Case> cases = {
      {FanControlModePlan::fixedRPM(3333.5), 3333.5}, {FanControlModePlan::fixedPercent(0), 1200},
      {FanControlModePlan::fixedPercent(50), 3700},   {FanControlModePlan::fixedPercent(150), 6200},
      {FanControlModePlan::fixedPercent(-5), 1200},   {support::percentAsCelsius(), 2500},
      {FanControlModePlan::automatic(), 2500},
  };
  for (const auto& one : cases)
    EXPECT_EQ(plannedSliderRPM(running, one.mode), one.rpm);
}

TEST(ControlActions, RulesMoveAsSeveralToOnePlace) {
  std::vector<FanRule> rules;
  for (const char* name : {"a", "b", "c", "d", "e"}) {
    rules.push_back(rule());
    rules.back().name = name;
  }
  const auto moved = [&](const std::set<std::size_t>& from, std::size_t destination) {
    std::string names;
    for (const auto& one : rulesAfterMoving(from, destination, rules))
      names += one.name;
    return names;
  };
  EXPECT_EQ(moved({0}, 0), "abcde");
  EXPECT_EQ(moved({0}, 1), "abcde");
  EXPECT_EQ(moved({0}, 2), "bacde");
  EXPECT_EQ(moved({0}, 5), "bcdea");
  EXPECT_EQ(moved({4}, 0), "eabcd");
  EXPECT_EQ(moved({0, 3}, 2), "badce");
  EXPECT_EQ(moved({1, 3, 4}, 0), "bdeac");
  EXPECT_EQ(moved({9}, 0), "abcde");
  EXPECT_EQ(moved({1}, 99), "acdeb");
  EXPECT_EQ(moved({}, 3), "abcde");
}

TEST(ControlActions, TheDefaultCurveHasFreshPoints) {
  const auto curve = AppModel::defaultCurve();
  std::vector<std::pair<double, double>> points;
  for (const auto& point : curve.points)
    points.emplace_back(point.celsius, point.percent);
  EXPECT_EQ(points, (std::vector<std::pair<double, double>>{{40, 15}, {60, 40}, {80, 75}, {92, 100}}));
  EXPECT_EQ(curve.interpolation, core::CurveInterpolation::monotone);
  EXPECT_EQ(curve.sourceSensorID, std::nullopt);
  EXPECT_NE(curve.points[0].id, AppModel::defaultCurve().points[0].id);
}

} // namespace
} // namespace ventolith::app
