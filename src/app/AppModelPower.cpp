// AppModel's switching of presets with the power source. The rule is a state, not an edge: each notification
// puts the preset of the present source in charge again, also after a choice by hand.
#include "app/AppModel.h"

#include <boost/asio/post.hpp>

#include <algorithm>
#include <utility>

namespace ventolith::app {

namespace {

/// `owned`, which goes away on `executor`, wherever it is let go of.
template <class Value>
std::shared_ptr<Value> releasedOn(const runtime::Executor& executor, std::shared_ptr<Value> owned) {
  Value* const address = owned.get();
  return {address, [executor, owned = std::move(owned)](Value*) mutable {
            boost::asio::post(executor, [released = std::move(owned)] {});
          }};
}

} // namespace

void AppModel::beginPowerMonitor(std::unique_ptr<PowerSourceProvider> provider) {
  const auto onChange = [main = its_.mainExecutor, model = weak_from_this()](PowerSource source) {
    boost::asio::post(main, [model, source] {
      if (const auto self = model.lock()) self->handlePowerChange(source);
    });
  };
  powerMonitor_ =
      releasedOn(its_.engineExecutor, std::make_shared<PowerSourceMonitor>(std::move(provider), onChange));
  boost::asio::post(its_.engineExecutor, [monitor = powerMonitor_] { monitor->start(); });
}

void AppModel::setAutoSwitch(core::AutoSwitchSettings settings) {
  assign(AppModelField::autoSwitch, autoSwitch_, settings);
  its_.configStore.saveAutoSwitch(autoSwitch_);
  handlePowerChange(powerSource_);
}

void AppModel::handlePowerChange(PowerSource source) {
  assign(AppModelField::powerSource, powerSource_, source);
  if (!autoSwitch_.enabled) return;
  const auto id = presetIDFor(source);
  if (!id) return;
  const auto isChosen = [id](const core::FanPreset& preset) { return preset.id == *id; };
  const auto chosen = std::find_if(presets_.begin(), presets_.end(), isChosen);
  if (chosen == presets_.end() || activePresetID_ == id) return;
  activatePreset(*chosen);
}

std::optional<core::UUID> AppModel::presetIDFor(PowerSource source) const {
  switch (source) {
  case PowerSource::ac: return autoSwitch_.onACPresetID;
  case PowerSource::battery: return autoSwitch_.onBatteryPresetID;
  case PowerSource::unknown: break;
  }
  return std::nullopt;
}

} // namespace ventolith::app
