// From the decisions of one evaluation to the actions of one tick. Pure.
#pragma once

#include "core/PlanEvaluator.h"

#include <map>
#include <set>
#include <vector>

namespace ventolith::core {

struct FanHoldActions {
  std::vector<FanID> toClaim;      // Ascending.
  std::vector<FanID> toRelease;    // Ascending.
  std::map<FanID, double> targets; // RPM; stopped fans are in it with 0.
  bool forceTestEnabled = false;   // Some fan wants to be held.
  std::vector<FanID> stoppedFans;  // Ascending.
  bool isGlobalIdle = false;       // Every fan that wants to be held is parked.

  bool operator==(const FanHoldActions&) const = default;
};

namespace FanHoldPlanner {
/// A claimed fan without a decision, because it vanished from the snapshot or the plan, is released like
/// one that was decided to be.
[[nodiscard]] FanHoldActions actions(const FanDecisions& decisions, const std::set<FanID>& claimedFans);
} // namespace FanHoldPlanner

} // namespace ventolith::core
