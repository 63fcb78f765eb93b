// The devices of a hwmon root: who they are, and which fans and temperatures they have.
#pragma once

#include "platform/linux/AttributeFolder.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace ventolith::platform {

/// Who a device is, whatever number it has been given at this start.
struct DeviceIdentity {
  std::string driver; // What its `name` file says; empty without one.
  std::string path;   // The folder of the device itself, links resolved.
  int ordinal = 0;    // Among devices of the same driver and path, in the order of their numbers.

  bool operator==(const DeviceIdentity&) const = default;
};

struct HwmonTemperature {
  int number = 0; // N of tempN_input.
  std::string label;
};

struct HwmonDevice {
  DeviceIdentity identity;
  int number = 0; // N of hwmonN.
  AttributeFolder folder;
  std::vector<int> fans;                      // N of each fanN_input, ascending.
  std::vector<HwmonTemperature> temperatures; // By number.
};

/// "fan3_input" for ("fan", 3, "_input").
[[nodiscard]] std::string attributeName(const char* kind, int number, const char* suffix);

/// All devices of `root`: the Mac's own first (applesmc, then macsmc_hwmon), the others by driver name,
/// each by the device's path. Entries that cannot be opened are left out. Reads folders and labels, and
/// takes milliseconds: for starts, not for every pass.
[[nodiscard]] std::vector<std::shared_ptr<const HwmonDevice>>
discoverDevices(const std::filesystem::path& root);

} // namespace ventolith::platform
