#include "ui/state/RuleEditing.h"

#include <algorithm>
#include <utility>

namespace ventolith::ui {

namespace {

core::FanRule normalised(core::FanRule rule) {
  rule.releaseBelowCelsius = std::min(rule.releaseBelowCelsius, rule.thresholdCelsius - 1);
  return rule;
}

} // namespace

core::FanRule newRule() {
  return {.name = "Rule",
          .thresholdCelsius = 85,
          .releaseBelowCelsius = 80,
          .targetPercent = 80,
          .fanTarget = core::RuleFanTarget::all(),
          .dwellSeconds = 3,
          .enabled = true};
}

core::FanRule withThreshold(core::FanRule rule, double celsius) {
  rule.thresholdCelsius = celsius;
  return normalised(std::move(rule));
}

core::FanRule withReleaseBelow(core::FanRule rule, double celsius) {
  rule.releaseBelowCelsius = celsius;
  return normalised(std::move(rule));
}

core::FanRule withTargetPercent(core::FanRule rule, double percent) {
  rule.targetPercent = percent;
  return normalised(std::move(rule));
}

core::FanRule withDwell(core::FanRule rule, double seconds) {
  rule.dwellSeconds = seconds;
  return normalised(std::move(rule));
}

core::FanRule withSensor(core::FanRule rule, std::optional<std::string> sensorID) {
  rule.sensorID = std::move(sensorID);
  return normalised(std::move(rule));
}

core::FanRule withFanTarget(core::FanRule rule, core::RuleFanTarget target) {
  rule.fanTarget = target;
  return normalised(std::move(rule));
}

core::FanRule withEnabled(core::FanRule rule, bool isEnabled) {
  rule.enabled = isEnabled;
  return normalised(std::move(rule));
}

std::size_t gapAt(double y, const std::vector<double>& rowMiddles) {
  const auto isAbove = [y](double middle) { return middle < y; };
  return static_cast<std::size_t>(std::count_if(rowMiddles.begin(), rowMiddles.end(), isAbove));
}

std::optional<RuleMove> moveByDrop(std::size_t row, std::size_t gap, std::size_t count) {
  if (row >= count || gap > count) return std::nullopt;
  if (gap == row || gap == row + 1) return std::nullopt;
  return RuleMove{.from = {row}, .destination = gap};
}

std::optional<RuleMove> moveUp(std::size_t row, std::size_t count) {
  if (row == 0) return std::nullopt;
  return moveByDrop(row, row - 1, count);
}

std::optional<RuleMove> moveDown(std::size_t row, std::size_t count) {
  return moveByDrop(row, row + 2, count);
}

} // namespace ventolith::ui
