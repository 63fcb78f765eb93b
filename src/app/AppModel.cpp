#include "app/AppModel.h"

#include "app/ControlActions.h"

#include <algorithm>
#include <utility>

namespace ventolith::app {

using core::ControlMode;
using core::Fan;
using core::FanControlModePlan;
using core::FanID;

std::shared_ptr<AppModel> AppModel::make(AppModelDependencies its) {
  auto model = std::make_shared<AppModel>(Key(), std::move(its));
  model->begin();
  return model;
}

AppModel::AppModel(Key, AppModelDependencies its)
    : its_(std::move(its)),
      updates_(its_.mainExecutor, its_.bundle, its_.makeUpdateEngine),
      firstManager_(std::make_shared<FirstManager>(its_.mainExecutor)) {
  if (auto plan = its_.configStore.loadPlan()) activePlan_ = std::move(*plan);
  if (auto presets = its_.configStore.loadPresets()) presets_ = std::move(*presets);
  activePresetID_ = its_.configStore.loadActivePresetID();
  if (const auto settings = its_.configStore.loadAutoSwitch()) autoSwitch_ = *settings;
  updateMessage_ = idleUpdateMessage();
}

AppModel::~AppModel() {
  stop_.requestStop();
  firstManager_->complete(nullptr);
}

core::FanCurve AppModel::defaultCurve() {
  return app::defaultCurve();
}

FanControlModePlan AppModel::planMode(FanID fan) const {
  return planModeFor(fan, activePlan_);
}

ControlMode AppModel::mode(const Fan& fan) const {
  return core::controlMode(planMode(fan.id));
}

std::optional<core::FanCurve> AppModel::curve(FanID fan) const {
  const FanControlModePlan mode = planMode(fan);
  const auto* const planned = std::get_if<FanControlModePlan::Curve>(&mode.value);
  return planned != nullptr ? std::optional(planned->curve) : std::nullopt;
}

double AppModel::sliderValue(const Fan& fan) const {
  const auto slider = fanSliderRPM_.find(fan.id);
  if (draggingFans_.contains(fan.id) && slider != fanSliderRPM_.end()) return slider->second;
  return plannedSliderRPM(fan, planMode(fan.id));
}

std::set<FanID> AppModel::stoppedFanIDs() const {
  if (!controlState_.stoppedFans) return {};
  return {controlState_.stoppedFans->begin(), controlState_.stoppedFans->end()};
}

std::optional<Fan> AppModel::representativeFan() const {
  const auto isSlower = [](const Fan& one, const Fan& other) { return one.currentRPM < other.currentRPM; };
  const auto fastest = std::max_element(snapshot_.fans.begin(), snapshot_.fans.end(), isSlower);
  return fastest != snapshot_.fans.end() ? std::optional(*fastest) : std::nullopt;
}

void AppModel::setDashboardVisible(bool isVisible) {
  assign(AppModelField::isDashboardVisible, isDashboardVisible_, isVisible);
}

void AppModel::openSupport() {
  if (its_.supportURL) its_.openURL(*its_.supportURL);
}

} // namespace ventolith::app
