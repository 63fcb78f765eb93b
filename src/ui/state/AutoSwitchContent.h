// The section that chooses presets by power source.
#pragma once

#include "app/PowerSource.h"
#include "core/FanControlPlan.h"
#include "ui/state/PickerContent.h"

#include <QString>

#include <optional>
#include <vector>

namespace ventolith::ui {

using PresetPicker = PickerContent<std::optional<core::UUID>>;

struct AutoSwitchContent {
  bool isOn = false;
  PresetPicker onBattery; // "Don't change" first; none marked for a preset that is gone.
  PresetPicker onAC;
  bool arePickersEnabled = false;
  QString currently; // "Currently: on battery".

  bool operator==(const AutoSwitchContent&) const = default;
};

[[nodiscard]] AutoSwitchContent autoSwitchContent(const core::AutoSwitchSettings& settings,
                                                  const std::vector<core::FanPreset>& presets,
                                                  app::PowerSource powerSource);

// Each changes the one field.
[[nodiscard]] core::AutoSwitchSettings withAutoSwitch(core::AutoSwitchSettings settings, bool isOn);
[[nodiscard]] core::AutoSwitchSettings withOnBattery(core::AutoSwitchSettings settings,
                                                     std::optional<core::UUID> presetID);
[[nodiscard]] core::AutoSwitchSettings withOnAC(core::AutoSwitchSettings settings,
                                                std::optional<core::UUID> presetID);

struct AutoSwitchTexts {
  QString heading;
  QString switchLabel;
  QString onBattery;
  QString onAC;
  QString caption;
};
[[nodiscard]] AutoSwitchTexts autoSwitchTexts();

} // namespace ventolith::ui
