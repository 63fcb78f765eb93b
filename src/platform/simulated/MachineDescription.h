// A simulated machine as data: what a file under data/machines says.
#pragma once

#include "hardware/SMCParamStruct.h"
#include "runtime/Time.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ventolith::simulated {

/// A part of the machine that warms up and cools down as one. At rest in still air it is `idleRise`
/// above the ambient temperature, under full load `idleRise + loadRise`; both are divided by
/// 1 + `airflowEffect` when all fans run at their maximum.
struct ZoneDescription {
  std::string name;
  double idleRise = 0;      // Degrees Celsius.
  double loadRise = 0;      // Degrees Celsius.
  double timeConstant = 1;  // Seconds, in still air.
  double airflowEffect = 0; // Without unit.
};

struct FanDescription {
  double minimum = 0; // RPM.
  double maximum = 0; // RPM.
  double idle = 0;    // RPM that the firmware keeps while the machine is cool; 0 is stopped.
  std::string modeKey;
  double timeConstant = 1; // Seconds, of speeding up and slowing down.
};

/// What the firmware wants before it lets a fan go into manual mode.
struct LatchDescription {
  bool isNeeded = false;
  runtime::Duration delay{};   // For how long "Ftst" has to have been 1.
  std::uint8_t refusal = 0x82; // The result of a mode key that is not let go yet.
};

/// The firmware's own fan control: from `startCelsius` on fans run at their minimum or more, at
/// `fullCelsius` at their maximum. The hottest of `zones` counts.
struct FirmwareDescription {
  double startCelsius = 0;
  double fullCelsius = 0;
  std::vector<std::size_t> zones;
};

/// A temperature sensor: `celsius` is what it shows when the machine starts, cool and idle.
struct SensorDescription {
  std::size_t zone = 0;
  double celsius = 0;
};

struct KeyDescription {
  std::string name; // Four characters.
  std::string type; // Four characters.
  std::uint32_t size = 0;
  hardware::SMCBytes bytes = hardware::zeroSMCBytes;
  std::optional<SensorDescription> sensor; // Set for a temperature, which then takes no `bytes`.
  std::uint8_t readResult = 0; // Other than 0: the SMC lists the key and refuses to tell about it.
};

struct HubSensorDescription {
  std::string label;
  SensorDescription sensor;
};

struct MachineDescription {
  std::string name;
  std::string model; // For people: "Mac mini (M1, 2020)".
  double ambientCelsius = 0;
  std::vector<ZoneDescription> zones;
  std::vector<FanDescription> fans;
  LatchDescription latch;
  FirmwareDescription firmware;
  std::vector<KeyDescription> keys;                     // In the order of their indices.
  std::optional<std::vector<HubSensorDescription>> hub; // None: a machine without HID sensor hub.
};

/// Reads a machine's file. Fails with core::DecodeError.
[[nodiscard]] MachineDescription decodeMachine(std::string_view text);

} // namespace ventolith::simulated
