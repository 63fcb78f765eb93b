// A sensor reader on a small SMC and a sensor hub, with one log of all that happens.
#pragma once

#include "hardware/SensorReader.h"
#include "hardware/doubles/KeyTableSMC.h"
#include "hardware/doubles/LoggingClock.h"
#include "hardware/doubles/ScriptedHIDBridge.h"
#include "support/VirtualTime.h"

#include <gtest/gtest.h>

namespace ventolith::hardware {

class SensorReaderTest : public testing::Test {
protected:
  core::SensorSnapshot snapshot() { return time_.clock.run(reader_.snapshot()); }
  std::vector<core::Fan> fans() { return snapshot().fans; }
  std::vector<core::TempSensor> temps() { return snapshot().temps; }

  /// A sensor of the hub, so that the SMC's temperatures are left alone.
  void addHubSensor() { bridge_.add("GPU1", {60.0, 61.0, 62.0, 63.0, 64.0, 65.0}); }

  support::VirtualTime time_;
  doubles::Log log_;
  doubles::Log printed_;
  doubles::LoggingClock clock_{time_.clock, log_};
  doubles::KeyTableSMC smc_{log_};
  doubles::ScriptedHIDBridge bridge_{log_};
  SMCConnection connection_{time_.executor(), smc_};
  SensorReader reader_{time_.executor(), connection_, bridge_, clock_,
                       [this](const std::string& line) { printed_.push_back(line); }};
};

/// The keys of `sensors`, in order.
inline doubles::Log keysOf(const std::vector<core::TempSensor>& sensors) {
  doubles::Log keys;
  for (const core::TempSensor& sensor : sensors)
    keys.push_back(sensor.key);
  return keys;
}

} // namespace ventolith::hardware
