// What the dashboard shows besides its fan tiles and its banners.
#pragma once

#include "core/SensorSnapshot.h"
#include "core/TemperatureScale.h"

#include <QString>

namespace ventolith::ui {

struct SensorRowContent {
  QString name;
  QString detail;    // "CPU · Working".
  QString reading;   // "61.7°C".
  core::Color color; // Of the dot and of the reading.

  bool operator==(const SensorRowContent&) const = default;
};

[[nodiscard]] SensorRowContent sensorRowContent(const core::TempSensor& sensor, core::ColorScheme scheme);

struct DashboardTexts {
  QString fans;
  QString noFans;
  QString sensors;
  QString noSensors;
};
[[nodiscard]] DashboardTexts dashboardTexts();

} // namespace ventolith::ui
