// One reading of the machine: its fans, its temperatures, and when.
#pragma once

#include "core/FanControlPlan.h"
#include "runtime/Time.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ventolith::core {

struct Fan {
  FanID id = 0;
  std::string name;            // "Fan " and the index.
  std::int64_t currentRPM = 0; // Measured, to the nearest whole RPM.
  std::int64_t minRPM = 0;     // As the firmware reports them.
  std::int64_t maxRPM = 0;
  std::optional<std::int64_t> mode; // 0 firmware, 1 manual, 3 taken back; none if it cannot be read.

  bool operator==(const Fan&) const = default;
};

enum class SensorCategory { cpu, gpu, battery, ssd, sensor };
inline constexpr std::array allSensorCategories = {SensorCategory::cpu, SensorCategory::gpu,
                                                   SensorCategory::battery, SensorCategory::ssd,
                                                   SensorCategory::sensor};

[[nodiscard]] std::string_view rawValue(SensorCategory category);
[[nodiscard]] std::optional<SensorCategory> sensorCategory(std::string_view rawValue);
/// The rank on screen, which puts SSDs ahead of batteries.
[[nodiscard]] int sortOrder(SensorCategory category);

enum class SensorSource { hid, smc };

[[nodiscard]] std::string_view rawValue(SensorSource source);
[[nodiscard]] std::optional<SensorSource> sensorSource(std::string_view rawValue);

struct TempSensor {
  std::string key;  // The hardware's own: a HID label, an SMC key, or "SoC".
  std::string name; // Shown to the user.
  double celsius = 0;
  SensorCategory category = SensorCategory::sensor;
  SensorSource source = SensorSource::smc;

  /// The source's raw value, a hyphen and the key, as in SMC-TCHP. Curves and rules name sensors by it.
  [[nodiscard]] std::string id() const;

  bool operator==(const TempSensor&) const = default;
};

struct SensorSnapshot {
  std::vector<Fan> fans;         // In index order.
  std::vector<TempSensor> temps; // By category, then by name.
  runtime::WallTime timestamp = runtime::distantPastDate;

  /// Nothing read, in the far past.
  static const SensorSnapshot empty;

  /// The sensor of highest temperature; the first of equals; none without sensors.
  [[nodiscard]] const TempSensor* hottest() const;

  bool operator==(const SensorSnapshot&) const = default;
};

} // namespace ventolith::core
