// A reading of the machine as text for people.
#pragma once

#include "core/SensorSnapshot.h"
#include "programs/ventolithctl/Output.h"

#include <string>
#include <vector>

namespace ventolith::ctl {

struct TableStyle {
  int columns = 80;
  ColorDepth colors = ColorDepth::none;
  bool showsSensorIDs = false; // By which plans name a sensor; one sensor a line then.
};

/// A line a fan, with a bar over its range and its mode; then the sensors, in as many columns as fit,
/// each with its band. No line is wider than the style's columns (of 30 at the least).
[[nodiscard]] std::vector<std::string> readingTable(const core::SensorSnapshot& snapshot,
                                                    const TableStyle& style);

/// The reading in one sentence: the hottest sensor, and who drives the fans.
[[nodiscard]] std::string stateLine(const core::SensorSnapshot& snapshot);

/// The whole reading on one line, for logs.
[[nodiscard]] std::string logLine(double seconds, const core::SensorSnapshot& snapshot);

} // namespace ventolith::ctl
