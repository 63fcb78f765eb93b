#include "platform/linux/FanDrivers.h"

#include <algorithm>
#include <cmath>

namespace ventolith::platform {

namespace {

constexpr std::int64_t automatic = 0; // Of fanN_manual, fanN_enable and, as a speed, of fanN_target.
constexpr std::int64_t manual = 1;
constexpr std::int64_t dutyFull = 0;      // Of pwmN_enable: no control, full speed.
constexpr std::int64_t dutyAutomatic = 2; // Of pwmN_enable: the first of the automatic modes.

constexpr std::int64_t topOutput = 16383; // What applesmc can write in 14 bits.
constexpr std::int64_t topDuty = 255;

std::error_code notPossible() {
  return std::make_error_code(std::errc::io_error);
}

} // namespace

std::optional<bool> SwitchedFan::isManual() const {
  const auto value = folder().readInteger(switchFile());
  if (!value) return std::nullopt;
  return *value == manual;
}

FormerControl SwitchedFan::former() const {
  const auto enable = folder().readInteger(switchFile());
  if (enable != manual) return {enable, std::nullopt};
  return {enable, folder().readInteger(speedFile())};
}

std::error_code SwitchedFan::take() {
  refreshLimits();
  return takeAgain();
}

std::error_code SwitchedFan::takeAgain() {
  return folder().write(switchFile(), manual);
}

std::error_code SwitchedFan::giveBack(const FormerControl& former) {
  if (!former.enable) return switchToAutomatic();
  if (const auto error = folder().write(switchFile(), *former.enable)) return error;
  if (!former.isManual()) return {};
  // Manual control with our own speed in it would be nobody's.
  return former.speed ? folder().write(speedFile(), *former.speed) : switchToAutomatic();
}

std::error_code SwitchedFan::switchToAutomatic() {
  return folder().write(switchFile(), automatic);
}

std::error_code ManualOutputFan::setSpeed(double rpm) {
  // No minimum: the SMC takes any target, and a fan that is to stand still is told so.
  std::int64_t speed = std::lround(std::clamp(rpm, 0.0, static_cast<double>(topOutput)));
  if (limits().maximum.value_or(0) > 0) speed = std::min(speed, *limits().maximum);
  return folder().write(speedFile(), speed);
}

std::error_code ManualOutputFan::giveBackUnknown() {
  return switchToAutomatic();
}

std::optional<std::int64_t> ManualOutputFan::target() const {
  return folder().readInteger(speedFile());
}

std::error_code TargetFan::take() {
  refreshLimits();
  const auto running = folder().readInteger(fanFile("_input"));
  const auto speed = running ? running : limits().maximum;
  if (!speed) return notPossible();
  return setSpeed(static_cast<double>(*speed));
}

std::error_code TargetFan::takeAgain() {
  if (!lastWritten_) return take();
  return folder().write(fanFile("_target"), *lastWritten_);
}

std::error_code TargetFan::setSpeed(double rpm) {
  // 0 would give the fan back, so a fan that is to stand still runs as slowly as it can.
  const std::int64_t speed = std::max<std::int64_t>(withinLimits(rpm), 1);
  if (const auto error = folder().write(fanFile("_target"), speed)) return error;
  lastWritten_ = speed;
  return {};
}

std::error_code TargetFan::setSpeedAfterSleep(double rpm) {
  // The driver sets the mode only at the first target after a 0, and believes that it still stands.
  if (const auto error = folder().write(fanFile("_target"), automatic)) return error;
  return setSpeed(rpm);
}

std::error_code TargetFan::giveBack(const FormerControl&) {
  return giveBackUnknown();
}

std::error_code TargetFan::giveBackUnknown() {
  if (const auto error = folder().write(fanFile("_target"), automatic)) return error;
  lastWritten_.reset();
  return {};
}

std::optional<std::int64_t> TargetFan::target() const {
  return folder().readInteger(fanFile("_target"));
}

std::error_code EnabledTargetFan::setSpeed(double rpm) {
  const std::int64_t speed = withinLimits(rpm);
  if (const auto error = folder().write(speedFile(), speed)) return error;
  lastWritten_ = speed;
  return {};
}

std::error_code EnabledTargetFan::giveBackUnknown() {
  if (isManual() == std::optional(false)) return {};
  return switchToAutomatic();
}

std::optional<std::int64_t> EnabledTargetFan::target() const {
  const auto speed = folder().readInteger(speedFile()); // Does not read while the fan is automatic.
  return speed ? speed : lastWritten_;
}

std::error_code DutyFan::setSpeed(double rpm) {
  const auto maximum = static_cast<double>(*limits().maximum);
  // Rounded up: a fan must not run slower than it is asked to.
  const double duty = std::ceil(std::clamp(rpm, 0.0, maximum) * static_cast<double>(topDuty) / maximum);
  if (const auto error = folder().write(speedFile(), static_cast<std::int64_t>(duty))) return error;
  lastWritten_ = std::lround(std::clamp(rpm, 0.0, maximum));
  return {};
}

std::error_code DutyFan::giveBackUnknown() {
  if (isManual() == std::optional(false)) return {};
  return switchToAutomatic();
}

std::error_code DutyFan::switchToAutomatic() {
  if (!folder().write(switchFile(), dutyAutomatic)) return {};
  return folder().write(switchFile(), dutyFull);
}

} // namespace ventolith::platform
