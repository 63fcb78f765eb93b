// What a press, a drag, a key and the two buttons make of the points of a curve. Pure.
//
// The points stand in ascending temperature, and a point's neighbours are those beside it in that order.
#pragma once

#include "core/FanCurve.h"
#include "ui/state/ChartGeometry.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace ventolith::ui {

using CurvePoints = std::vector<core::CurvePoint>;

// The reach of a press, in data units.
inline constexpr double reachCelsius = 6;
inline constexpr double reachPercent = 12;

// How finely a point is placed, and how near it may come to a neighbour.
inline constexpr double celsiusStep = 1;
inline constexpr double percentStep = 5;
inline constexpr double neighbourDistance = 1; // Degrees Celsius.

/// In ascending temperature; points of the same temperature keep their order.
[[nodiscard]] CurvePoints sorted(CurvePoints points);

[[nodiscard]] std::optional<std::size_t> placeOf(const core::UUID& id, const CurvePoints& points);

/// The point that a press at `value` picks up: of those within reach the nearest, the first of equals.
[[nodiscard]] std::optional<core::UUID> nearestPoint(ChartValue value, const CurvePoints& points);

/// The point at `place` brought to where `value` drags it: on a whole degree and a step of 5 percent, inside
/// the axes and a degree away from its neighbours. Unchanged where its neighbours leave no room.
[[nodiscard]] core::CurvePoint draggedPoint(ChartValue value, std::size_t place, const CurvePoints& points);

enum class Nudge { cooler, warmer, slower, faster };

/// The point at `place` moved by one step of the drag in one direction, inside the same limits; the other
/// value stays as it is.
[[nodiscard]] core::CurvePoint nudgedPoint(Nudge nudge, std::size_t place, const CurvePoints& points);

/// Where a new point goes: in the middle of the widest gap, the coolest of equally wide ones; in the middle
/// of the axis for fewer than two points.
[[nodiscard]] double temperatureOfNewPoint(const CurvePoints& points);

/// Neither end of a curve can be deleted, and none of two points.
[[nodiscard]] bool canDelete(std::size_t place, const CurvePoints& points);

/// The line of a curve: one value at each step of temperature.
[[nodiscard]] std::vector<ChartValue> samples(const core::FanCurve& curve, const ChartDomain& temperatures,
                                              double step);

} // namespace ventolith::ui
