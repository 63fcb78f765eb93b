#include "app/ConfigStore.h"

#include "core/JSON.h"

#include <exception>
#include <utility>

namespace ventolith::app {

namespace {

using core::FanControlPlan;
using core::FanPreset;
using core::JSON;
using core::JSONReader;

constexpr const char* folderName = "Ventolith";
constexpr const char* planFile = "plan.json";
constexpr const char* presetsFile = "presets.json";
constexpr const char* activeFile = "active.json";
constexpr const char* autoSwitchFile = "autoswitch.json";

/// A preset of ten fans takes some 10 kilobytes and 500 values: this is several hundred of them.
constexpr core::JSONBounds bounds{.bytes = std::size_t{4} << 20, .values = std::size_t{1} << 18};

/// The file is an object, and not a bare string.
struct ActivePresetID {
  core::UUID id;
};

JSON toJSON(const ActivePresetID& active) {
  return {{"id", core::uuidText(active.id)}};
}

ActivePresetID readActivePresetID(const JSONReader& json) {
  return {json.at("id").asUUID()};
}

JSON toJSON(const std::vector<FanPreset>& presets) {
  JSON list = JSON::array();
  for (const FanPreset& preset : presets)
    list.push_back(core::toJSON(preset));
  return list;
}

std::vector<FanPreset> readPresets(const JSONReader& json) {
  return core::readList(json, core::readFanPreset);
}

} // namespace

ConfigStore::ConfigStore(runtime::FileLayer& files, FolderLookup userFolder)
    : files_(&files), userFolder_(std::move(userFolder)) {}

std::optional<FanControlPlan> ConfigStore::loadPlan() const {
  return load(planFile, core::readFanControlPlan);
}

void ConfigStore::savePlan(const FanControlPlan& plan) const {
  save<FanControlPlan>(planFile, plan, core::toJSON);
}

std::optional<std::vector<FanPreset>> ConfigStore::loadPresets() const {
  return load(presetsFile, readPresets);
}

void ConfigStore::savePresets(const std::vector<FanPreset>& presets) const {
  save<std::vector<FanPreset>>(presetsFile, presets, toJSON);
}

std::optional<core::UUID> ConfigStore::loadActivePresetID() const {
  const auto active = load(activeFile, readActivePresetID);
  return active ? std::optional(active->id) : std::nullopt;
}

void ConfigStore::saveActivePresetID(const std::optional<core::UUID>& id) const {
  if (id)
    save<ActivePresetID>(activeFile, {*id}, toJSON);
  else
    (void)files_->remove(directory() / activeFile);
}

std::optional<core::AutoSwitchSettings> ConfigStore::loadAutoSwitch() const {
  return load(autoSwitchFile, core::readAutoSwitchSettings);
}

void ConfigStore::saveAutoSwitch(const core::AutoSwitchSettings& settings) const {
  save<core::AutoSwitchSettings>(autoSwitchFile, settings, core::toJSON);
}

std::filesystem::path ConfigStore::directory() const {
  return userFolder_() / folderName;
}

void ConfigStore::ensureDirectory() const {
  (void)files_->createFolders(directory());
}

template <class Value>
std::optional<Value> ConfigStore::load(const char* name, Value (*read)(const JSONReader&)) const {
  const auto text = files_->read(directory() / name, bounds.bytes);
  if (!text) return std::nullopt;
  try {
    const JSON document = core::parseJSON(*text, bounds);
    return read(JSONReader(document));
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

template <class Value>
void ConfigStore::save(const char* name, const Value& value, JSON (*write)(const Value&)) const {
  ensureDirectory();
  std::string text;
  try {
    text = core::writePrettyJSON(write(value));
  } catch (const std::exception&) { // A number that is not finite has no form.
    return;
  }
  (void)runtime::replaceFile(*files_, directory() / name, text, runtime::ordinaryFile);
}

} // namespace ventolith::app
