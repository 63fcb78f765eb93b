// A store on a disk in memory, and sample values for its four files.
#pragma once

#include "app/ConfigStore.h"
#include "support/VirtualDisk.h"

#include <string>
#include <vector>

namespace ventolith::app {

struct ConfigFiles {
  support::VirtualDisk disk;
  const std::filesystem::path userFolder = "/home/user/config";
  const ConfigStore store{disk, [this] { return userFolder; }};

  [[nodiscard]] std::filesystem::path path(const std::string& name) const {
    return userFolder / "Ventolith" / name;
  }
  void put(const std::string& name, const std::string& text) { disk.put(path(name), text); }
  /// A whole file; fails with std::out_of_range if there is none.
  [[nodiscard]] std::string text(const std::string& name) const { return disk.files().at(path(name)); }
  [[nodiscard]] bool has(const std::string& name) const { return disk.files().contains(path(name)); }
};

namespace samples {

inline core::UUID id(const char* text) {
  return core::uuidFromText(text).value();
}

inline const core::UUID firstID = id("0D4A7E10-5A2B-4E57-8B6E-2F1F6C9E3D02");
inline const core::UUID secondID = id("6F1C0E52-8C54-4D0B-9B0E-0E4C2C1B7A11");
inline const core::UUID thirdID = id("C0010002-0000-4000-A000-000000000002");

/// One fan of each kind, one rule of each, and names that need care.
inline core::FanControlPlan plan() {
  core::FanCurve curve;
  curve.sourceSensorID = "SMC-TCHP";
  curve.points = {{firstID, 45, 0}, {secondID, 65.5, 100}};
  curve.interpolation = core::CurveInterpolation::monotone;
  core::FanControlPlan plan;
  plan.fans = {{0, core::FanControlModePlan::curve(curve)},
               {1, core::FanControlModePlan::automatic()},
               {2, core::FanControlModePlan::fixedRPM(2500)},
               {3, core::FanControlModePlan::fixedPercent(37.5)}};
  plan.rules = {{.id = secondID,
                 .name = "CPU/GPU \"hot\" Lüfter",
                 .sensorID = "SMC-TCHP",
                 .thresholdCelsius = 85,
                 .releaseBelowCelsius = 80.25,
                 .targetPercent = 100,
                 .fanTarget = core::RuleFanTarget::all(),
                 .dwellSeconds = 2,
                 .enabled = true},
                {.id = thirdID,
                 .name = "",
                 .thresholdCelsius = 60,
                 .releaseBelowCelsius = 55,
                 .targetPercent = 50,
                 .fanTarget = core::RuleFanTarget::fan(1),
                 .dwellSeconds = 0.5,
                 .enabled = false}};
  plan.tuning.emaAlpha = 0.25;
  return plan;
}

inline std::vector<core::FanPreset> presets() {
  return {{.id = secondID, .name = "Work / Play", .isBuiltIn = false, .plan = plan()},
          {.id = firstID, .name = "Idle", .isBuiltIn = true, .plan = core::FanControlPlan::allAutomatic}};
}

inline core::AutoSwitchSettings autoSwitch() {
  return {.enabled = true, .onBatteryPresetID = firstID, .onACPresetID = secondID};
}

} // namespace samples
} // namespace ventolith::app
