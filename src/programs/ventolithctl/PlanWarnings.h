// What is legal in a plan, but surely not wanted. Pure.
#pragma once

#include "core/FanControlPlan.h"

#include <set>
#include <string>
#include <vector>

namespace ventolith::ctl {

struct PlanWarning {
  std::string path; // As in core::DecodeError.
  std::string text;

  bool operator==(const PlanWarning&) const = default;
};

/// In the order of the plan's fields.
[[nodiscard]] std::vector<PlanWarning> planWarnings(const core::FanControlPlan& plan);

/// The sensors that the plan names and that are not among `known`.
[[nodiscard]] std::vector<PlanWarning> unknownSensors(const core::FanControlPlan& plan,
                                                      const std::set<std::string>& known);

} // namespace ventolith::ctl
