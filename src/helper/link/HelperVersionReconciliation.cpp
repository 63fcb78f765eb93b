#include "helper/link/HelperVersionReconciliation.h"

namespace ventolith::helper {

HelperVersionDecision HelperVersionReconciliation::decide(HelperVersionProbe probe,
                                                          std::int64_t upgradeAttemptsSoFar,
                                                          std::int64_t maxUpgradeAttempts) {
  if (probe == HelperVersionProbe::matched) return HelperVersionDecision::proceed;
  if (probe == HelperVersionProbe::noReply) return HelperVersionDecision::stale;
  return upgradeAttemptsSoFar < maxUpgradeAttempts ? HelperVersionDecision::triggerUpgradeSwap
                                                   : HelperVersionDecision::stale;
}

HelperVersionDecision HelperVersionReconciler::next(HelperVersionProbe afterProbe,
                                                    std::int64_t totalUpgradeAttemptsSoFar) {
  const auto decision =
      HelperVersionReconciliation::decide(afterProbe, totalUpgradeAttemptsSoFar, maxUpgradeAttempts_);
  switch (decision) {
  case HelperVersionDecision::proceed: classification_ = HelperVersionClassification::matched; break;
  case HelperVersionDecision::stale: classification_ = HelperVersionClassification::stale; break;
  case HelperVersionDecision::triggerUpgradeSwap: break; // What comes next has still to be seen.
  }
  return decision;
}

} // namespace ventolith::helper
