// The helper as the dashboard and the menu bar's panel see it, and the one button that repairs it.
#pragma once

#include "ui/ModelView.h"
#include "ui/state/HelperNotice.h"

namespace ventolith::ui {

/// What the model and its helper's manager say now.
[[nodiscard]] HelperCondition helperCondition(const app::AppModel& model);

/// What the button of such a notice does: begins the onboarding, or restarts the helper. Returns at once.
void repairHelper(HelperNotice::Kind kind, const ViewContext& context);

} // namespace ventolith::ui
