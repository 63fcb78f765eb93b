#include "ui/state/RuleEditing.h"

#include "app/ControlActions.h"

#include <gtest/gtest.h>

#include <functional>

namespace ventolith::ui {
namespace {

core::FanRule ruleOf(double threshold, double releaseBelow) {
  core::FanRule rule = newRule();
  rule.thresholdCelsius = threshold;
  rule.releaseBelowCelsius = releaseBelow;
  return rule;
}

TEST(RuleEditing, NewRuleHasItsValuesAndAnIdentifierOfItsOwn) {
  core::FanRule expected;
  const core::FanRule rule = newRule();
  expected.id = rule.id;
  expected.name = "Rule";
  expected.sensorID = std::nullopt;
  expected.thresholdCelsius = 85;
  expected.releaseBelowCelsius = 80;
  expected.targetPercent = 80;
  expected.fanTarget = core::RuleFanTarget::all();
  expected.dwellSeconds = 3;
  expected.enabled = true;
  EXPECT_EQ(rule, expected);
  EXPECT_NE(newRule().id, rule.id);
}

TEST(RuleEditing, LoweringTheThresholdDragsTheReleasePointDown) {
  const core::FanRule rule = withThreshold(ruleOf(85, 80), 70);
  EXPECT_EQ(rule.thresholdCelsius, 70);
  EXPECT_EQ(rule.releaseBelowCelsius, 69);
}

TEST(RuleEditing, RaisingTheThresholdLeavesTheReleasePoint) {
  EXPECT_EQ(withThreshold(ruleOf(85, 80), 90).releaseBelowCelsius, 80);
}

TEST(RuleEditing, ReleasePointStopsADegreeBelowTheThreshold) {
  EXPECT_EQ(withReleaseBelow(ruleOf(85, 80), 84).releaseBelowCelsius, 84);
  EXPECT_EQ(withReleaseBelow(ruleOf(85, 84), 85).releaseBelowCelsius, 84);
  EXPECT_EQ(withReleaseBelow(ruleOf(85, 84), 110).releaseBelowCelsius, 84);
}

TEST(RuleEditing, ThresholdOfZeroPutsTheReleasePointBelowItsStepper) {
  EXPECT_EQ(withThreshold(ruleOf(1, 0), 0).releaseBelowCelsius, -1);
}

TEST(RuleEditing, EveryEditChangesItsFieldAndRepairsTheReleasePoint) {
  using Edit = std::function<core::FanRule(core::FanRule)>;
  struct Row {
    const char* name;
    Edit edit;
    Edit expected;
  };
  const Row rows[] = {
      {"target percent", [](auto rule) { return withTargetPercent(rule, 35); },
       [](auto rule) {
         rule.targetPercent = 35;
         return rule;
       }},
      {"dwell", [](auto rule) { return withDwell(rule, 7); },
       [](auto rule) {
         rule.dwellSeconds = 7;
         return rule;
       }},
      {"sensor", [](auto rule) { return withSensor(rule, "SMC-TC0P"); },
       [](auto rule) {
         rule.sensorID = "SMC-TC0P";
         return rule;
       }},
      {"fan target", [](auto rule) { return withFanTarget(rule, core::RuleFanTarget::fan(2)); },
       [](auto rule) {
         rule.fanTarget = core::RuleFanTarget::fan(2);
         return rule;
       }},
      {"enabled", [](auto rule) { return withEnabled(rule, false); },
       [](auto rule) {
         rule.enabled = false;
         return rule;
       }},
  };
  const core::FanRule broken = ruleOf(50, 80);
  for (const Row& row : rows) {
    core::FanRule expected = row.expected(broken);
    expected.releaseBelowCelsius = 49;
    EXPECT_EQ(row.edit(broken), expected) << row.name;
  }
}

TEST(RuleEditing, SteppersKeepTheirRanges) {
  EXPECT_EQ(thresholdRange, (RuleFieldRange{.lower = 0, .upper = 110, .step = 1}));
  EXPECT_EQ(targetPercentRange, (RuleFieldRange{.lower = 0, .upper = 100, .step = 5}));
  EXPECT_EQ(releaseBelowRange, (RuleFieldRange{.lower = 0, .upper = 110, .step = 1}));
  EXPECT_EQ(dwellRange, (RuleFieldRange{.lower = 0, .upper = 30, .step = 1}));
}

TEST(RuleEditing, DropFallsIntoTheGapUnderThePointer) {
  const std::vector<double> middles = {50, 150, 250};
  struct Row {
    double y;
    std::size_t gap;
  };
  const Row rows[] = {{-10, 0}, {0, 0}, {50, 0}, {51, 1}, {149, 1}, {151, 2}, {251, 3}, {9999, 3}};
  for (const Row& row : rows)
    EXPECT_EQ(gapAt(row.y, middles), row.gap) << row.y;
}

TEST(RuleEditing, DropGivesTheMoveOfTheRow) {
  EXPECT_EQ(moveByDrop(0, 3, 3), (RuleMove{.from = {0}, .destination = 3}));
  EXPECT_EQ(moveByDrop(2, 0, 3), (RuleMove{.from = {2}, .destination = 0}));
  EXPECT_EQ(moveByDrop(1, 3, 3), (RuleMove{.from = {1}, .destination = 3}));
}

TEST(RuleEditing, DropBesideItselfMovesNothing) {
  EXPECT_FALSE(moveByDrop(1, 1, 3));
  EXPECT_FALSE(moveByDrop(1, 2, 3));
}

TEST(RuleEditing, DropOfOrIntoWhatIsNotThereMovesNothing) {
  EXPECT_FALSE(moveByDrop(3, 0, 3));
  EXPECT_FALSE(moveByDrop(0, 4, 3));
  EXPECT_FALSE(moveByDrop(0, 0, 0));
}

TEST(RuleEditing, KeysMoveARowByOnePlace) {
  std::vector<core::FanRule> rules = {newRule(), newRule(), newRule()};
  const auto up = moveUp(1, rules.size());
  const auto down = moveDown(1, rules.size());
  ASSERT_TRUE(up);
  ASSERT_TRUE(down);
  EXPECT_EQ(app::rulesAfterMoving(up->from, up->destination, rules),
            (std::vector{rules[1], rules[0], rules[2]}));
  EXPECT_EQ(app::rulesAfterMoving(down->from, down->destination, rules),
            (std::vector{rules[0], rules[2], rules[1]}));
}

TEST(RuleEditing, KeysMoveNothingBeyondTheEnds) {
  EXPECT_FALSE(moveUp(0, 3));
  EXPECT_FALSE(moveDown(2, 3));
  EXPECT_FALSE(moveDown(0, 1));
}

} // namespace
} // namespace ventolith::ui
