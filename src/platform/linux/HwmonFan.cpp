#include "platform/linux/HwmonFan.h"

#include "hardware/FanKeys.h"

namespace ventolith::platform {

namespace {

/// Above what two clocks that are read one after the other differ by.
constexpr runtime::Duration shortestSleep = std::chrono::milliseconds(500);

} // namespace

HwmonFan::HwmonFan(std::shared_ptr<const HwmonDevice> device, int number, std::unique_ptr<FanControl> control,
                   std::string root)
    : device_(std::move(device)),
      control_(std::move(control)),
      identity_{std::move(root), device_->identity, number} {}

bool HwmonFan::has(const char* suffix) const {
  return device_->folder.has(attributeName("fan", number(), suffix));
}

std::optional<std::int64_t> HwmonFan::read(const char* suffix) const {
  return device_->folder.readInteger(attributeName("fan", number(), suffix));
}

std::uint8_t HwmonFan::mode() const {
  namespace keys = hardware::fankeys;
  const auto isManual = control_->isManual();
  if (!isClaimed()) return isManual.value_or(false) ? keys::modeManual : keys::modeAutomatic;
  const bool isOurs = isManual.value_or(true) && !isTargetRefused_;
  return isOurs ? keys::modeManual : keys::modeReclaimed;
}

std::error_code HwmonFan::take(ClaimsRecord& claims) {
  if (isClaimed()) {
    claims.keep({identity_, control_->kind(), *former_});
    return control_->takeAgain();
  }
  // A record that still stands is of a run that could not give the fan back: what it found is older, and
  // truer, than what stands in the files now.
  const auto recorded = claims.find(identity_, control_->kind());
  const FormerControl former = recorded ? *recorded : control_->former();
  if (!recorded) claims.put({identity_, control_->kind(), former});
  if (const auto error = control_->take()) {
    if (!recorded) claims.remove(identity_);
    return error;
  }
  former_ = former;
  asleepAtLastTarget_.reset();
  return {};
}

std::error_code HwmonFan::setSpeed(double rpm, runtime::Duration asleep) {
  const bool hasSlept = asleepAtLastTarget_ && asleep - *asleepAtLastTarget_ > shortestSleep;
  const auto error = hasSlept ? control_->setSpeedAfterSleep(rpm) : control_->setSpeed(rpm);
  isTargetRefused_ = static_cast<bool>(error);
  if (!error) asleepAtLastTarget_ = asleep;
  return error;
}

std::error_code HwmonFan::giveBackThrough(FanControl& control, ClaimsRecord& claims) {
  const auto known = former_ ? former_ : claims.find(identity_, control.kind());
  if (!known && isLeftManual_) return {};
  if (const auto error = known ? control.giveBack(*known) : control.giveBackUnknown()) return error;
  isLeftManual_ = known && known->isManual();
  forget(claims);
  return {};
}

void HwmonFan::forget(ClaimsRecord& claims) {
  former_.reset();
  isTargetRefused_ = false;
  claims.remove(identity_);
}

} // namespace ventolith::platform
