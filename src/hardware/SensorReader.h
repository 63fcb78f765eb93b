// The one read path of the system: builds a snapshot of fans and temperatures from the hardware.
#pragma once

#include "core/SensorSnapshot.h"
#include "hardware/HIDSensorReader.h"
#include "hardware/SMCConnection.h"
#include "runtime/Clock.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace ventolith::hardware {

/// What a fan controller and an application model need of a reader.
class SensorReading {
public:
  SensorReading() = default;
  SensorReading(const SensorReading&) = delete;
  SensorReading& operator=(const SensorReading&) = delete;
  virtual ~SensorReading() = default;

  /// Never fails: empty temperatures say that there is no temperature data, empty fans that their count
  /// cannot be read.
  virtual runtime::Async<core::SensorSnapshot> snapshot() = 0;
};

/// A single-threaded owner. Prefers the HID hub's temperatures and falls back to the curated SMC keys
/// whenever the hub gives nothing.
class SensorReader final : public SensorReading {
public:
  /// `smc` is shared, and neither opened nor closed here. `print` receives the one line about the
  /// fallback, without a line feed.
  SensorReader(const runtime::Executor& executor, SMCConnection& smc, HIDBridge& bridge,
               runtime::Clock& clock, std::function<void(const std::string&)> print);

  runtime::Async<core::SensorSnapshot> snapshot() override;

  [[nodiscard]] const HIDSensorReader& hid() const { return hid_; }

private:
  runtime::Async<core::SensorSnapshot> read();
  runtime::Async<std::vector<core::Fan>> readFans();
  runtime::Async<core::Fan> readFan(core::FanID fan);
  runtime::Async<std::int64_t> readRPM(std::string key);
  runtime::Async<std::optional<double>> readNumber(std::string key);
  runtime::Async<std::vector<core::TempSensor>> readTemperatures();
  runtime::Async<std::vector<core::TempSensor>> readCuratedSMCTemperatures();
  runtime::Async<std::optional<core::TempSensor>> readCuratedSMCTemperature(std::string key);
  void logHIDFallback();

  runtime::SerialExecutor serial_;
  SMCConnection& smc_;
  HIDSensorReader hid_;
  runtime::Clock& clock_;
  std::function<void(const std::string&)> print_;
  std::optional<std::vector<std::string>> cachedCuratedSMCTempKeys_; // None until the first fallback.
  bool loggedHIDFallback_ = false;
};

/// A reader's `print` that writes to standard error.
void printToStandardError(const std::string& line);

} // namespace ventolith::hardware
