// AppModel's presets, and their switching with the power source.
#include "ModelFixture.h"

#include "app/PresetLibrary.h"

namespace ventolith::app {
namespace {

using Names = std::vector<std::string>;

class PresetActionTest : public AppModelTest {
protected:
  [[nodiscard]] Names names() const {
    EXPECT_EQ(store.loadPresets(), model->presets());
    Names all;
    for (const auto& one : model->presets())
      all.push_back(one.name);
    return all;
  }
  [[nodiscard]] std::optional<UUID> activeID() const {
    EXPECT_EQ(store.loadActivePresetID(), model->activePresetID());
    return model->activePresetID();
  }
};

TEST_F(PresetActionTest, AnEmptyListIsSeededWithTheFirstSnapshotOfFans) {
  start();
  EXPECT_EQ(names(), (Names{"Quiet", "Balanced", "Max"}));
  for (const auto& one : model->presets()) {
    ASSERT_EQ(one.plan.fans.size(), 2U);
    EXPECT_EQ(one.plan.fans[0].fanID, 0);
    EXPECT_EQ(one.plan.fans[1].fanID, 1);
  }
  EXPECT_EQ(sentCount(), 0U);
  EXPECT_EQ(activeID(), std::nullopt);
}

TEST_F(PresetActionTest, NothingIsSeededBeforeAFanIsThere) {
  readings.next = snapshot({});
  start();
  pass(60);
  EXPECT_TRUE(model->presets().empty());
  EXPECT_EQ(store.loadPresets(), std::nullopt);
  readings.next = snapshot({fan(3)});
  pass(5);
  EXPECT_EQ(names(), (Names{"Quiet", "Balanced", "Max"}));
}

TEST_F(PresetActionTest, AStoredEmptyListHealsItself) {
  store.savePresets({});
  start();
  EXPECT_EQ(names().size(), 3U);
}

TEST_F(PresetActionTest, AListWithoutTheBuiltInsIsLeftAlone) {
  store.savePresets({preset("Mine", {})});
  start();
  pass(60);
  EXPECT_EQ(names(), (Names{"Mine"}));
}

TEST_F(PresetActionTest, ActivatingCopiesThePlan) {
  start();
  const auto quiet = model->presets()[0];
  model->activatePreset(quiet);
  settle();
  EXPECT_EQ(activeID(), quiet.id);
  EXPECT_EQ(model->activePreset(), quiet);
  EXPECT_EQ(model->activePlan(), quiet.plan);
  EXPECT_EQ(sentPlans(), std::vector{quiet.plan});
}

TEST_F(PresetActionTest, TheActivePresetIsNotAppliedAgainAtTheStart) {
  start();
  model->activatePreset(model->presets()[0]);
  model->setTuning(support::direct);
  settle();
  controllers.plans.clear();
  restart();
  EXPECT_EQ(model->activePlan().tuning, support::direct);
  EXPECT_EQ(model->activePresetID(), PresetLibrary::quietID);
  EXPECT_EQ(sentCount(), 0U);
}

TEST_F(PresetActionTest, APresetWithFansThatAreNotThereIsAppliedAsItStands) {
  start();
  const auto foreign = preset("Foreign", fixed({{9, 3000}}));
  model->activatePreset(foreign);
  settle();
  EXPECT_EQ(sentPlans(), std::vector{foreign.plan});
}

TEST_F(PresetActionTest, ABuiltInPresetIsNotDeleted) {
  start();
  const auto quiet = model->presets()[0];
  model->activatePreset(quiet);
  settle();
  const auto stored = disk.files();
  model->deletePreset(quiet);
  EXPECT_EQ(disk.files(), stored);
  EXPECT_EQ(names().size(), 3U);
  EXPECT_EQ(activeID(), quiet.id);
}

TEST_F(PresetActionTest, DeletingTheActivePresetChangesNoFan) {
  start();
  model->newPresetFromCurrent("Mine");
  settle();
  controllers.plans.clear();
  const auto planBefore = model->activePlan();
  model->deletePreset(model->presets().back()); // By reference into the list.
  settle();
  pass(5);
  EXPECT_EQ(names(), (Names{"Quiet", "Balanced", "Max"}));
  EXPECT_EQ(activeID(), std::nullopt);
  EXPECT_EQ(model->activePlan(), planBefore);
  EXPECT_EQ(sentCount(), 0U);
}

TEST_F(PresetActionTest, DeletingAnotherPresetLeavesTheActiveOne) {
  start();
  model->addOrUpdatePreset(preset("Other", {}));
  model->activatePreset(model->presets()[1]);
  model->deletePreset(model->presets().back());
  EXPECT_EQ(activeID(), PresetLibrary::balancedID);
}

TEST_F(PresetActionTest, DeletingLeavesTheAutoSwitchSettings) {
  start();
  const auto mine = preset("Mine", {});
  model->addOrUpdatePreset(mine);
  const core::AutoSwitchSettings settings{.enabled = true, .onACPresetID = mine.id};
  model->setAutoSwitch(settings);
  model->deletePreset(mine);
  EXPECT_EQ(model->autoSwitch(), settings);
  EXPECT_EQ(store.loadAutoSwitch(), settings);
}

TEST_F(PresetActionTest, UpsertingKeepsThePlaceOfAKnownOne) {
  start();
  auto changed = model->presets()[1];
  changed.name = "Even";
  model->addOrUpdatePreset(changed);
  model->addOrUpdatePreset(preset("New", {}));
  EXPECT_EQ(names(), (Names{"Quiet", "Even", "Max", "New"}));
}

TEST_F(PresetActionTest, TwoNewPresetsShareANameAndTheSecondIsActive) {
  start();
  model->newPresetFromCurrent();
  model->newPresetFromCurrent();
  EXPECT_EQ(names(), (Names{"Quiet", "Balanced", "Max", "Custom", "Custom"}));
  EXPECT_NE(model->presets()[3].id, model->presets()[4].id);
  EXPECT_EQ(activeID(), model->presets()[4].id);
}

TEST_F(PresetActionTest, ANewPresetHoldsTheActivePlan) {
  start();
  model->applyPlan(fixed({{0, 3000}}));
  model->newPresetFromCurrent("Mine");
  EXPECT_EQ(model->presets().back().plan, fixed({{0, 3000}}));
  EXPECT_FALSE(model->presets().back().isBuiltIn);
}

TEST_F(PresetActionTest, ADuplicateIsTheUsersAndNotActivated) {
  start();
  const auto quiet = model->presets()[0];
  model->duplicatePreset(quiet);
  model->duplicatePreset(model->presets().back());
  EXPECT_EQ(names(), (Names{"Quiet", "Balanced", "Max", "Quiet copy", "Quiet copy copy"}));
  EXPECT_FALSE(model->presets()[3].isBuiltIn);
  EXPECT_NE(model->presets()[3].id, quiet.id);
  EXPECT_EQ(model->presets()[3].plan, quiet.plan);
  EXPECT_EQ(activeID(), std::nullopt);
}

TEST_F(PresetActionTest, ARenameKeepsTheBlanksAroundTheName) {
  start();
  model->renamePreset(model->presets()[0], "  Hush ");
  EXPECT_EQ(names(), (Names{"  Hush ", "Balanced", "Max"}));
}

TEST_F(PresetActionTest, ANameOfBlanksAloneRenamesNothing) {
  start();
  for (const char* name : {"", " ", "\t ", "\u00A0", "\u3000 "})
    model->renamePreset(model->presets()[0], name);
  EXPECT_EQ(names(), (Names{"Quiet", "Balanced", "Max"}));
}

TEST_F(PresetActionTest, ALineEndIsText) {
  start();
  model->renamePreset(model->presets()[0], " \n");
  EXPECT_EQ(names(), (Names{" \n", "Balanced", "Max"}));
}

TEST_F(PresetActionTest, AnIdentifierWithoutAPresetIsNoActivePreset) {
  store.saveActivePresetID(core::makeUUID());
  start();
  EXPECT_EQ(model->activePreset(), std::nullopt);
  EXPECT_TRUE(activeID().has_value());
}

TEST_F(PresetActionTest, ARefusedPresetStaysActiveAndLosesItsFans) {
  start();
  controllers.results = {ControlResult::noHelper};
  model->activatePreset(model->presets()[0]);
  settle();
  EXPECT_EQ(activeID(), PresetLibrary::quietID);
  EXPECT_TRUE(model->activePlan().fans.empty());
}

TEST_F(PresetActionTest, AManualSpeedEndsAPreset) {
  start();
  model->activatePreset(model->presets()[0]);
  model->commitManualRPM(fan(0));
  EXPECT_EQ(activeID(), std::nullopt);
}

// The power source.

class AutoSwitchTest : public PresetActionTest {
protected:
  /// With the switch on: Quiet on battery, Max on mains.
  void startSwitching() {
    start();
    model->setAutoSwitch(both);
    controllers.plans.clear();
  }

