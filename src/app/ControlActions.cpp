#include "app/ControlActions.h"

#include "core/Visitor.h"

#include <algorithm>
#include <utility>

namespace ventolith::app {

using core::Fan;
using core::FanControlModePlan;
using core::FanControlPlan;
using core::FanID;
using core::FanPlan;
using core::FanRule;

FanControlModePlan planModeFor(FanID fan, const FanControlPlan& plan) {
  const auto isOfFan = [fan](const FanPlan& entry) { return entry.fanID == fan; };
  const auto found = std::find_if(plan.fans.begin(), plan.fans.end(), isOfFan);
  return found != plan.fans.end() ? found->mode : FanControlModePlan::automatic();
}

bool hasManualControl(const FanControlPlan& plan) {
  return !plan.fans.empty() || !plan.rules.empty();
}

bool controlsAFan(const FanControlPlan& plan) {
  const auto isControlled = [](const FanPlan& entry) { return !entry.mode.isAutomatic(); };
  return std::any_of(plan.fans.begin(), plan.fans.end(), isControlled);
}

std::vector<FanID> fanIDs(const FanControlPlan& plan) {
  std::vector<FanID> fans;
  for (const FanPlan& entry : plan.fans)
    fans.push_back(entry.fanID);
  return fans;
}

FanControlPlan planForRestoringFanToAutomatic(FanID fan, FanControlPlan currentPlan) {
  return planWithoutFans({fan}, std::move(currentPlan));
}

FanControlPlan planWithoutFans(const std::vector<FanID>& fans, FanControlPlan plan) {
  std::erase_if(plan.fans, [&](const FanPlan& entry) {
    return std::find(fans.begin(), fans.end(), entry.fanID) != fans.end();
  });
  return plan;
}

FanControlPlan planWithFan(FanID fan, FanControlModePlan mode, FanControlPlan plan) {
  FanControlPlan changed = planWithoutFans({fan}, std::move(plan));
  changed.fans.push_back({fan, std::move(mode)});
  return changed;
}

FanControlPlan planWithFullBlast(const std::vector<Fan>& fans, FanControlPlan plan) {
  plan.fans.clear();
  for (const Fan& fan : fans)
    plan.fans.push_back({fan.id, FanControlModePlan::fixedPercent(100)});
  return plan;
}

std::vector<FanRule> rulesAfterUpdating(const FanRule& rule, std::vector<FanRule> rules) {
  const auto isSame = [&](const FanRule& known) { return known.id == rule.id; };
  const auto found = std::find_if(rules.begin(), rules.end(), isSame);
  if (found != rules.end()) *found = rule;
  return rules;
}

std::vector<FanRule> rulesAfterMoving(const std::set<std::size_t>& from, std::size_t destination,
                                      const std::vector<FanRule>& rules) {
  std::vector<FanRule> moved;
  std::vector<FanRule> before;
  std::vector<FanRule> after;
  for (std::size_t place = 0; place < rules.size(); ++place) {
    auto& part = from.contains(place) ? moved : place < destination ? before : after;
    part.push_back(rules[place]);
  }
  before.insert(before.end(), moved.begin(), moved.end());
  before.insert(before.end(), after.begin(), after.end());
  return before;
}

double plannedSliderRPM(const Fan& fan, const FanControlModePlan& mode) {
  const auto minimum = static_cast<double>(fan.minRPM);
  const auto maximum = static_cast<double>(fan.maxRPM);
  const auto current = static_cast<double>(fan.currentRPM);
  return std::visit(core::Visitor{
                        [&](const FanControlModePlan::FixedRPM& fixed) { return fixed.rpm; },
                        [&](const FanControlModePlan::FixedPercent& fixed) {
                          const double percent = std::clamp(fixed.percent, 0.0, 100.0);
                          return percent * (maximum - minimum) / 100.0 + minimum;
                        },
                        [&](const FanControlModePlan::Curve&) { return current; },
                        [&](const FanControlModePlan::Automatic&) { return current; },
                    },
                    mode.value);
}

bool didNotTake(const core::ControlResult& result) {
  return result != core::ControlResult::applied && result != core::ControlResult::acquiring;
}

core::FanCurve defaultCurve() {
  core::FanCurve curve;
  curve.interpolation = core::CurveInterpolation::monotone;
  curve.points = {{.celsius = 40, .percent = 15},
                  {.celsius = 60, .percent = 40},
                  {.celsius = 80, .percent = 75},
                  {.celsius = 92, .percent = 100}};
  return curve;
}

} // namespace ventolith::app
