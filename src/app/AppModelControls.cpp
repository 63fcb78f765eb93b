// AppModel's control actions. Each ends in a new plan, and all that is ever sent is whole plans: the active
// plan alone tells what the user wants, and sending it again restores everything.
#include "app/AppModel.h"
#include "app/ControlActions.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace ventolith::app {

using core::ControlResult;
using core::Fan;
using core::FanControlModePlan;
using core::FanControlPlan;
using core::FanID;
using core::FanRule;
using runtime::Async;

void AppModel::applyPlan(FanControlPlan plan) {
  publishAndSavePlan(plan);
  startSending(std::move(plan), Failure::reverts);
}

void AppModel::publishAndSavePlan(FanControlPlan plan) {
  assign(AppModelField::activePlan, activePlan_, std::move(plan));
  its_.configStore.savePlan(activePlan_);
}

void AppModel::startSending(FanControlPlan plan, Failure failure) {
  startOnMain("the sending of a plan", sendPlan(weak_from_this(), std::move(plan), failure));
}

Async<void> AppModel::sendPlan(Weak model, FanControlPlan plan, Failure failure) {
  auto self = model.lock();
  if (!self) co_return;
  const std::vector<FanID> fans = fanIDs(plan);
  auto command = self->controller_->applyPlan(std::move(plan));
  self = nullptr; // The command ends on the controller that it began on, whatever replaces that meanwhile.
  const ControlResult result = co_await std::move(command);
  self = model.lock();
  if (self && failure == Failure::reverts) self->revertToAutomaticIfFailed(result, fans);
}

/// A fan is not to be shown as controlled when the command did not take. The plan of this moment may be newer
/// than the one that failed. What is sent here is not looked after: a controller that refuses everything must
/// not set off a loop.
void AppModel::revertToAutomaticIfFailed(const ControlResult& result, const std::vector<FanID>& fans) {
  if (!didNotTake(result)) return;
  FanControlPlan reduced = planWithoutFans(fans, activePlan_);
  publishAndSavePlan(reduced);
  startSending(std::move(reduced), Failure::isIgnored);
}

void AppModel::setFanMode(FanID fan, FanControlModePlan mode) {
  FanControlPlan plan = mode.isAutomatic() ? planForRestoringFanToAutomatic(fan, activePlan_)
                                           : planWithFan(fan, std::move(mode), activePlan_);
  clearActivePreset();
  applyPlan(std::move(plan));
}

void AppModel::setSlider(FanID fan, double rpm) {
  auto sliders = fanSliderRPM_;
  sliders[fan] = rpm;
  assign(AppModelField::fanSliderRPM, fanSliderRPM_, std::move(sliders));
}

void AppModel::holdSlider(FanID fan) {
  auto dragging = draggingFans_;
  dragging.insert(fan);
  assign(AppModelField::draggingFans, draggingFans_, std::move(dragging));
}

void AppModel::letGoOfSlider(FanID fan) {
  auto dragging = draggingFans_;
  dragging.erase(fan);
  assign(AppModelField::draggingFans, draggingFans_, std::move(dragging));
}

void AppModel::beginManualDrag(const Fan& fan) {
  if (!fanSliderRPM_.contains(fan.id))
    setSlider(fan.id, static_cast<double>(std::max(fan.currentRPM, fan.minRPM)));
  holdSlider(fan.id);
}

void AppModel::previewSliderRPM(const Fan& fan, double rpm) {
  setSlider(fan.id, rpm);
  holdSlider(fan.id);
}

void AppModel::commitManualRPM(const Fan& fan) {
  const auto slider = fanSliderRPM_.find(fan.id);
  const double rpm = slider != fanSliderRPM_.end() ? slider->second : static_cast<double>(fan.currentRPM);
  letGoOfSlider(fan.id);
  setFanMode(fan.id, FanControlModePlan::fixedRPM(std::round(rpm)));
}

void AppModel::abandonManualDrag(const Fan& fan) {
  letGoOfSlider(fan.id);
}

void AppModel::setFanFullBlast(const Fan& fan) {
  setFanMode(fan.id, FanControlModePlan::fixedPercent(100));
  setSlider(fan.id, static_cast<double>(fan.maxRPM));
}

void AppModel::setFanAutomatic(const Fan& fan) {
  setFanMode(fan.id, FanControlModePlan::automatic());
}

void AppModel::activateFullBlast() {
  FanControlPlan plan = planWithFullBlast(snapshot_.fans, activePlan_);
  auto sliders = fanSliderRPM_;
  for (const Fan& fan : snapshot_.fans)
    sliders[fan.id] = static_cast<double>(fan.maxRPM);
  assign(AppModelField::fanSliderRPM, fanSliderRPM_, std::move(sliders));
  clearActivePreset();
  applyPlan(std::move(plan));
}

void AppModel::activateAutomatic() {
  clearActivePreset();
  applyPlan(FanControlPlan::allAutomatic);
}

void AppModel::setFanCurve(const core::FanCurve& curve, const std::vector<FanID>& fanIDs) {
  FanControlPlan plan = activePlan_;
  for (const FanID fan : fanIDs)
    plan = planWithFan(fan, FanControlModePlan::curve(curve), std::move(plan));
  clearActivePreset();
  applyPlan(std::move(plan));
}

void AppModel::setTuning(const core::ControlTuning& tuning) {
  FanControlPlan plan = activePlan_;
  plan.tuning = tuning;
  applyPlan(std::move(plan));
}

void AppModel::setRules(std::vector<FanRule> rules) {
  FanControlPlan plan = activePlan_;
  plan.rules = std::move(rules);
  applyPlan(std::move(plan));
}

void AppModel::addRule(FanRule rule) {
  auto rules = activePlan_.rules;
  rules.push_back(std::move(rule));
  setRules(std::move(rules));
}

void AppModel::updateRule(const FanRule& rule) {
  setRules(rulesAfterUpdating(rule, activePlan_.rules));
}

void AppModel::deleteRule(const core::UUID& id) {
  auto rules = activePlan_.rules;
  std::erase_if(rules, [id](const FanRule& rule) { return rule.id == id; });
  setRules(std::move(rules));
}

void AppModel::moveRules(const std::set<std::size_t>& from, std::size_t destination) {
  setRules(rulesAfterMoving(from, destination, activePlan_.rules));
}

} // namespace ventolith::app
