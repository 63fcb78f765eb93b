// What to make of a helper's build. After an update the application is new while the helper that runs may
// still be the old one: such a helper is asked to end, so that the new build starts, and is called stale
// after a few tries. The decisions are pure; `XPCFanController` does the driving.
#pragma once

#include <cstdint>

namespace ventolith::helper {

/// What came of asking a helper for its build.
enum class HelperVersionProbe {
  matched,    ///< Exactly the application's own.
  mismatched, ///< Another.
  noReply,
};

enum class HelperVersionDecision {
  proceed,
  triggerUpgradeSwap, ///< Ask it to end, and look again.
  stale,              ///< It cannot be trusted, and asking it to end is of no use.
};

enum class HelperVersionClassification { unknown, matched, stale };

struct HelperVersionReconciliation {
  static constexpr std::int64_t defaultMaxUpgradeAttempts = 3;

  /// A helper that does not reply is stale at once: it cannot be asked to end.
  [[nodiscard]] static HelperVersionDecision
  decide(HelperVersionProbe probe, std::int64_t upgradeAttemptsSoFar, std::int64_t maxUpgradeAttempts);
};

/// What is known of the helper on one connection.
class HelperVersionReconciler {
public:
  explicit HelperVersionReconciler(std::int64_t maxUpgradeAttempts)
      : maxUpgradeAttempts_(maxUpgradeAttempts) {}

  [[nodiscard]] bool needsProbe() const { return classification_ == HelperVersionClassification::unknown; }
  [[nodiscard]] HelperVersionClassification classification() const { return classification_; }

  /// The helper at the other end may be another one now.
  void connectionChanged() { classification_ = HelperVersionClassification::unknown; }

  /// Takes note of a probe and decides. The attempts are those of the whole process, this one not included.
  [[nodiscard]] HelperVersionDecision next(HelperVersionProbe afterProbe,
                                           std::int64_t totalUpgradeAttemptsSoFar);

  bool operator==(const HelperVersionReconciler&) const = default;

private:
  HelperVersionClassification classification_ = HelperVersionClassification::unknown;
  std::int64_t maxUpgradeAttempts_;
};

} // namespace ventolith::helper
