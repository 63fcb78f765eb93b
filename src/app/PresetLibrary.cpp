#include "app/PresetLibrary.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace ventolith::app {

using core::ControlTuning;
using core::CurvePoint;
using core::FanControlModePlan;
using core::FanCurve;
using core::FanID;
using core::FanPreset;

namespace PresetLibrary {

namespace {

struct Corner {
  double celsius;
  double percent;
};

FanCurve curveThrough(const std::vector<Corner>& corners) {
  FanCurve curve;
  curve.interpolation = core::CurveInterpolation::monotone;
  for (const Corner& corner : corners)
    curve.points.push_back(CurvePoint{.celsius = corner.celsius, .percent = corner.percent});
  return curve;
}

FanPreset builtIn(const core::UUID& id, std::string name, const FanCurve& curve, const ControlTuning& tuning,
                  const std::vector<FanID>& fanIDs) {
  FanPreset preset{.id = id, .name = std::move(name), .isBuiltIn = true, .plan = {.tuning = tuning}};
  for (const FanID fanID : fanIDs)
    preset.plan.fans.push_back({.fanID = fanID, .mode = FanControlModePlan::curve(curve)});
  return preset;
}

/// A text that is no identifier is a mistake in this file, and ends the program when it starts.
core::UUID fixedID(std::string_view text) {
  return core::uuidFromText(text).value();
}

} // namespace

const core::UUID quietID = fixedID("C0010001-0000-4000-A000-000000000001");
const core::UUID balancedID = fixedID("C0010002-0000-4000-A000-000000000002");
const core::UUID maxID = fixedID("C0010003-0000-4000-A000-000000000003");

FanPreset quiet(const std::vector<FanID>& fanIDs) {
  return builtIn(quietID, "Quiet", curveThrough({{45, 0}, {65, 20}, {80, 55}, {92, 100}}),
                 {.emaAlpha = 0.2, .hysteresisCelsius = 3, .maxDeltaRPMPerTick = 250, .minDwellSeconds = 4},
                 fanIDs);
}

FanPreset balanced(const std::vector<FanID>& fanIDs) {
  return builtIn(balancedID, "Balanced", curveThrough({{40, 10}, {58, 35}, {75, 70}, {90, 100}}),
                 ControlTuning(), fanIDs);
}

FanPreset maxx(const std::vector<FanID>& fanIDs) {
  return builtIn(maxID, "Max", curveThrough({{35, 45}, {55, 80}, {72, 100}}),
                 {.emaAlpha = 0.4, .hysteresisCelsius = 1.5, .maxDeltaRPMPerTick = 700, .minDwellSeconds = 2},
                 fanIDs);
}

std::vector<FanPreset> builtIns(const std::vector<FanID>& fanIDs) {
  return {quiet(fanIDs), balanced(fanIDs), maxx(fanIDs)};
}

} // namespace PresetLibrary

FanPresets presetsAfterUpserting(const FanPreset& preset, FanPresets presets) {
  const auto known = std::ranges::find(presets, preset.id, &FanPreset::id);
  if (known == presets.end())
    presets.push_back(preset);
  else
    *known = preset;
  return presets;
}

std::optional<FanPresets> presetsAfterDeleting(const FanPreset& preset, FanPresets presets) {
  if (preset.isBuiltIn) return std::nullopt;
  std::erase_if(presets, [&](const FanPreset& one) { return one.id == preset.id; });
  return presets;
}

} // namespace ventolith::app
