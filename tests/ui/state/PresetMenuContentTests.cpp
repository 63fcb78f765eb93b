#include "ui/state/PresetMenuContent.h"

#include "support/Plans.h"
#include "ui/state/Text.h"

#include <gtest/gtest.h>

namespace ventolith::ui {
namespace {

using core::FanControlModePlan;
using support::utf8;
using Content = PresetMenuContent;

const core::FanPreset quiet{.name = "Quiet"};
const core::FanPreset night{.name = "Night"};

PresetMenuState menu(std::optional<core::UUID> active = std::nullopt) {
  return {.presets = {quiet, night}, .activePresetID = active, .canControlFans = true};
}

TEST(PresetMenu, ButtonNamesWhatIsRunningNow) {
  const auto fixed = FanControlModePlan::fixedRPM(3000);
  const auto automatic = FanControlModePlan::automatic();
  struct Row {
    std::optional<core::UUID> active;
    core::FanControlPlan plan;
    const char* title;
    const char* symbol;
  };
  const Row rows[] = {
      {night.id, support::plan({{0, fixed}}), "Night", "slider.horizontal.3"},
      {quiet.id, {}, "Quiet", "slider.horizontal.3"},
      {std::nullopt, {}, "Automatic", "arrow.uturn.backward"},
      {std::nullopt, support::plan({{0, automatic}, {1, automatic}}), "Automatic", "arrow.uturn.backward"},
      {std::nullopt, support::plan({}, {support::rule()}), "Automatic", "arrow.uturn.backward"},
      {std::nullopt, support::plan({{0, automatic}, {1, fixed}}), "Custom", "hand.point.up.left.fill"},
      {core::makeUUID(), support::plan({{0, fixed}}), "Custom", "hand.point.up.left.fill"},
  };
  for (const Row& row : rows) {
    PresetMenuState state = menu(row.active);
    state.activePlan = row.plan;
    EXPECT_EQ(utf8(presetMenuContent(state).title), row.title);
    EXPECT_EQ(utf8(presetMenuContent(state).symbol), row.symbol);
  }
}

TEST(PresetMenu, BeginsWithTheTwoQuickRows) {
  const Content content = presetMenuContent(menu(quiet.id));
  ASSERT_EQ(content.quickRows.size(), 2U);
  EXPECT_EQ(utf8(content.quickRows[0].title), "Automatic");
  EXPECT_EQ(utf8(content.quickRows[0].symbol), "arrow.uturn.backward");
  EXPECT_EQ(content.quickRows[0].action, Content::Action{Content::ActivateAutomatic{}});
  EXPECT_EQ(utf8(content.quickRows[1].title), "Full Blast");
  EXPECT_EQ(utf8(content.quickRows[1].symbol), "bolt.fill");
  EXPECT_EQ(content.quickRows[1].action, Content::Action{Content::ActivateFullBlast{}});
}

TEST(PresetMenu, AutomaticIsMarkedWhileItRuns) {
  const Content content = presetMenuContent(menu());
  EXPECT_TRUE(content.quickRows[0].isMarked);
  EXPECT_EQ(utf8(content.quickRows[0].title), "Automatic");
  EXPECT_EQ(utf8(content.quickRows[0].symbol), "arrow.uturn.backward");
  EXPECT_FALSE(presetMenuContent(menu(quiet.id)).quickRows[0].isMarked);
}

TEST(PresetMenu, FullBlastIsNeverMarked) {
  PresetMenuState state = menu();
  state.activePlan = support::planOf(FanControlModePlan::fixedPercent(100));
  EXPECT_FALSE(presetMenuContent(state).quickRows[1].isMarked);
  EXPECT_EQ(utf8(presetMenuContent(state).quickRows[1].title), "Full Blast");
}

TEST(PresetMenu, ListsThePresetsAndMarksTheActiveOne) {
  const Content content = presetMenuContent(menu(night.id));
  ASSERT_EQ(content.presetRows.size(), 2U);
  EXPECT_EQ(utf8(content.presetRows[0].title), "Quiet");
  EXPECT_FALSE(content.presetRows[0].isMarked);
  EXPECT_EQ(utf8(content.presetRows[1].title), "Night");
  EXPECT_TRUE(content.presetRows[1].isMarked);
  EXPECT_EQ(utf8(content.presetRows[1].symbol), "slider.horizontal.3");
  EXPECT_EQ(content.presetRows[1].action, Content::Action{Content::ActivatePreset{night}});
}

TEST(PresetMenu, WithoutAHelperOnlyAutomaticCanBeChosen) {
  PresetMenuState state = menu(quiet.id);
  state.canControlFans = false;
  const Content without = presetMenuContent(state);
  EXPECT_TRUE(without.quickRows[0].isEnabled);
  EXPECT_FALSE(without.quickRows[1].isEnabled);
  for (const Content::Row& row : without.presetRows)
    EXPECT_FALSE(row.isEnabled);
  const Content with = presetMenuContent(menu(quiet.id));
  EXPECT_TRUE(with.quickRows[0].isEnabled);
  EXPECT_TRUE(with.quickRows[1].isEnabled);
  for (const Content::Row& row : with.presetRows)
    EXPECT_TRUE(row.isEnabled);
}

TEST(PresetMenu, WithoutPresetsThereAreTheQuickRowsAlone) {
  const Content content = presetMenuContent({});
  EXPECT_EQ(content.quickRows.size(), 2U);
  EXPECT_TRUE(content.presetRows.empty());
}

TEST(RunningNow, NamesThePresetOrWhatThePlanIs) {
  const auto fixed = support::planOf(FanControlModePlan::fixedRPM(3000));
  EXPECT_EQ(utf8(runningNow(night, fixed)), "Night");
  EXPECT_EQ(utf8(runningNow(std::nullopt, fixed)), "Custom");
  EXPECT_EQ(utf8(runningNow(std::nullopt, support::planOf(FanControlModePlan::automatic()))), "Automatic");
  EXPECT_EQ(utf8(runningNow(std::nullopt, {})), "Automatic");
}

} // namespace
} // namespace ventolith::ui
