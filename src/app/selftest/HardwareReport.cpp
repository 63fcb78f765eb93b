#include "app/selftest/HardwareReport.h"

#include "hardware/SensorReader.h"

#include <fmt/format.h>

namespace ventolith::app {

runtime::Async<std::optional<HardwareReading>> readHardware(runtime::Executor executor, runtime::Clock& clock,
                                                            hardware::Machine& machine,
                                                            SelfTestOutput& output) {
  hardware::SMCConnection connection(executor, *machine.smc);
  if (const auto error = co_await connection.open()) {
    output.printError("Failed to open AppleSMC: " + error->description());
    co_return std::nullopt;
  }
  hardware::SensorReader reader(executor, connection, *machine.hid, clock, hardware::printToStandardError);
  HardwareReading reading;
  reading.snapshot = co_await reader.snapshot();
  co_await connection.close();
  reading.isHIDAvailable = reader.hid().isAPIAvailable();
  co_return reading;
}

void printHardwareReport(const HardwareReading& reading, SelfTestOutput& output) {
  const auto& [fans, temps, timestamp] = reading.snapshot;
  output.print(fmt::format("HID private API resolved: {}", reading.isHIDAvailable));
  output.print(fmt::format("Fans: {}", fans.size()));
  for (const core::Fan& fan : fans) {
    const std::string mode = fan.mode ? std::to_string(*fan.mode) : "n/a";
    output.print(fmt::format("  {}: {} rpm  (min {}, max {}, mode {})", fan.name, fan.currentRPM, fan.minRPM,
                             fan.maxRPM, mode));
  }
  const auto source = temps.empty() ? "n/a" : rawValue(temps.front().source);
  output.print(fmt::format("Sensors: {}  (source: {})", temps.size(), source));
  for (const core::TempSensor& sensor : temps) {
    const auto category = fmt::format("[{}]", rawValue(sensor.category));
    output.print(fmt::format("  {:<10} {}  {:6.1f}°C  ({}: {})", category, sensor.name, sensor.celsius,
                             rawValue(sensor.source), sensor.key));
  }
}

} // namespace ventolith::app
