// What one fan's tile on the dashboard shows, and which of its controls can be used.
#pragma once

#include "core/ControlContract.h"
#include "core/SensorSnapshot.h"
#include "ui/state/ModeBadge.h"
#include "ui/state/SpeedRange.h"

#include <QString>

#include <optional>
#include <string>

namespace ventolith::ui {

/// What the model says about a fan.
struct FanTileState {
  core::Fan fan;
  core::ControlMode mode = core::ControlMode::automatic;
  double sliderValue = 0;                      // RPM.
  bool isStopped = false;                      // Parked at no speed by its curve.
  std::optional<std::string> activePresetName; // None without an active preset.
  bool canControlFans = false;
};

struct FanTileContent {
  QString name;
  ModeBadge badge;
  double gauge = 0; // 0 to 1, of the measured speed.
  QString speed;    // "2310", which "rpm" follows in a smaller face.
  QString rangeText;
  QString statusLine;
  QString controlTitle;
  QString percentage;
  SpeedRange sliderRange;
  double sliderValue = 0;
  bool isSliderEnabled = false;
  bool isFullBlastEnabled = false;
  bool isAutoEnabled = true; // The way back to the firmware is never blocked.

  bool operator==(const FanTileContent&) const = default;
};

[[nodiscard]] FanTileContent fanTileContent(const FanTileState& state);

/// The words that stand on every tile.
struct FanTileTexts {
  QString speedUnit;
  QString fullBlast;
  QString automatic;
};
[[nodiscard]] FanTileTexts fanTileTexts();

} // namespace ventolith::ui
