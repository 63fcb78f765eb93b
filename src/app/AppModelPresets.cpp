// AppModel's presets. To activate one copies its plan: a preset is a template, and no later edit of the
// active plan reaches it.
#include "app/AppModel.h"
#include "app/PresetLibrary.h"
#include "app/platform-kit/TrimmedText.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace ventolith::app {

using core::FanPreset;
using core::UUID;

namespace {

/// Nothing but blanks on one line: a line end counts as text.
bool isBlank(std::string_view name) {
  using std::string_view_literals::operator""sv;
  constexpr std::array lineEnds = {"\n"sv, "\v"sv, "\f"sv, "\r"sv, "\u0085"sv, "\u2028"sv, "\u2029"sv};
  const auto isInName = [name](std::string_view end) { return name.find(end) != std::string_view::npos; };
  return trimmed(name).empty() && std::none_of(lineEnds.begin(), lineEnds.end(), isInName);
}

std::optional<FanPreset> presetOf(const UUID& id, const std::vector<FanPreset>& presets) {
  const auto isWanted = [id](const FanPreset& preset) { return preset.id == id; };
  const auto found = std::find_if(presets.begin(), presets.end(), isWanted);
  return found != presets.end() ? std::optional(*found) : std::nullopt;
}

} // namespace

std::optional<FanPreset> AppModel::activePreset() const {
  return activePresetID_ ? presetOf(*activePresetID_, presets_) : std::nullopt;
}

void AppModel::activatePreset(FanPreset preset) {
  publishAndSaveActivePreset(preset.id);
  applyPlan(std::move(preset.plan));
}

void AppModel::addOrUpdatePreset(const FanPreset& preset) {
  publishAndSavePresets(presetsAfterUpserting(preset, presets_));
}

void AppModel::deletePreset(const FanPreset& preset) {
  const UUID id = preset.id; // Which may stand in the list.
  auto remaining = presetsAfterDeleting(preset, presets_);
  if (!remaining) return;
  publishAndSavePresets(std::move(*remaining));
  if (activePresetID_ == id) clearActivePreset();
}

void AppModel::duplicatePreset(const FanPreset& preset) {
  addOrUpdatePreset({.name = preset.name + " copy", .isBuiltIn = false, .plan = preset.plan});
}

void AppModel::newPresetFromCurrent(std::string name) {
  FanPreset preset{.name = std::move(name), .isBuiltIn = false, .plan = activePlan_};
  addOrUpdatePreset(preset);
  activatePreset(std::move(preset));
}

void AppModel::renamePreset(FanPreset preset, std::string name) {
  if (isBlank(name)) return;
  preset.name = std::move(name);
  addOrUpdatePreset(preset);
}

/// An empty list heals itself; one that is not empty is never touched, even if it lacks a built-in preset.
void AppModel::seedPresetsIfDue() {
  if (!presets_.empty() || snapshot_.fans.empty()) return;
  std::vector<core::FanID> fans;
  for (const core::Fan& fan : snapshot_.fans)
    fans.push_back(fan.id);
  publishAndSavePresets(PresetLibrary::builtIns(fans));
}

void AppModel::publishAndSavePresets(std::vector<FanPreset> presets) {
  assign(AppModelField::presets, presets_, std::move(presets));
  its_.configStore.savePresets(presets_);
}

void AppModel::publishAndSaveActivePreset(std::optional<UUID> id) {
  assign(AppModelField::activePresetID, activePresetID_, id);
  its_.configStore.saveActivePresetID(activePresetID_);
}

} // namespace ventolith::app
