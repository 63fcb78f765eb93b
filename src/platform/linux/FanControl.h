// How the drivers let a fan be driven: one small class a kind of driver, all with the same six verbs.
#pragma once

#include "platform/linux/HwmonDevice.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace ventolith::platform {

/// What stood in a fan's files before it was taken, and what giving it back writes.
struct FormerControl {
  std::optional<std::int64_t> enable; // Of the file that says manual or automatic; none if it does not read.
  std::optional<std::int64_t> speed;  // Of the file that says how fast; only where `enable` was manual.

  /// Whether the fan was in manual control already, and somebody else's therefore.
  [[nodiscard]] bool isManual() const { return enable == 1; }

  bool operator==(const FormerControl&) const = default;
};

/// Whole RPM; what a driver does not tell is none.
struct SpeedLimits {
  std::optional<std::int64_t> minimum;
  std::optional<std::int64_t> maximum;
};

/// `fanN_min` and `fanN_max` as they read now.
[[nodiscard]] SpeedLimits speedLimits(const HwmonDevice& device, int fan);

/// Drives one fan of one device. Every operation writes at once and returns the system's refusal, if any.
class FanControl {
public:
  FanControl(std::shared_ptr<const HwmonDevice> device, int fan);
  FanControl(const FanControl&) = delete;
  FanControl& operator=(const FanControl&) = delete;
  virtual ~FanControl() = default;

  /// Names the kind where a claim is put on record.
  [[nodiscard]] virtual const char* kind() const = 0;

  /// The files that are written, all of which have to be writable.
  [[nodiscard]] virtual std::vector<std::string> files() const = 0;

  /// Whether the fan is in manual control; none if the driver does not tell.
  [[nodiscard]] virtual std::optional<bool> isManual() const = 0;

  [[nodiscard]] virtual FormerControl former() const = 0;

  /// Takes the fan, whose limits are read first.
  [[nodiscard]] virtual std::error_code take() = 0;

  /// Makes sure of a fan that was taken: firmware can revert it at any time.
  [[nodiscard]] virtual std::error_code takeAgain() = 0;

  /// Drives a taken fan at `rpm`, within what the fan and its driver can do.
  [[nodiscard]] virtual std::error_code setSpeed(double rpm) = 0;

  /// setSpeed() after the machine slept: neither fan nor driver need remember that the fan was taken.
  [[nodiscard]] virtual std::error_code setSpeedAfterSleep(double rpm);

  /// Gives a taken fan back, to what stood before.
  [[nodiscard]] virtual std::error_code giveBack(const FormerControl& former) = 0;

  /// Gives a fan back of which nothing is known. One that is under nobody's control stays untouched.
  [[nodiscard]] virtual std::error_code giveBackUnknown() = 0;

  /// The speed that the fan was last told; none if that is not known.
  [[nodiscard]] virtual std::optional<std::int64_t> target() const = 0;

protected:
  [[nodiscard]] const AttributeFolder& folder() const { return device_->folder; }
  [[nodiscard]] std::string fanFile(const char* suffix) const { return attributeName("fan", fan_, suffix); }
  [[nodiscard]] std::string pwmFile(const char* suffix) const { return attributeName("pwm", fan_, suffix); }

  /// As read at construction, and again at take().
  [[nodiscard]] const SpeedLimits& limits() const { return limits_; }
  void refreshLimits();

  /// `rpm` as a whole number within the limits, as far as these are known and in order.
  [[nodiscard]] std::int64_t withinLimits(double rpm) const;

private:
  std::shared_ptr<const HwmonDevice> device_;
  int fan_;
  SpeedLimits limits_;
};

/// What drives fan `fan` of `device`; none if its driver offers no control, or not for writing.
/// `modules` is the folder of the kernel's modules, where the parameters of drivers stand.
[[nodiscard]] std::unique_ptr<FanControl> makeFanControl(const std::shared_ptr<const HwmonDevice>& device,
                                                         int fan, const std::filesystem::path& modules);

} // namespace ventolith::platform