  const core::AutoSwitchSettings both{
      .enabled = true, .onBatteryPresetID = PresetLibrary::quietID, .onACPresetID = PresetLibrary::maxID};
};

TEST_F(AutoSwitchTest, ThePowerSourceIsKnownRightAfterTheStart) {
  socket->source = PowerSource::battery;
  start();
  EXPECT_EQ(model->powerSource(), PowerSource::battery);
}

TEST_F(AutoSwitchTest, WhileItIsOffThePowerSourceIsFollowedAndNoPresetChanges) {
  start();
  model->setAutoSwitch(
      {.enabled = false, .onBatteryPresetID = PresetLibrary::quietID, .onACPresetID = PresetLibrary::maxID});
  plugInto(PowerSource::ac);
  EXPECT_EQ(model->powerSource(), PowerSource::ac);
  EXPECT_EQ(activeID(), std::nullopt);
  EXPECT_EQ(sentCount(), 0U);
}

TEST_F(AutoSwitchTest, EachSourcePutsItsPresetInCharge) {
  startSwitching();
  plugInto(PowerSource::battery);
  EXPECT_EQ(activeID(), PresetLibrary::quietID);
  plugInto(PowerSource::ac);
  EXPECT_EQ(activeID(), PresetLibrary::maxID);
  EXPECT_EQ(sentCount(), 2U);
}

TEST_F(AutoSwitchTest, ASourceWithoutAPresetChangesNothing) {
  start();
  model->setAutoSwitch({.enabled = true, .onBatteryPresetID = PresetLibrary::quietID});
  plugInto(PowerSource::battery);
  plugInto(PowerSource::ac);
  EXPECT_EQ(activeID(), PresetLibrary::quietID);
}

TEST_F(AutoSwitchTest, APresetThatIsGoneChangesNothingUntilItIsBack) {
  start();
  const auto mine = preset("Mine", fixed({{0, 3000}}));
  const core::AutoSwitchSettings settings{.enabled = true, .onBatteryPresetID = mine.id};
  model->setAutoSwitch(settings);
  plugInto(PowerSource::battery);
  EXPECT_EQ(activeID(), std::nullopt);
  EXPECT_EQ(store.loadAutoSwitch(), settings);
  model->addOrUpdatePreset(mine);
  plugInto(PowerSource::battery);
  EXPECT_EQ(activeID(), mine.id);
}

TEST_F(AutoSwitchTest, AnUnknownSourceSwitchesNothing) {
  start();
  model->setAutoSwitch(both);
  settle();
  EXPECT_EQ(store.loadAutoSwitch(), both);
  EXPECT_EQ(activeID(), std::nullopt);
  EXPECT_EQ(sentCount(), 0U);
  plugInto(PowerSource::battery);
  plugInto(PowerSource::unknown);
  EXPECT_EQ(model->powerSource(), PowerSource::unknown);
  EXPECT_EQ(activeID(), PresetLibrary::quietID);
}

TEST_F(AutoSwitchTest, ANewSettingTakesEffectAtOnce) {
  socket->source = PowerSource::ac;
  start();
  model->setAutoSwitch(both);
  EXPECT_EQ(activeID(), PresetLibrary::maxID);
  EXPECT_EQ(store.loadAutoSwitch(), both);
}

TEST_F(AutoSwitchTest, APresetThatIsActiveIsNotSentAgain) {
  startSwitching();
  plugInto(PowerSource::ac);
  for (int times = 0; times < 20; ++times)
    plugInto(PowerSource::ac);
  EXPECT_EQ(sentCount(), 1U);
}

TEST_F(AutoSwitchTest, AManualSpeedLastsUntilTheNextNotification) {
  startSwitching();
  plugInto(PowerSource::battery);
  model->commitManualRPM(fan(0));
  settle();
  EXPECT_EQ(activeID(), std::nullopt);
  plugInto(PowerSource::battery); // The same source as before.
  EXPECT_EQ(activeID(), PresetLibrary::quietID);
  EXPECT_EQ(model->mode(fan(0)), core::ControlMode::curve);
}

TEST_F(AutoSwitchTest, EditsOfRulesOutliveNotifications) {
  startSwitching();
  plugInto(PowerSource::battery);
  model->addRule(rule());
  plugInto(PowerSource::battery);
  EXPECT_EQ(model->activePlan().rules.size(), 1U);
}

TEST_F(AutoSwitchTest, AtTheStartThePresetOfThePresentSourceIsPutInCharge) {
  startSwitching();
  release();
  socket->source = PowerSource::battery;
  start();
  EXPECT_EQ(activeID(), PresetLibrary::quietID);
  restart();
  EXPECT_EQ(sentCount(), 1U); // Active already.
}

TEST_F(AutoSwitchTest, WithoutNotificationsTheSourceIsTheOneOfTheStart) {
  socket->source = PowerSource::ac;
  socket->notifies = false;
  start();
  plugInto(PowerSource::battery);
  pass(3600);
  EXPECT_EQ(model->powerSource(), PowerSource::ac);
}

TEST_F(AutoSwitchTest, ANotificationAfterTheModelTouchesNothing) {
  startSwitching();
  const auto stored = disk.files();
  socket->source = PowerSource::battery;
  socket->notify(); // Under way to the model when that goes.
  model = nullptr;
  socket->notify(); // The provider goes later, on its own executor.
  settle();
  EXPECT_EQ(disk.files(), stored);
  EXPECT_EQ(sentCount(), 0U);
  EXPECT_EQ(socket->onChange, nullptr);
}

TEST(PowerSource, HasThreeWords) {
  for (const auto source : {PowerSource::ac, PowerSource::battery, PowerSource::unknown})
    EXPECT_EQ(powerSource(rawValue(source)), source);
  EXPECT_EQ(rawValue(PowerSource::ac), "ac");
  EXPECT_EQ(rawValue(PowerSource::battery), "battery");
  EXPECT_EQ(rawValue(PowerSource::unknown), "unknown");
  for (const char* word : {"", "AC", "ac ", "mains"})
    EXPECT_EQ(powerSource(word), std::nullopt) << word;
}

TEST(PowerSourceMonitor, SpeaksOnceAtItsStartAndOnEveryNotification) {
  const auto socket = std::make_shared<Socket>();
  socket->source = PowerSource::ac;
  std::vector<PowerSource> told;
  PowerSourceMonitor monitor(std::make_unique<ScriptedPower>(socket),
                             [&](PowerSource source) { told.push_back(source); });
  EXPECT_TRUE(told.empty());
  monitor.start();
  socket->notify();
  socket->source = PowerSource::battery;
  socket->notify();
  monitor.stop();
  socket->notify();
  EXPECT_EQ(told, (std::vector{PowerSource::ac, PowerSource::ac, PowerSource::battery}));
}

} // namespace
} // namespace ventolith::app
