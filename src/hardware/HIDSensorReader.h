// Reads all temperatures of the HID hub, and keeps the expensive discovery between two reads.
#pragma once

#include "core/SensorSnapshot.h"
#include "hardware/HIDBridge.h"
#include "runtime/Async.h"

#include <optional>
#include <vector>

namespace ventolith::hardware {

/// A single-threaded owner.
class HIDSensorReader {
public:
  HIDSensorReader(const runtime::Executor& executor, HIDBridge& bridge, runtime::Clock& clock)
      : serial_(executor), bridge_(bridge), clock_(clock) {}

  /// Tells the two causes of an empty reading apart.
  [[nodiscard]] bool isAPIAvailable() const { return bridge_.isAvailable(); }

  /// Three samples a sensor, 40 milliseconds apart, curated. Every failure is an empty list; the next
  /// call discovers anew.
  runtime::Async<std::vector<core::TempSensor>> readTemperatures();

private:
  runtime::Async<std::vector<core::TempSensor>> read();

  runtime::SerialExecutor serial_;
  HIDBridge& bridge_;
  runtime::Clock& clock_;
  std::optional<HIDBridge::Discovery> cachedDiscovery_;
};

} // namespace ventolith::hardware
