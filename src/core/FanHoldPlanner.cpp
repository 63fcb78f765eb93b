#include "core/FanHoldPlanner.h"

#include "core/Visitor.h"

#include <algorithm>
#include <iterator>

namespace ventolith::core {

FanHoldActions FanHoldPlanner::actions(const FanDecisions& decisions, const std::set<FanID>& claimedFans) {
  FanHoldActions actions;
  std::set<FanID> wanted;
  for (const auto& [fan, decision] : decisions) {
    std::visit(Visitor{
                   [&](const FanDecision::Target& target) {
                     actions.targets.emplace(fan, target.rpm);
                     wanted.insert(fan);
                   },
                   [&](const FanDecision::IdleStopped&) {
                     actions.stoppedFans.push_back(fan);
                     wanted.insert(fan);
                   },
                   [](const FanDecision::ReleaseToAuto&) {},
               },
               decision.value);
  }
  actions.isGlobalIdle = actions.targets.empty() && !actions.stoppedFans.empty();
  std::set_difference(wanted.begin(), wanted.end(), claimedFans.begin(), claimedFans.end(),
                      std::back_inserter(actions.toClaim));
  std::set_difference(claimedFans.begin(), claimedFans.end(), wanted.begin(), wanted.end(),
                      std::back_inserter(actions.toRelease));
  actions.forceTestEnabled = !wanted.empty();
  for (const FanID fan : actions.stoppedFans)
    actions.targets.emplace(fan, FanStopPolicy::stoppedTargetRPM);
  return actions;
}

} // namespace ventolith::core
