// What can be done to a simulated machine from outside, and the lines of JSON that say it.
//
//   {"at":3,"load":0.8}                          the processors' load, 0 to 1
//   {"at":3,"temps":{"TCHP":96.7}}               a key or a hub label is pinned; null lets it go
//   {"at":3,"refuse":{"F0Md":5}}                 writes are refused with a result of 1 to 255; null ends it
//   {"at":3,"driverFailure":{"F0Md":true}}       calls about the key fail; "write": its writes alone; false
//   ends it
//   {"at":3,"reclaim":[0]}                       the firmware takes the fan, until its mode is written again
//   {"at":3,"reclaim":{"0":4.5}}                 and takes no heed of such writes for that many seconds
//   {"at":3,"sensors":"gone"}                    "frozen", "back"
//   {"at":3,"removeKeys":["F0Md"]}               and "restoreKeys"
//   {"at":3,"keyTypes":{"F0Md":"zzzz"}}          the key claims to be of that type; null ends it
//
// "at" is in seconds since the machine started. One line may hold any number of members.
#pragma once

#include "core/SensorSnapshot.h"
#include "runtime/Time.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ventolith::simulated {

enum class SensorState {
  working,
  frozen, ///< Every sensor shows what it last showed.
  gone,   ///< No sensor answers, neither on the hub nor as a key.
};

/// Which calls about a key the driver fails.
enum class DriverFailure { none, writes, all };

/// Members that are absent or empty leave things as they are.
struct ScriptChange {
  std::optional<double> load = std::nullopt;
  std::map<std::string, std::optional<double>> temperatures = {}; // Degrees Celsius.
  std::map<std::string, std::optional<std::uint8_t>> refusals = {};
  std::map<std::string, DriverFailure> driverFailures = {};
  std::map<core::FanID, runtime::Duration> reclaims = {}; // For how long the firmware insists.
  std::optional<SensorState> sensors = std::nullopt;
  std::vector<std::string> removedKeys = {};
  std::vector<std::string> restoredKeys = {};
  std::map<std::string, std::optional<std::string>> keyTypes = {};
};

struct ScriptLine {
  std::optional<runtime::Duration> at; // Since the machine started; none is at once.
  ScriptChange change;
  std::size_t number = 1; // In the file, from 1.
};

/// Reads one line. Fails with core::DecodeError.
[[nodiscard]] ScriptLine parseScriptLine(std::string_view text);

/// Reads a whole script; blank lines are skipped, and "at" is required on every other. Fails with
/// std::runtime_error, "line 3: ...", at the first bad line.
[[nodiscard]] std::vector<ScriptLine> parseScript(std::string_view text);

} // namespace ventolith::simulated
