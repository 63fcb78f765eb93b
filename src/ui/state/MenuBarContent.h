// What stands in the menu bar, and in the panel that drops from it.
#pragma once

#include "core/ControlContract.h"
#include "core/SensorSnapshot.h"
#include "core/TemperatureScale.h"
#include "ui/state/ModeBadge.h"
#include "ui/state/SpeedRange.h"

#include <QString>

#include <optional>
#include <vector>

namespace ventolith::ui {

/// Beside the icon; with neither part it is the icon alone.
struct MenuBarLabelContent {
  QString temperature; // "62°"; empty without sensors.
  QString speed;       // "2310rpm"; empty without fans.
  QString figure;      // "2310": the speed where there is no room for its unit.

  bool operator==(const MenuBarLabelContent&) const = default;
};

[[nodiscard]] MenuBarLabelContent menuBarLabelContent(const core::SensorSnapshot& snapshot,
                                                      const std::optional<core::Fan>& representativeFan);

struct PanelHeaderContent {
  QString title; // The hottest sensor, or that there is none.
  QString statusWord;
  QString temperature;            // "62°C"; empty without sensors.
  std::optional<core::Color> dot; // None without sensors, where `symbol` stands instead.
  QString symbol;

  bool operator==(const PanelHeaderContent&) const = default;
};

/// `statusWord` is what `runningNow` gives.
[[nodiscard]] PanelHeaderContent panelHeaderContent(const core::SensorSnapshot& snapshot,
                                                    const QString& statusWord, core::ColorScheme scheme);

struct SensorChipContent {
  QString name;
  QString temperature; // "62°".
  core::Color dot;

  bool operator==(const SensorChipContent&) const = default;
};

/// Of the first three sensors of the snapshot. Their row, and the divider under it, is there only if it
/// holds any.
[[nodiscard]] std::vector<SensorChipContent> sensorChips(const core::SensorSnapshot& snapshot,
                                                         core::ColorScheme scheme);

/// What the model says about a fan.
struct FanControlBlockState {
  core::Fan fan;
  core::ControlMode mode = core::ControlMode::automatic;
  double sliderValue = 0; // RPM.
  bool canControlFans = false;
  bool isHelperActive = false;
};

struct FanControlBlockContent {
  QString name;
  QString speed; // "2310 rpm".
  ModeBadge badge;
  SpeedRange sliderRange;
  double sliderValue = 0;
  QString percentage;
  bool isSliderEnabled = false; // On a curve too, unlike the tile's: letting go takes the fan off it.
  bool isFullBlastEnabled = false;
  bool isAutoEnabled = false; // Stricter than the tile's.
  QString fullBlastToolTip;
  QString autoToolTip;

  // For assistive technology.
  QString spokenSliderName;
  QString spokenSliderValue;
  QString spokenSliderHint;
  QString spokenFullBlast;
  QString spokenAuto;

  bool operator==(const FanControlBlockContent&) const = default;
};

[[nodiscard]] FanControlBlockContent fanControlBlockContent(const FanControlBlockState& state);

struct MenuBarTexts {
  QString noFans;
  QString preset;
  QString restoreAuto;
  QString restoreAutoToolTip;
  QString openWindow;
  QString openWindowToolTip;
  QString support;
  QString quit;
};
[[nodiscard]] MenuBarTexts menuBarTexts();

} // namespace ventolith::ui
