#include "ui/HelperActions.h"

namespace ventolith::ui {

HelperCondition helperCondition(const app::AppModel& model) {
  const auto& manager = model.helperManager();
  return {.isHelperActive = model.isHelperActive(),
          .isHelperStale = manager && manager->isHelperStale(),
          .isAttemptingStaleRecovery = manager && manager->isAttemptingStaleRecovery()};
}

void repairHelper(HelperNotice::Kind kind, const ViewContext& context) {
  if (kind == HelperNotice::Kind::inactive) return context.model.beginHelperOnboarding();
  const auto& manager = context.model.helperManager();
  if (!manager) return;
  runtime::start(context.mainExecutor, "the restart of the helper", manager->recoverFromStaleHelper());
}

} // namespace ventolith::ui
