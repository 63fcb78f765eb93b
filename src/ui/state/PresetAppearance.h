// How a preset looks on its card: its colour, its caption and its small picture.
#pragma once

#include "core/FanControlPlan.h"
#include "core/TemperatureScale.h"
#include "ui/state/ChartGeometry.h"

#include <QString>

#include <vector>

namespace ventolith::ui {

/// A colour of the wheel as sRGB: `hue`, `saturation` and `brightness` each 0 to 1; a hue of 1 is one of 0.
[[nodiscard]] core::Color colorOfHue(double hue, double saturation, double brightness);

/// Depends on the identifier alone, so that a preset keeps its colour across renames.
[[nodiscard]] core::Color presetDotColor(const core::UUID& id, core::ColorScheme scheme);

[[nodiscard]] QString presetCaption(const core::UUID& id);

// The chart of a thumbnail. It ends earlier than that of the curve editor.
inline constexpr ChartDomain thumbnailTemperatures{.lower = 30, .upper = 100};
inline constexpr double thumbnailStep = 5; // Degrees Celsius.
inline constexpr int thumbnailWidth = 120;
inline constexpr int thumbnailHeight = 44;

struct PresetThumbnail {
  enum class Kind {
    noFans, ///< Its text alone.
    curve,  ///< A line.
    manual, ///< An icon and its text, for whatever is no curve.
  };

  Kind kind = Kind::noFans;
  QString text;
  QString symbol;
  std::vector<ChartValue> samples;

  bool operator==(const PresetThumbnail&) const = default;
};

/// Of the first fan of the preset's plan.
[[nodiscard]] PresetThumbnail presetThumbnail(const core::FanPreset& preset);

} // namespace ventolith::ui
