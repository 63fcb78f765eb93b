// What the user's edits make of a rule, and of the order of the rules. Pure.
#pragma once

#include "core/FanControlPlan.h"

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace ventolith::ui {

/// Hottest sensor over 85 °C, all fans to 80 %, with a new identifier each time.
[[nodiscard]] core::FanRule newRule();

// Each edit changes its field and brings the release point at least 1 degree below the threshold, whichever
// field it is.
[[nodiscard]] core::FanRule withThreshold(core::FanRule rule, double celsius);
[[nodiscard]] core::FanRule withReleaseBelow(core::FanRule rule, double celsius);
[[nodiscard]] core::FanRule withTargetPercent(core::FanRule rule, double percent);
[[nodiscard]] core::FanRule withDwell(core::FanRule rule, double seconds);
[[nodiscard]] core::FanRule withSensor(core::FanRule rule, std::optional<std::string> sensorID);
[[nodiscard]] core::FanRule withFanTarget(core::FanRule rule, core::RuleFanTarget target);
[[nodiscard]] core::FanRule withEnabled(core::FanRule rule, bool isEnabled);

/// Where a stepper leads, and by how much at a time. A rule may stand outside it.
struct RuleFieldRange {
  double lower;
  double upper;
  double step;

  bool operator==(const RuleFieldRange&) const = default;
};

inline constexpr RuleFieldRange thresholdRange{.lower = 0, .upper = 110, .step = 1};     // Degrees Celsius.
inline constexpr RuleFieldRange targetPercentRange{.lower = 0, .upper = 100, .step = 5}; // Percent.
inline constexpr RuleFieldRange releaseBelowRange{.lower = 0, .upper = 110, .step = 1};  // Degrees Celsius.
inline constexpr RuleFieldRange dwellRange{.lower = 0, .upper = 30, .step = 1};          // Seconds.

/// The arguments of the model's `moveRules`.
struct RuleMove {
  std::set<std::size_t> from;
  std::size_t destination = 0; // Counted before the move.

  bool operator==(const RuleMove&) const = default;
};

/// The gap between rows that a drop at height `y` falls into, 0 before the first row, given the heights of
/// the rows' middles from the top down.
[[nodiscard]] std::size_t gapAt(double y, const std::vector<double>& rowMiddles);

/// A row dropped into a gap; none for the two gaps that lie around it, and for what is not there.
[[nodiscard]] std::optional<RuleMove> moveByDrop(std::size_t row, std::size_t gap, std::size_t count);

/// A row moved by one place with the keyboard; none at the ends.
[[nodiscard]] std::optional<RuleMove> moveUp(std::size_t row, std::size_t count);
[[nodiscard]] std::optional<RuleMove> moveDown(std::size_t row, std::size_t count);

} // namespace ventolith::ui
