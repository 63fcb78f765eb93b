// One fan as its keys show it: what it reads, whether this process holds it, and how it is given back.
#pragma once

#include "platform/linux/ClaimsRecord.h"
#include "platform/linux/FanControl.h"
#include "runtime/Time.h"

namespace ventolith::platform {

class HwmonFan {
public:
  /// `control` is none on a fan that can only be looked at. `root` is the hwmon root, links resolved.
  HwmonFan(std::shared_ptr<const HwmonDevice> device, int number, std::unique_ptr<FanControl> control,
           std::string root);

  [[nodiscard]] const HwmonDevice& device() const { return *device_; }
  [[nodiscard]] int number() const { return identity_.fan; } // N of fanN_input.
  [[nodiscard]] bool isControllable() const { return control_ != nullptr; }
  [[nodiscard]] bool isClaimed() const { return former_.has_value(); }

  [[nodiscard]] bool has(const char* suffix) const;
  /// The number in fanN and `suffix`, for instance the RPM of "_input".
  [[nodiscard]] std::optional<std::int64_t> read(const char* suffix) const;

  /// Whether it can be given back, and is the one of `fan`.
  [[nodiscard]] bool isControllableAs(const FanIdentity& fan) const {
    return isControllable() && identity_ == fan;
  }

  // The rest is of fans that are controllable.

  /// The mode as a Mac's firmware tells it: manual, automatic, or reclaimed where a fan that is claimed
  /// here has left manual control by itself, or takes no speed.
  [[nodiscard]] std::uint8_t mode() const;

  [[nodiscard]] std::optional<std::int64_t> target() const { return control_->target(); }

  /// Claims the fan, what stood before on record first. On a claimed fan, takes it into manual again, and
  /// puts it on record again if that is gone.
  [[nodiscard]] std::error_code take(ClaimsRecord& claims);

  /// Of a claimed fan. `asleep` is how long the machine has slept so far: more than at the last target
  /// means that the fan has to be taken anew.
  [[nodiscard]] std::error_code setSpeed(double rpm, runtime::Duration asleep);

  /// Ends the claim of this process, or else of one that left its record, or else what manual control is
  /// found. A refusal leaves everything as it stands, to be tried again.
  [[nodiscard]] std::error_code giveBack(ClaimsRecord& claims) { return giveBackThrough(*control_, claims); }

  /// giveBack() by way of `control`, for a device that has come back under another number.
  [[nodiscard]] std::error_code giveBackThrough(FanControl& control, ClaimsRecord& claims);

  /// Ends the claim of a fan that is no more.
  void forget(ClaimsRecord& claims);

private:
  std::shared_ptr<const HwmonDevice> device_;
  std::unique_ptr<FanControl> control_;
  FanIdentity identity_;
  std::optional<FormerControl> former_; // Of a claimed fan.
  std::optional<runtime::Duration> asleepAtLastTarget_;
  bool isTargetRefused_ = false; // The last one was: the fan does not do what it is told.
  /// Whether the fan was in somebody else's manual control before, and was left there.
  bool isLeftManual_ = false;
};

} // namespace ventolith::platform
