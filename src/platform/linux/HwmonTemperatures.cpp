#include "platform/linux/HwmonTemperatures.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <set>
#include <string_view>

namespace ventolith::platform {

namespace {

using Devices = std::vector<std::shared_ptr<const HwmonDevice>>;
using Sources = std::vector<TemperatureKey::Source>;

constexpr const char* processorName = "TCHP";

enum class Part { none, processor, graphics, drive, battery };

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(),
                         [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
  return lower;
}

bool contains(std::string_view text, std::string_view word) {
  return text.find(word) != std::string_view::npos;
}

template <std::size_t Count>
bool isOneOf(std::string_view name, const std::array<std::string_view, Count>& names) {
  return std::ranges::find(names, name) != names.end();
}

bool isProcessorDriver(std::string_view driver) {
  static constexpr std::array<std::string_view, 3> names{"coretemp", "k10temp", "zenpower"};
  if (isOneOf(driver, names)) return true;
  return driver.ends_with("_thermal") && (driver.starts_with("cpu") || driver.starts_with("soc"));
}

bool isGraphicsDriver(std::string_view driver) {
  static constexpr std::array<std::string_view, 6> names{"amdgpu", "radeon", "nouveau",
                                                         "nvidia", "i915",   "xe"};
  return isOneOf(driver, names);
}

/// The chips of laptops and boards that name one of their inputs after what it measures.
bool isLabelTrusted(std::string_view driver) {
  return driver == "thinkpad" || driver == "dell_smm" || driver.starts_with("asus");
}

Part partOfMacLabel(std::string_view label) {
  if (contains(label, "gpu")) return Part::graphics;
  if (contains(label, "battery")) return Part::battery;
  if (contains(label, "nand") || contains(label, "ssd")) return Part::drive;
  const bool isProcessor = contains(label, "core") || contains(label, "cpu") || contains(label, "soc die");
  return isProcessor ? Part::processor : Part::none;
}

Part partOf(std::string_view driver, std::string_view rawLabel) {
  const std::string label = lowerCase(rawLabel);
  if (driver == "macsmc_hwmon") return partOfMacLabel(label);
  if (isProcessorDriver(driver)) return Part::processor;
  if (isGraphicsDriver(driver)) return Part::graphics;
  if (driver == "nvme" || driver == "drivetemp") return Part::drive;
  if (driver.starts_with("BAT") || contains(lowerCase(driver), "battery")) return Part::battery;
  return isLabelTrusted(driver) && label == "cpu" ? Part::processor : Part::none;
}

TemperatureKey::Source sourceOf(const std::shared_ptr<const HwmonDevice>& device,
                                const HwmonTemperature& one) {
  return {device, attributeName("temp", one.number, "_input")};
}

Sources sourcesOf(const std::shared_ptr<const HwmonDevice>& device, Part part) {
  Sources sources;
  for (const HwmonTemperature& one : device->temperatures) {
    if (partOf(device->identity.driver, one.label) == part) sources.push_back(sourceOf(device, one));
  }
  return sources;
}

bool isOwnKey(std::string_view label) {
  const auto isPlain = [](unsigned char character) { return character > ' ' && character < 0x7F; };
  return label.size() == 4 && label.starts_with('T') && std::ranges::all_of(label, isPlain);
}

/// Of an own key.
bool isProcessorProbe(std::string_view key) {
  if (key == processorName) return true;
  return key.starts_with("TC") && std::isdigit(static_cast<unsigned char>(key[2])) != 0;
}

bool isIntelMac(const HwmonDevice& device) {
  return device.identity.driver == "applesmc";
}

/// The keys that Intel Macs name themselves, but for the one that stands for the processor here: theirs is
/// a spot beside it, tens of degrees cooler.
std::vector<TemperatureKey> ownKeys(const Devices& devices) {
  std::vector<TemperatureKey> keys;
  for (const auto& device : devices) {
    if (!isIntelMac(*device)) continue;
    for (const HwmonTemperature& one : device->temperatures) {
      if (!isOwnKey(one.label) || one.label == processorName) continue;
      keys.emplace_back(one.label, Sources{sourceOf(device, one)});
    }
  }
  return keys;
}

/// An Intel Mac's probes, for where its processor's own sensors are not to be had.
Sources processorProbes(const Devices& devices) {
  Sources sources;
  for (const auto& device : devices) {
    if (!isIntelMac(*device)) continue;
    for (const HwmonTemperature& one : device->temperatures) {
      if (isOwnKey(one.label) && isProcessorProbe(one.label)) sources.push_back(sourceOf(device, one));
    }
  }
  return sources;
}

TemperatureKey processorKey(const Devices& devices) {
  Sources sources;
  for (const auto& device : devices) {
    for (TemperatureKey::Source& source : sourcesOf(device, Part::processor))
      sources.push_back(std::move(source));
  }
  return {processorName, std::move(sources), processorProbes(devices)};
}

std::optional<double> hottestOf(const Sources& sources) {
  std::optional<double> hottest;
  for (const TemperatureKey::Source& source : sources) {
    const auto thousandths = source.device->folder.readInteger(source.file);
    if (!thousandths || *thousandths <= -40'000 || *thousandths > 150'000) continue;
    const double celsius = static_cast<double>(*thousandths) / 1000.0;
    if (!hottest || celsius > *hottest) hottest = celsius;
  }
  return hottest;
}

/// Collects keys, each name once, and numbers those that are made up.
class KeyList {
public:
  void add(TemperatureKey key) {
    if (names_.insert(key.key()).second) keys_.push_back(std::move(key));
  }

  /// Keeps a name from being made up.
  void reserve(const std::string& name) { reserved_.insert(name); }

  /// One key for every device that has such a part; each takes the next name that is free.
  void addNumbered(const Devices& devices, Part part, const char* prefix, char suffix) {
    static constexpr std::string_view places = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    std::size_t place = 0;
    for (const auto& device : devices) {
      const Sources sources = sourcesOf(device, part);
      if (sources.empty()) continue;
      const auto name = [&] { return std::string(prefix) + places[place] + suffix; };
      while (place < places.size() && isTaken(name()))
        ++place;
      if (place == places.size()) return;
      add({name(), sources});
    }
  }

  [[nodiscard]] std::vector<TemperatureKey> take() { return std::move(keys_); }

private:
  [[nodiscard]] bool isTaken(const std::string& name) const {
    return names_.contains(name) || reserved_.contains(name);
  }

  std::vector<TemperatureKey> keys_;
  std::set<std::string> names_;
  std::set<std::string> reserved_;
};

} // namespace

bool TemperatureKey::isProcessor() const {
  return key_ == processorName;
}

std::optional<double> TemperatureKey::celsius() const {
  const auto hottest = hottestOf(sources_);
  return hottest ? hottest : hottestOf(standIns_);
}

std::vector<TemperatureKey> temperatureKeys(const Devices& devices) {
  std::vector<TemperatureKey> own = ownKeys(devices);
  KeyList keys;
  for (const TemperatureKey& key : own)
    keys.reserve(key.key());
  if (TemperatureKey key = processorKey(devices); key.hasSources()) keys.add(std::move(key));
  keys.addNumbered(devices, Part::graphics, "TG", 'D');
  keys.addNumbered(devices, Part::drive, "TD", '0');
  keys.addNumbered(devices, Part::battery, "TB", 'T');
  for (TemperatureKey& key : own)
    keys.add(std::move(key));
  return keys.take();
}

} // namespace ventolith::platform
