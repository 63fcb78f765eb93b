#include "hardware/HIDSensorCatalog.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace ventolith::hardware {

using core::SensorCategory;
using core::SensorSource;
using core::TempSensor;

namespace {

// Labels are the hardware's, in ASCII; whatever else stands in them has no case.
std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
  return lower;
}

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

// Battery and SSD sensors may rightly stand still; on all others a frozen value disqualifies.
bool mayBeConstant(std::string_view lower) {
  return contains(lower, "battery") || contains(lower, "nand") || contains(lower, "ssd");
}

std::string digits(std::string_view label) {
  std::string digits;
  std::copy_if(label.begin(), label.end(), std::back_inserter(digits),
               [](unsigned char character) { return std::isdigit(character) != 0; });
  return digits;
}

std::string withoutWord(std::string text, std::string_view lowerWord) {
  for (auto place = lowerCase(text).find(lowerWord); place != std::string::npos;
       place = lowerCase(text).find(lowerWord, place)) {
    text.erase(place, lowerWord.size());
  }
  return text;
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\n\r\f\v";
  const auto first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string numberedSoCName(std::string_view label) {
  const std::string number = digits(label);
  return number.empty() ? "SoC Sensor" : "SoC Sensor " + number;
}

TempSensor sensor(std::string_view label, std::string name, SensorCategory category, double celsius) {
  return {std::string(label), std::move(name), celsius, category, SensorSource::hid};
}

TempSensor classified(const HIDBridge::RawReading& reading, std::string_view lower) {
  const std::string& label = reading.label;
  const double celsius = reading.celsius();
  if (contains(lower, "battery")) return sensor(label, "Battery", SensorCategory::battery, celsius);
  if (contains(lower, "nand") || contains(lower, "ssd"))
    return sensor(label, "SSD", SensorCategory::ssd, celsius);
  if (contains(lower, "gpu"))
    return sensor(label, HIDSensorCatalog::cleaned(label, "GPU"), SensorCategory::gpu, celsius);
  if (contains(lower, "cpu"))
    return sensor(label, HIDSensorCatalog::cleaned(label, "CPU"), SensorCategory::cpu, celsius);
  if (contains(lower, "tdev"))
    return sensor(label, "SoC Sensor D" + digits(label), SensorCategory::sensor, celsius);
  return sensor(label, numberedSoCName(label), SensorCategory::sensor, celsius);
}

std::vector<TempSensor> named(const std::vector<HIDBridge::RawReading>& readings) {
  std::vector<TempSensor> sensors;
  std::set<std::string_view> accepted;
  for (const HIDBridge::RawReading& reading : readings) {
    const std::string lower = lowerCase(reading.label);
    if (contains(lower, "tcal")) continue;
    if (accepted.contains(reading.label)) continue;
    if (reading.isConstant() && !mayBeConstant(lower)) continue;
    if (!isPlausibleCelsius(reading.celsius())) continue;
    accepted.insert(reading.label);
    sensors.push_back(classified(reading, lower));
  }
  return sensors;
}

} // namespace

std::string HIDSensorCatalog::cleaned(std::string_view label, std::string_view category) {
  const std::string rest = withoutWord(withoutWord(std::string(label), "temp"), "pmu");
  std::string name(category);
  if (const auto left = trimmed(rest); !left.empty()) name.append(" (").append(left).append(")");
  return name;
}

std::vector<TempSensor> HIDSensorCatalog::curate(const std::vector<HIDBridge::RawReading>& readings) {
  std::vector<TempSensor> shown;
  std::optional<double> hottestSoC;
  for (TempSensor& sensor : named(readings)) {
    if (sensor.category == SensorCategory::sensor) {
      hottestSoC = std::max(hottestSoC, std::optional(sensor.celsius));
    } else {
      shown.push_back(std::move(sensor));
    }
  }
  if (hottestSoC) shown.push_back(sensor("SoC", "CPU", SensorCategory::cpu, *hottestSoC));
  return shown;
}

} // namespace ventolith::hardware
