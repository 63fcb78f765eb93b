// Which temperature keys a set of hwmon devices stands for, and what they read.
#pragma once

#include "platform/linux/HwmonDevice.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ventolith::platform {

/// The files behind one key. It reads the hottest of them.
class TemperatureKey {
public:
  struct Source {
    std::shared_ptr<const HwmonDevice> device;
    std::string file;
  };

  /// `standIns` are read where none of `sources` gives anything.
  TemperatureKey(std::string key, std::vector<Source> sources, std::vector<Source> standIns = {})
      : key_(std::move(key)), sources_(std::move(sources)), standIns_(std::move(standIns)) {}

  [[nodiscard]] const std::string& key() const { return key_; }
  [[nodiscard]] bool isProcessor() const;
  [[nodiscard]] bool hasSources() const { return !sources_.empty() || !standIns_.empty(); }

  /// Degrees Celsius, above -40 and at most 150; readings beyond that are of sensors that are not there.
  /// None if no source gives one.
  [[nodiscard]] std::optional<double> celsius() const;

private:
  std::string key_;
  std::vector<Source> sources_;
  std::vector<Source> standIns_;
};

/// The keys that `devices`, in their order, stand for; each name once. Everything is folded into one key for
/// the processor ("TCHP"; there wherever it has sensors, whether they read now or not) and one a device for
/// graphics ("TG0D", "TG1D", ...), drives ("TD00", ...) and batteries ("TB0T", ...). An Intel Mac's other
/// keys keep their names and come last. What fits none of these has no key: a reading of who knows what must
/// not drive a fan.
[[nodiscard]] std::vector<TemperatureKey>
temperatureKeys(const std::vector<std::shared_ptr<const HwmonDevice>>& devices);

} // namespace ventolith::platform
