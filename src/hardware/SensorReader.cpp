#include "hardware/SensorReader.h"

#include "hardware/FanKeys.h"
#include "hardware/HIDSensorCatalog.h"
#include "hardware/SensorNaming.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace ventolith::hardware {

using core::Fan;
using core::SensorSnapshot;
using core::TempSensor;
using runtime::Async;

namespace {

// Between the two readings of one key, whose mean is the temperature.
constexpr runtime::Duration rereadInterval = std::chrono::milliseconds(40);

std::int64_t roundedRPM(double rpm) {
  return fankeys::truncated(std::round(rpm)).value_or(0);
}

void sortForDisplay(std::vector<TempSensor>& sensors) {
  std::stable_sort(sensors.begin(), sensors.end(), [](const TempSensor& a, const TempSensor& b) {
    const int rankA = core::sortOrder(a.category);
    const int rankB = core::sortOrder(b.category);
    return rankA != rankB ? rankA < rankB : a.name < b.name;
  });
}

} // namespace

SensorReader::SensorReader(const runtime::Executor& executor, SMCConnection& smc, HIDBridge& bridge,
                           runtime::Clock& clock, std::function<void(const std::string&)> print)
    : serial_(executor), smc_(smc), hid_(executor, bridge, clock), clock_(clock), print_(std::move(print)) {}

Async<SensorSnapshot> SensorReader::snapshot() {
  return serial_.run(read());
}

Async<SensorSnapshot> SensorReader::read() {
  SensorSnapshot snapshot;
  snapshot.fans = co_await readFans();
  snapshot.temps = co_await readTemperatures();
  snapshot.timestamp = clock_.wallTime();
  co_return snapshot;
}

Async<std::vector<Fan>> SensorReader::readFans() {
  std::vector<Fan> fans;
  const auto count = fankeys::fanCountOf(co_await readNumber(fankeys::fanCount)).value_or(0);
  for (core::FanID fan = 0; fan < count; ++fan)
    fans.push_back(co_await readFan(fan));
  co_return fans;
}

Async<Fan> SensorReader::readFan(core::FanID id) {
  Fan fan;
  fan.id = id;
  fan.name = fmt::format("Fan {}", id);
  fan.currentRPM = co_await readRPM(fankeys::measured(id));
  fan.minRPM = co_await readRPM(fankeys::minimum(id));
  fan.maxRPM = co_await readRPM(fankeys::maximum(id));
  auto mode = co_await readNumber(fankeys::modeFirstChoice(id));
  if (!mode) mode = co_await readNumber(fankeys::modeSecondChoice(id));
  fan.mode = fankeys::truncated(mode);
  co_return fan;
}

Async<std::int64_t> SensorReader::readRPM(std::string key) {
  const auto rpm = co_await readNumber(std::move(key));
  co_return roundedRPM(rpm.value_or(0.0));
}

Async<std::optional<double>> SensorReader::readNumber(std::string key) {
  const auto value = co_await smc_.tryReadValue(std::move(key));
  co_return value ? value->numeric() : std::nullopt;
}

Async<std::vector<TempSensor>> SensorReader::readTemperatures() {
  auto sensors = co_await hid_.readTemperatures();
  if (sensors.empty()) {
    logHIDFallback();
    sensors = co_await readCuratedSMCTemperatures();
  }
  sortForDisplay(sensors);
  co_return sensors;
}

Async<std::vector<TempSensor>> SensorReader::readCuratedSMCTemperatures() {
  if (!cachedCuratedSMCTempKeys_) {
    auto keys = co_await smc_.discoverTempKeys();
    std::erase_if(keys, [](const std::string& key) { return !SensorNaming::friendlyName(key); });
    cachedCuratedSMCTempKeys_ = std::move(keys);
  }
  std::vector<TempSensor> sensors;
  const auto keys = *cachedCuratedSMCTempKeys_; // A second snapshot may run wherever this one waits.
  for (const std::string& key : keys) {
    if (auto sensor = co_await readCuratedSMCTemperature(key)) sensors.push_back(std::move(*sensor));
  }
  co_return sensors;
}

Async<std::optional<TempSensor>> SensorReader::readCuratedSMCTemperature(std::string key) {
  const auto first = co_await readNumber(key);
  if (!first) co_return std::nullopt;
  co_await clock_.sleep(rereadInterval, runtime::StopToken());
  const auto second = co_await readNumber(key);
  if (!second) co_return std::nullopt;
  const double celsius = (*first + *second) / 2;
  const bool isAbsent = *first == 0.0 && *second == 0.0;
  if (isAbsent || !isPlausibleCelsius(celsius)) co_return std::nullopt;
  const auto name = SensorNaming::friendlyName(key);
  co_return TempSensor{std::move(key), std::string(name->name), celsius, name->category,
                       core::SensorSource::smc};
}

void SensorReader::logHIDFallback() {
  if (std::exchange(loggedHIDFallback_, true)) return;
  const char* reason = hid_.isAPIAvailable() ? "private API resolved but returned no plausible sensors"
                                             : "private HID symbols did not resolve on this OS build";
  print_(fmt::format("[FanKitCore] HID sensor hub unavailable ({}) — falling back to curated SMC temp keys.",
                     reason));
}

void printToStandardError(const std::string& line) {
  std::fprintf(stderr, "%s\n", line.c_str());
}

} // namespace ventolith::hardware
