// The hardware stage of the self-test: one read-only look at the machine.
#pragma once

#include "app/selftest/SelfTestOutput.h"
#include "core/SensorSnapshot.h"
#include "hardware/Machine.h"
#include "runtime/Clock.h"

#include <optional>

namespace ventolith::app {

struct HardwareReading {
  bool isHIDAvailable = false;
  core::SensorSnapshot snapshot;
};

/// Opens the driver, takes one snapshot and closes it again. None, and one line on the error stream, if
/// it cannot be opened.
runtime::Async<std::optional<HardwareReading>> readHardware(runtime::Executor executor, runtime::Clock& clock,
                                                            hardware::Machine& machine,
                                                            SelfTestOutput& output);

void printHardwareReport(const HardwareReading& reading, SelfTestOutput& output);

} // namespace ventolith::app
