// What the user's actions make of a plan, and what a slider shows of it. Pure.
#pragma once

#include "core/ControlContract.h"
#include "core/SensorSnapshot.h"

#include <cstddef>
#include <set>
#include <vector>

namespace ventolith::app {

/// Of the first entry for the fan; automatic if there is none.
[[nodiscard]] core::FanControlModePlan planModeFor(core::FanID fan, const core::FanControlPlan& plan);

/// At least one fan entry or one rule: a plan that a helper has something to do for.
[[nodiscard]] bool hasManualControl(const core::FanControlPlan& plan);

/// At least one fan entry that is not automatic.
[[nodiscard]] bool controlsAFan(const core::FanControlPlan& plan);

[[nodiscard]] std::vector<core::FanID> fanIDs(const core::FanControlPlan& plan);

/// Without any entry for the fan: absence is automatic.
[[nodiscard]] core::FanControlPlan planForRestoringFanToAutomatic(core::FanID fan,
                                                                  core::FanControlPlan currentPlan);

/// Without any entry for one of `fans`; rules and tuning stay.
[[nodiscard]] core::FanControlPlan planWithoutFans(const std::vector<core::FanID>& fans,
                                                   core::FanControlPlan plan);

/// With one entry for the fan, at the end.
[[nodiscard]] core::FanControlPlan planWithFan(core::FanID fan, core::FanControlModePlan mode,
                                               core::FanControlPlan plan);

/// With an entry of 100 % for each of `fans`, in their order, and no others; rules and tuning stay.
[[nodiscard]] core::FanControlPlan planWithFullBlast(const std::vector<core::Fan>& fans,
                                                     core::FanControlPlan plan);

/// With `rule` in the place of the first of its identifier; unchanged if there is none.
[[nodiscard]] std::vector<core::FanRule> rulesAfterUpdating(const core::FanRule& rule,
                                                            std::vector<core::FanRule> rules);

/// The rules at the places `from` taken out, in their order, and put in before the one that stood at
/// `destination`. Places beyond the end move nothing, a destination beyond it is the end.
[[nodiscard]] std::vector<core::FanRule> rulesAfterMoving(const std::set<std::size_t>& from,
                                                          std::size_t destination,
                                                          const std::vector<core::FanRule>& rules);

/// The RPM of a fan's slider that nobody holds: what the plan asks for, or else what the fan does.
[[nodiscard]] double plannedSliderRPM(const core::Fan& fan, const core::FanControlModePlan& mode);

/// Whether a plan with that outcome did not take, so that its fans must not be shown as controlled.
[[nodiscard]] bool didNotTake(const core::ControlResult& result);

/// What the curve editor begins with for a fan without a curve; its points have new identifiers each time.
[[nodiscard]] core::FanCurve defaultCurve();

} // namespace ventolith::app
