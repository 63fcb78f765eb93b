#include "core/SensorSnapshot.h"

namespace ventolith::core {

const SensorSnapshot SensorSnapshot::empty{};

std::string_view rawValue(SensorCategory category) {
  switch (category) {
  case SensorCategory::cpu: return "CPU";
  case SensorCategory::gpu: return "GPU";
  case SensorCategory::battery: return "Battery";
  case SensorCategory::ssd: return "SSD";
  case SensorCategory::sensor: break;
  }
  return "Sensor";
}

std::optional<SensorCategory> sensorCategory(std::string_view raw) {
  for (const SensorCategory category : allSensorCategories) {
    if (rawValue(category) == raw) return category;
  }
  return std::nullopt;
}

int sortOrder(SensorCategory category) {
  switch (category) {
  case SensorCategory::cpu: return 0;
  case SensorCategory::gpu: return 1;
  case SensorCategory::ssd: return 2;
  case SensorCategory::battery: return 3;
  case SensorCategory::sensor: break;
  }
  return 4;
}

std::string_view rawValue(SensorSource source) {
  return source == SensorSource::hid ? "HID" : "SMC";
}

std::optional<SensorSource> sensorSource(std::string_view raw) {
  if (raw == "HID") return SensorSource::hid;
  if (raw == "SMC") return SensorSource::smc;
  return std::nullopt;
}

std::string TempSensor::id() const {
  return std::string(rawValue(source)).append("-").append(key);
}

const TempSensor* SensorSnapshot::hottest() const {
  const TempSensor* hottest = nullptr;
  for (const TempSensor& sensor : temps) {
    if (hottest == nullptr || sensor.celsius > hottest->celsius) hottest = &sensor;
  }
  return hottest;
}

} // namespace ventolith::core
