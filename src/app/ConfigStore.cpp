#include "app/ConfigStore.h"

#include "core/JSON.h"

#include <exception>

namespace ventolith::app {

namespace {

using core::FanControlPlan;
using core::FanPreset;
using core::JSON;
using core::JSONReader;

constexpr const char* planFile = "plan.json";
constexpr const char* presetsFile = "presets.json";
constexpr const char* activeFile = "active.json";
constexpr const char* autoSwitchFile = "autoswitch.json";

/// The file is an object, and not a bare string.
JSON activePresetJSON(const core::UUID& id) {
  return {{"id", core::uuidText(id)}};
}

core::UUID readActivePresetID(const JSONReader& json) {
  return json.at("id").asUUID();
}

JSON presetsJSON(const std::vector<FanPreset>& presets) {
  JSON list = JSON::array();
  for (const FanPreset& preset : presets)
    list.push_back(core::toJSON(preset));
  return list;
}

std::vector<FanPreset> readPresets(const JSONReader& json) {
  return core::readList(json, core::readFanPreset);
}

template <class Value>
std::optional<Value> decoded(const std::optional<JSON>& document, Value (*read)(const JSONReader&)) {
  if (!document) return std::nullopt;
  try {
    return read(JSONReader(*document));
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

} // namespace

std::optional<FanControlPlan> ConfigStore::loadPlan() const {
  return decoded(files_.read(planFile), core::readFanControlPlan);
}

void ConfigStore::savePlan(const FanControlPlan& plan) const {
  files_.write(planFile, core::toJSON(plan));
}

std::optional<std::vector<FanPreset>> ConfigStore::loadPresets() const {
  return decoded(files_.read(presetsFile), readPresets);
}

void ConfigStore::savePresets(const std::vector<FanPreset>& presets) const {
  files_.write(presetsFile, presetsJSON(presets));
}

std::optional<core::UUID> ConfigStore::loadActivePresetID() const {
  return decoded(files_.read(activeFile), readActivePresetID);
}

void ConfigStore::saveActivePresetID(const std::optional<core::UUID>& id) const {
  if (id)
    files_.write(activeFile, activePresetJSON(*id));
  else
    files_.remove(activeFile);
}

std::optional<core::AutoSwitchSettings> ConfigStore::loadAutoSwitch() const {
  return decoded(files_.read(autoSwitchFile), core::readAutoSwitchSettings);
}

void ConfigStore::saveAutoSwitch(const core::AutoSwitchSettings& settings) const {
  files_.write(autoSwitchFile, core::toJSON(settings));
}

} // namespace ventolith::app
