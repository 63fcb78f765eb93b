// A temperature-to-speed curve and its one evaluation.
#pragma once

#include "core/UUID.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ventolith::core {

struct CurvePoint {
  UUID id = makeUUID();
  double celsius = 0; // Degrees Celsius.
  double percent = 0; // 0 to 100 of the fan's range.

  bool operator==(const CurvePoint&) const = default;
};

/// Carried and stored; the evaluation is piecewise linear for both.
enum class CurveInterpolation { linear, monotone };

[[nodiscard]] std::string_view rawValue(CurveInterpolation interpolation);
[[nodiscard]] std::optional<CurveInterpolation> curveInterpolation(std::string_view rawValue);

struct FanCurve {
  std::optional<std::string> sourceSensorID; // A `TempSensor::id()`; none means the hottest sensor.
  std::vector<CurvePoint> points;            // In the order of editing, which need not be sorted.
  CurveInterpolation interpolation = CurveInterpolation::linear;

  bool operator==(const FanCurve&) const = default;

  /// The fan percentage, 0 to 100, at a temperature in degrees Celsius. Piecewise linear between the
  /// points in ascending temperature, flat outside them, 0 for a curve without points. Of points at the
  /// same temperature the first in stored order ends the line from the left, the last starts the line
  /// to the right.
  [[nodiscard]] double percent(double celsius) const;
};

} // namespace ventolith::core
