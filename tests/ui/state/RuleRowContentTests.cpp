#include "ui/state/RuleRowContent.h"

#include "support/Plans.h"
#include "ui/state/RuleEditing.h"
#include "ui/state/Text.h"

#include <gtest/gtest.h>

#include <limits>

namespace ventolith::ui {
namespace {

using support::utf8;

core::SensorSnapshot machine() {
  core::SensorSnapshot snapshot = support::snapshot({support::fan(0), support::fan(1)},
                                                    {support::sensor("A", 50), support::sensor("B", 60)});
  snapshot.fans[0].name = "Fan 0";
  snapshot.fans[1].name = "Left";
  snapshot.temps[0].name = "CPU";
  snapshot.temps[1].name = "GPU";
  return snapshot;
}

TEST(RuleRow, ReadsAsASentence) {
  const RuleRowContent row = ruleRowContent(newRule(), machine());
  EXPECT_EQ(utf8(row.sensor), "Hottest");
  EXPECT_EQ(utf8(row.threshold), "85°C");
  EXPECT_EQ(utf8(row.fanTarget), "All fans");
  EXPECT_EQ(utf8(row.targetPercent), "80%");
  EXPECT_EQ(utf8(row.releaseBelow), "release below 80°C");
  EXPECT_EQ(utf8(row.dwell), "dwell 3s");
  EXPECT_EQ(utf8(row.enabledWord), "enabled");
}

TEST(RuleRow, NumbersAreCutTowardZero) {
  core::FanRule rule = newRule();
  rule.thresholdCelsius = 0.9;
  rule.releaseBelowCelsius = -1.9;
  rule.targetPercent = 99.9;
  rule.dwellSeconds = std::numeric_limits<double>::quiet_NaN();
  const RuleRowContent row = ruleRowContent(rule, machine());
  EXPECT_EQ(utf8(row.threshold), "0°C");
  EXPECT_EQ(utf8(row.releaseBelow), "release below -1°C");
  EXPECT_EQ(utf8(row.targetPercent), "99%");
  EXPECT_EQ(utf8(row.dwell), "dwell 0s");
}

TEST(RuleRow, ReleasePointBelowItsStepperIsShown) {
  const RuleRowContent row = ruleRowContent(withThreshold(newRule(), 0), machine());
  EXPECT_EQ(utf8(row.releaseBelow), "release below -1°C");
}

TEST(RuleRow, SensorIsNamedUnlessItIsGone) {
  struct Row {
    std::optional<std::string> sensorID;
    const char* label;
    std::optional<std::size_t> marked;
  };
  const Row rows[] = {{std::nullopt, "Hottest", 0},
                      {"SMC-A", "CPU", 1},
                      {"SMC-B", "GPU", 2},
                      {"SMC-GONE", "Hottest", std::nullopt}};
  for (const Row& row : rows) {
    const core::FanRule rule = withSensor(newRule(), row.sensorID);
    EXPECT_EQ(utf8(ruleRowContent(rule, machine()).sensor), row.label);
    EXPECT_EQ(ruleSensorMenu(rule, machine()).selected, row.marked);
  }
}

TEST(RuleRow, FanIsNamedOrNumberedWhenItIsGone) {
  struct Row {
    core::RuleFanTarget target;
    const char* label;
    std::optional<std::size_t> marked;
  };
  const Row rows[] = {{core::RuleFanTarget::all(), "All fans", 0},
                      {core::RuleFanTarget::fan(1), "Left", 2},
                      {core::RuleFanTarget::fan(3), "Fan 3", std::nullopt}};
  for (const Row& row : rows) {
    const core::FanRule rule = withFanTarget(newRule(), row.target);
    EXPECT_EQ(utf8(ruleRowContent(rule, machine()).fanTarget), row.label);
    EXPECT_EQ(ruleFanMenu(rule, machine()).selected, row.marked);
  }
}

TEST(RuleRow, SensorMenuListsTheHottestAndThenTheSnapshot) {
  const auto menu = ruleSensorMenu(newRule(), machine());
  ASSERT_EQ(menu.entries.size(), 3U);
  EXPECT_EQ(utf8(menu.entries[0].title), "Hottest");
  EXPECT_FALSE(menu.entries[0].value);
  EXPECT_EQ(utf8(menu.entries[1].title), "CPU");
  EXPECT_EQ(menu.entries[1].value, "SMC-A");
  EXPECT_EQ(utf8(menu.entries[2].title), "GPU");
  EXPECT_EQ(menu.entries[2].value, "SMC-B");
}

TEST(RuleRow, FanMenuListsAllFansAndThenEach) {
  const auto menu = ruleFanMenu(newRule(), machine());
  ASSERT_EQ(menu.entries.size(), 3U);
  EXPECT_EQ(utf8(menu.entries[0].title), "All fans");
  EXPECT_EQ(menu.entries[0].value, core::RuleFanTarget::all());
  EXPECT_EQ(utf8(menu.entries[1].title), "Fan 0");
  EXPECT_EQ(menu.entries[1].value, core::RuleFanTarget::fan(0));
  EXPECT_EQ(utf8(menu.entries[2].title), "Left");
  EXPECT_EQ(menu.entries[2].value, core::RuleFanTarget::fan(1));
}

TEST(RuleRow, DisabledRuleSaysSo) {
  const RuleRowContent on = ruleRowContent(newRule(), machine());
  EXPECT_TRUE(on.isEnabled);
  const RuleRowContent off = ruleRowContent(withEnabled(newRule(), false), machine());
  EXPECT_FALSE(off.isEnabled);
  EXPECT_EQ(utf8(off.enabledWord), "disabled");
}

TEST(RuleRow, ScreenKeepsItsWords) {
  const RulesTexts texts = rulesTexts();
  const std::pair<QString, const char*> rows[] = {
      {texts.title, "Rules"},
      {texts.subtitle,
       "Rules layer on top of a curve- or manual-controlled fan. The first rule that matches wins."},
      {texts.newRule, "New Rule"},
      {texts.emptyHeading, "No rules yet"},
      {texts.emptyText, "Rules catch spikes your curve doesn't cover — like a hot SSD during a big copy."},
      {texts.createFirstRule, "Create your first rule"},
      {texts.when, "WHEN"},
      {texts.exceeds, "exceeds"},
      {texts.thenSet, "THEN set"},
      {texts.to, "to"},
      {texts.deleteRule, "Delete Rule"},
  };
  for (const auto& [shown, expected] : rows)
    EXPECT_EQ(utf8(shown), expected);
}

} // namespace
} // namespace ventolith::ui
