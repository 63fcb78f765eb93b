// The words of the curve editor, and what its menus list.
#pragma once

#include "core/FanCurve.h"
#include "core/SensorSnapshot.h"
#include "ui/state/ChartGeometry.h"
#include "ui/state/PickerContent.h"

#include <QString>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace ventolith::ui {

struct CurveEditingTexts {
  QString title;
  QString subtitle;
  QString noFans;
  QString fan;
  QString linkFans;
  QString sourceSensor;
  QString sourceSensorCaption;
  QString temperatureAxis;
  QString speedAxis;
  QString safetyOverride;
  QString addPoint;
  QString deletePoint;
  QString reset;
  QString saveAsPreset;
  QString caption; // Under the row of buttons.
  QString popoverHeading;
  QString namePlaceholder;
  QString presetNameDraft; // What the name field begins with.
  QString cancel;
  QString save;
  QString tuning;
  QString tuningCaption;
  QString hysteresis;
  QString response;
  QString slow;
  QString fast;
};
[[nodiscard]] CurveEditingTexts curveEditingTexts();

/// The line under the chart. Its numbers are cut, not rounded, unlike those of the dashboard.
[[nodiscard]] QString liveLine(const std::optional<ChartValue>& livePoint);
/// The label beside the live point: "61°C · 42%", cut likewise.
[[nodiscard]] QString liveLabelText(ChartValue livePoint);

/// "2.0 °C".
[[nodiscard]] QString hysteresisText(double celsius);
/// "Slow", "Medium" or "Fast".
[[nodiscard]] QString responseWord(double alpha);

/// What is spoken of a point of the curve: "Point 2 of 4" and "60°C, 40%".
[[nodiscard]] QString spokenPointName(std::size_t place, std::size_t count);
[[nodiscard]] QString spokenPointValue(const core::CurvePoint& point);

/// The fans by name; the one that is marked may be gone.
[[nodiscard]] PickerContent<core::FanID> fanPicker(const core::SensorSnapshot& snapshot,
                                                   std::optional<core::FanID> selected);
/// "Hottest", which is no sensor, then the sensors by name; none is marked when the sensor is gone.
[[nodiscard]] PickerContent<std::optional<std::string>>
sourceSensorPicker(const core::SensorSnapshot& snapshot, const std::optional<std::string>& selected);

} // namespace ventolith::ui
