#include "platform/linux/HwmonDevice.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>
#include <tuple>

namespace ventolith::platform {

namespace {

namespace fs = std::filesystem;

/// N of a name that is `prefix`, N and `suffix`; none if it is not.
std::optional<int> numberIn(std::string_view name, std::string_view prefix, std::string_view suffix) {
  if (name.size() <= prefix.size() + suffix.size()) return std::nullopt;
  if (!name.starts_with(prefix) || !name.ends_with(suffix)) return std::nullopt;
  const std::string_view digits = name.substr(prefix.size(), name.size() - prefix.size() - suffix.size());
  if (digits.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
  if (digits.size() > 1 && digits.starts_with('0')) return std::nullopt;
  const auto number = parseInteger(digits);
  if (!number || *number > std::numeric_limits<int>::max()) return std::nullopt;
  return static_cast<int>(*number);
}

/// Older drivers keep their files, `name` included, in the folder of the device itself.
std::optional<AttributeFolder> openAttributeFolder(const fs::path& entry) {
  auto own = AttributeFolder::open(entry);
  if (!own || own->has("name")) return own;
  auto ofDevice = AttributeFolder::open(entry / "device");
  if (ofDevice && ofDevice->has("name")) return ofDevice;
  return own;
}

std::string devicePath(const fs::path& entry) {
  std::error_code error;
  if (const fs::path device = fs::canonical(entry / "device", error); !error) return device.string();
  const fs::path itself = fs::canonical(entry, error);
  if (error) return {};
  const fs::path parent = itself.parent_path();
  return (parent.filename() == "hwmon" ? parent.parent_path() : parent).string();
}

std::optional<HwmonDevice> openDevice(const fs::path& entry, int number) {
  auto folder = openAttributeFolder(entry);
  if (!folder) return std::nullopt;
  const std::string driver = folder->has("name") ? folder->readLine("name").value_or("") : "";
  HwmonDevice device{{driver, devicePath(entry), 0}, number, std::move(*folder), {}, {}};
  for (const std::string& name : device.folder.list()) {
    if (const auto fan = numberIn(name, "fan", "_input")) device.fans.push_back(*fan);
    if (const auto temperature = numberIn(name, "temp", "_input")) {
      const std::string label = attributeName("temp", *temperature, "_label");
      device.temperatures.push_back({*temperature, device.folder.readLine(label).value_or("")});
    }
  }
  std::ranges::sort(device.fans);
  std::ranges::sort(device.temperatures, {}, &HwmonTemperature::number);
  return device;
}

int rankOf(const std::string& driver) {
  if (driver == "applesmc") return 0;
  return driver == "macsmc_hwmon" ? 1 : 2;
}

bool comesBefore(const HwmonDevice& one, const HwmonDevice& other) {
  const auto order = [](const HwmonDevice& device) {
    const DeviceIdentity& identity = device.identity;
    return std::tuple(rankOf(identity.driver), std::string_view(identity.driver),
                      std::string_view(identity.path), device.number);
  };
  return order(one) < order(other);
}

} // namespace

std::string attributeName(const char* kind, int number, const char* suffix) {
  return std::string(kind).append(std::to_string(number)).append(suffix);
}

std::vector<std::shared_ptr<const HwmonDevice>> discoverDevices(const fs::path& root) {
  std::vector<std::shared_ptr<HwmonDevice>> devices;
  const auto folder = AttributeFolder::open(root);
  if (!folder) return {};
  for (const std::string& name : folder->list()) {
    const auto number = numberIn(name, "hwmon", "");
    if (!number) continue;
    if (auto device = openDevice(root / name, *number)) {
      devices.push_back(std::make_shared<HwmonDevice>(std::move(*device)));
    }
  }
  std::ranges::sort(devices, [](const auto& one, const auto& other) { return comesBefore(*one, *other); });
  for (std::size_t place = 1; place < devices.size(); ++place) {
    const DeviceIdentity& before = devices[place - 1]->identity;
    DeviceIdentity& identity = devices[place]->identity;
    if (before.driver == identity.driver && before.path == identity.path)
      identity.ordinal = before.ordinal + 1;
  }
  return {devices.begin(), devices.end()};
}

} // namespace ventolith::platform
