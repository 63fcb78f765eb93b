// The words that stand for the application's actions.
#include "programs/ventolith/HeadlessCommands.h"

#include "../../app/ModelFixture.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace ventolith::programs {
namespace {

using core::FanControlModePlan;
using core::FanControlPlan;

class HeadlessCommandTest : public app::AppModelTest {
protected:
  HeadlessCommandTest() { start(); }

  void say(const std::string& line) {
    runHeadlessCommand({time.executor(), *model}, line);
    settle();
  }
  std::string complaintAbout(const std::string& line) {
    try {
      say(line);
    } catch (const CommandLineError& error) {
      return error.what();
    }
    return "no complaint";
  }
  [[nodiscard]] std::string activePresetName() const {
    const auto preset = model->activePreset();
    return preset ? preset->name : "none";
  }
};

TEST_F(HeadlessCommandTest, SpeedIsHeldAndGivenBack) {
  say("manual 0 3000");
  EXPECT_EQ(model->activePlan(), fixed({{0, 3000}}));
  EXPECT_TRUE(model->draggingFans().empty());
  say("manual 1 2500.4");
  EXPECT_EQ(model->activePlan(), fixed({{0, 3000}, {1, 2500}}));
  say("automatic 0");
  EXPECT_EQ(model->activePlan(), fixed({{1, 2500}}));
  say("automatic");
  EXPECT_EQ(model->activePlan(), FanControlPlan::allAutomatic);
}

TEST_F(HeadlessCommandTest, FullBlastIsForOneOrForAll) {
  say("full-blast 1");
  EXPECT_EQ(model->planMode(0), FanControlModePlan::automatic());
  EXPECT_EQ(model->planMode(1), FanControlModePlan::fixedPercent(100));
  say("full-blast");
  EXPECT_EQ(model->planMode(0), FanControlModePlan::fixedPercent(100));
}

TEST_F(HeadlessCommandTest, PresetsAreSavedAndActivatedByName) {
  say("manual 0 3000");
  say("save-preset My own");
  say("preset Quiet");
  EXPECT_EQ(activePresetName(), "Quiet");
  say("preset My own");
  EXPECT_EQ(activePresetName(), "My own");
  EXPECT_EQ(model->activePlan(), fixed({{0, 3000}}));
}

TEST_F(HeadlessCommandTest, AutoSwitchTakesAPresetForEachSource) {
  plugInto(app::PowerSource::ac);
  say("auto-switch Quiet Max");
  EXPECT_EQ(activePresetName(), "Max");
  plugInto(app::PowerSource::battery);
  EXPECT_EQ(activePresetName(), "Quiet");
  say("auto-switch - Max");
  EXPECT_EQ(model->autoSwitch().onBatteryPresetID, std::nullopt);
  say("auto-switch off");
  EXPECT_FALSE(model->autoSwitch().enabled);
}

TEST_F(HeadlessCommandTest, HelperIsRegisteredRestartedAndRemoved) {
  say("enable");
  say("restart-helper");
  say("disable");
  EXPECT_EQ(registration->log,
            (std::vector<std::string>{"register", "unregister", "register", "unregister"}));
}

TEST_F(HeadlessCommandTest, DashboardAndUpdatesAreAskedFor) {
  say("dashboard shown");
  EXPECT_TRUE(model->isDashboardVisible());
  say("dashboard hidden");
  EXPECT_FALSE(model->isDashboardVisible());
  say("check-for-updates");
  EXPECT_EQ(model->updateOutcome(), app::UpdateCheckOutcome::checking);
}

TEST_F(HeadlessCommandTest, StoredPlanIsPutInForce) {
  const support::TemporaryFolder folder;
  const auto file = (folder.path() / "a plan.json").string();
  std::ofstream(file) << core::encode(fixed({{1, 4000}}));
  say("plan " + file);
  EXPECT_EQ(model->activePlan(), fixed({{1, 4000}}));
  std::ofstream(file) << "{}";
  EXPECT_TRUE(complaintAbout("plan " + file).starts_with(file + ": "));
  EXPECT_EQ(model->activePlan(), fixed({{1, 4000}}));
}

TEST_F(HeadlessCommandTest, BlankLineIsNothing) {
  say("");
  say(" \t ");
  EXPECT_EQ(sentCount(), 0U);
}

TEST_F(HeadlessCommandTest, WhatIsWrongIsNamedAndNothingIsDone) {
  const std::vector<std::pair<std::string, std::string>> complaints{
      {"dance", "there is no command \"dance\"; \"help\" lists them"},
      {"enable it", "\"it\" is too much"},
      {"disable it", "\"it\" is too much"},
      {"restart-helper it", "\"it\" is too much"},
      {"check-for-updates it", "\"it\" is too much"},
      {"manual", "the fan is missing"},
      {"manual 0", "the speed is missing"},
      {"manual 0 fast", "\"fast\" is no speed"},
      {"manual 0 3000 rpm", "\"rpm\" is too much"},
      {"manual 2 3000", "there is no fan 2"},
      {"manual one 3000", "there is no fan one"},
      {"automatic 2", "there is no fan 2"},
      {"full-blast 2", "there is no fan 2"},
      {"preset Arctic", "there is no preset \"Arctic\""},
      {"save-preset", "the name is missing"},
      {"auto-switch", "off or a preset is missing"},
      {"auto-switch Quiet", "the preset on AC power is missing"},
      {"auto-switch Quiet Arctic", "there is no preset \"Arctic\""},
      {"auto-switch off now", "\"now\" is too much"},
      {"dashboard", "shown or hidden is missing"},
      {"dashboard there", "\"there\" is neither shown nor hidden"},
      {"plan /no/such/file", "/no/such/file: No such file or directory"},
  };
  for (const auto& [line, complaint] : complaints)
    EXPECT_EQ(complaintAbout(line), complaint) << line;
  EXPECT_EQ(sentCount(), 0U);
  EXPECT_EQ(registration->log, std::vector<std::string>());
  EXPECT_FALSE(model->autoSwitch().enabled);
}

} // namespace
} // namespace ventolith::programs
