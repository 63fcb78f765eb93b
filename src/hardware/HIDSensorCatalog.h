// Which HID readings the user sees, and what they are called.
#pragma once

#include "core/SensorSnapshot.h"
#include "hardware/HIDBridge.h"

#include <string>
#include <string_view>
#include <vector>

namespace ventolith::hardware {

/// A temperature counts only within -40 to 150 degrees Celsius, both ends included; not a number fails.
[[nodiscard]] constexpr bool isPlausibleCelsius(double celsius) {
  return celsius >= -40.0 && celsius <= 150.0;
}

namespace HIDSensorCatalog {

/// Drops calibration values, duplicates, frozen and implausible readings; names the rest; folds the
/// individual SoC sensors into one reading "SoC", their hottest.
[[nodiscard]] std::vector<core::TempSensor> curate(const std::vector<HIDBridge::RawReading>& readings);

/// `category`, and in round brackets what is left of `label` without "temp" and "PMU", if anything is.
[[nodiscard]] std::string cleaned(std::string_view label, std::string_view category);

} // namespace HIDSensorCatalog

} // namespace ventolith::hardware
