#include "ui/state/AutoSwitchContent.h"

#include "ui/state/Numbers.h"

#include <QCoreApplication>

namespace ventolith::ui {

namespace {

class AutoSwitch {
  Q_DECLARE_TR_FUNCTIONS(AutoSwitch)
};

PresetPicker presetPicker(const std::vector<core::FanPreset>& presets,
                          const std::optional<core::UUID>& selected) {
  PresetPicker picker;
  picker.entries.push_back({std::nullopt, AutoSwitch::tr("Don't change")});
  for (const core::FanPreset& preset : presets)
    picker.entries.push_back({preset.id, utf8Text(preset.name)});
  picker.select(selected);
  return picker;
}

QString powerSourceText(app::PowerSource source) {
  switch (source) {
  case app::PowerSource::ac: return AutoSwitch::tr("on AC power");
  case app::PowerSource::battery: return AutoSwitch::tr("on battery");
  case app::PowerSource::unknown: break;
  }
  return AutoSwitch::tr("unknown power source");
}

} // namespace

AutoSwitchContent autoSwitchContent(const core::AutoSwitchSettings& settings,
                                    const std::vector<core::FanPreset>& presets,
                                    app::PowerSource powerSource) {
  return {.isOn = settings.enabled,
          .onBattery = presetPicker(presets, settings.onBatteryPresetID),
          .onAC = presetPicker(presets, settings.onACPresetID),
          .arePickersEnabled = settings.enabled,
          .currently = AutoSwitch::tr("Currently: %1").arg(powerSourceText(powerSource))};
}

core::AutoSwitchSettings withAutoSwitch(core::AutoSwitchSettings settings, bool isOn) {
  settings.enabled = isOn;
  return settings;
}

core::AutoSwitchSettings withOnBattery(core::AutoSwitchSettings settings,
                                       std::optional<core::UUID> presetID) {
  settings.onBatteryPresetID = presetID;
  return settings;
}

core::AutoSwitchSettings withOnAC(core::AutoSwitchSettings settings, std::optional<core::UUID> presetID) {
  settings.onACPresetID = presetID;
  return settings;
}

AutoSwitchTexts autoSwitchTexts() {
  return {
      .heading = AutoSwitch::tr("Auto-switch"),
      .switchLabel = AutoSwitch::tr("Switch presets automatically on power source"),
      .onBattery = AutoSwitch::tr("On battery →"),
      .onAC = AutoSwitch::tr("On AC power →"),
      .caption = AutoSwitch::tr("Ventolith switches to the chosen preset when you plug in or unplug. "
                                "Overrides your manual choice when the power source changes."),
  };
}

} // namespace ventolith::ui
