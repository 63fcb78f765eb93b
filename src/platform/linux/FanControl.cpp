#include "platform/linux/FanControl.h"

#include "platform/linux/FanDrivers.h"

#include <algorithm>
#include <cmath>

namespace ventolith::platform {

namespace {

/// Far above any fan, and well within what a whole number holds.
constexpr double topSpeed = 1e6;

/// The driver takes targets only when its parameter allowed it at load time, and refuses them one by one
/// once it is switched off.
bool isFanControlAllowed(const std::filesystem::path& modules) {
  const auto parameters = AttributeFolder::open(modules / "macsmc_hwmon" / "parameters");
  if (!parameters || !parameters->has("fan_control")) return true;
  const auto value = parameters->readLine("fan_control");
  return value == "Y" || value == "1";
}

bool areWritable(const FanControl& control, const AttributeFolder& folder) {
  return std::ranges::all_of(control.files(),
                             [&](const std::string& file) { return folder.hasWritable(file); });
}

} // namespace

SpeedLimits speedLimits(const HwmonDevice& device, int fan) {
  return {device.folder.readInteger(attributeName("fan", fan, "_min")),
          device.folder.readInteger(attributeName("fan", fan, "_max"))};
}

FanControl::FanControl(std::shared_ptr<const HwmonDevice> device, int fan)
    : device_(std::move(device)), fan_(fan), limits_(speedLimits(*device_, fan)) {}

std::error_code FanControl::setSpeedAfterSleep(double rpm) {
  if (const auto error = takeAgain()) return error;
  return setSpeed(rpm);
}

void FanControl::refreshLimits() {
  const SpeedLimits now = speedLimits(*device_, fan_);
  if (now.minimum) limits_.minimum = now.minimum;
  if (now.maximum.value_or(0) > 0) limits_.maximum = now.maximum;
}

std::int64_t FanControl::withinLimits(double rpm) const {
  auto speed = static_cast<std::int64_t>(std::lround(std::clamp(rpm, 0.0, topSpeed)));
  // The maximum counts as unknown where it reads 0, as some drivers have it.
  if (limits_.maximum && *limits_.maximum > 0) speed = std::min(speed, *limits_.maximum);
  if (limits_.minimum && *limits_.minimum > 0) speed = std::max(speed, *limits_.minimum);
  return speed;
}

std::unique_ptr<FanControl> makeFanControl(const std::shared_ptr<const HwmonDevice>& device, int fan,
                                           const std::filesystem::path& modules) {
  const AttributeFolder& folder = device->folder;
  if (auto control = std::make_unique<ManualOutputFan>(device, fan); areWritable(*control, folder))
    return control;
  if (device->identity.driver == "macsmc_hwmon") {
    auto control = std::make_unique<TargetFan>(device, fan);
    if (!areWritable(*control, folder) || !isFanControlAllowed(modules)) return nullptr;
    return control;
  }
  if (auto control = std::make_unique<EnabledTargetFan>(device, fan); areWritable(*control, folder))
    return control;
  auto control = std::make_unique<DutyFan>(device, fan);
  if (!control->isSpeedKnown() || !areWritable(*control, folder)) return nullptr;
  return control;
}

} // namespace ventolith::platform
