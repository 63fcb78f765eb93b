// The kinds of drivers. N is the fan's number throughout.
#pragma once

#include "platform/linux/FanControl.h"

namespace ventolith::platform {

/// A fan whose driver has a file that switches it to manual (1): fans that say so when they are asked.
class SwitchedFan : public FanControl {
public:
  using FanControl::FanControl;

  [[nodiscard]] std::optional<bool> isManual() const override;
  [[nodiscard]] FormerControl former() const override;
  [[nodiscard]] std::error_code take() override;
  [[nodiscard]] std::error_code takeAgain() override;
  [[nodiscard]] std::error_code giveBack(const FormerControl& former) override;

protected:
  [[nodiscard]] virtual std::string switchFile() const = 0;
  [[nodiscard]] virtual std::string speedFile() const = 0;

  /// Switches a fan to the driver's own control without knowing what stood before.
  [[nodiscard]] virtual std::error_code switchToAutomatic();
};

/// Intel Macs (applesmc): fanN_manual, then fanN_output in RPM.
class ManualOutputFan final : public SwitchedFan {
public:
  using SwitchedFan::SwitchedFan;

  [[nodiscard]] const char* kind() const override { return "manual-output"; }
  [[nodiscard]] std::vector<std::string> files() const override { return {switchFile(), speedFile()}; }
  [[nodiscard]] std::error_code setSpeed(double rpm) override;
  [[nodiscard]] std::error_code giveBackUnknown() override;
  [[nodiscard]] std::optional<std::int64_t> target() const override;

private:
  [[nodiscard]] std::string switchFile() const override { return fanFile("_manual"); }
  [[nodiscard]] std::string speedFile() const override { return fanFile("_output"); }
};

/// Apple-silicon Macs (macsmc_hwmon): fanN_target alone. A speed takes the fan, 0 gives it back, and the
/// driver does not tell which of the two stands.
class TargetFan final : public FanControl {
public:
  using FanControl::FanControl;

  [[nodiscard]] const char* kind() const override { return "target"; }
  [[nodiscard]] std::vector<std::string> files() const override { return {fanFile("_target")}; }
  [[nodiscard]] std::optional<bool> isManual() const override { return std::nullopt; }
  [[nodiscard]] FormerControl former() const override { return {}; }
  /// Takes the fan at the speed that it runs, so that it never slows down before it is told to.
  [[nodiscard]] std::error_code take() override;
  [[nodiscard]] std::error_code takeAgain() override;
  [[nodiscard]] std::error_code setSpeed(double rpm) override;
  [[nodiscard]] std::error_code setSpeedAfterSleep(double rpm) override;
  [[nodiscard]] std::error_code giveBack(const FormerControl& former) override;
  [[nodiscard]] std::error_code giveBackUnknown() override;
  [[nodiscard]] std::optional<std::int64_t> target() const override;

private:
  std::optional<std::int64_t> lastWritten_; // None while the fan is not taken.
};

/// Graphics cards (amdgpu): fanN_enable, then fanN_target in RPM.
class EnabledTargetFan final : public SwitchedFan {
public:
  using SwitchedFan::SwitchedFan;

  [[nodiscard]] const char* kind() const override { return "enable-target"; }
  [[nodiscard]] std::vector<std::string> files() const override { return {switchFile(), speedFile()}; }
  [[nodiscard]] std::error_code setSpeed(double rpm) override;
  [[nodiscard]] std::error_code giveBackUnknown() override;
  [[nodiscard]] std::optional<std::int64_t> target() const override;

private:
  [[nodiscard]] std::string switchFile() const override { return fanFile("_enable"); }
  [[nodiscard]] std::string speedFile() const override { return fanFile("_target"); }

  std::optional<std::int64_t> lastWritten_;
};

/// Fan controllers of main boards: pwmN_enable, then the duty pwmN, reckoned from the fan's top speed.
class DutyFan final : public SwitchedFan {
public:
  using SwitchedFan::SwitchedFan;

  /// Whether the fan's top speed is known, without which an RPM is no duty.
  [[nodiscard]] bool isSpeedKnown() const { return limits().maximum.value_or(0) > 0; }

  [[nodiscard]] const char* kind() const override { return "duty"; }
  [[nodiscard]] std::vector<std::string> files() const override { return {switchFile(), speedFile()}; }
  [[nodiscard]] std::error_code setSpeed(double rpm) override;
  [[nodiscard]] std::error_code giveBackUnknown() override;
  [[nodiscard]] std::optional<std::int64_t> target() const override { return lastWritten_; }

private:
  [[nodiscard]] std::string switchFile() const override { return pwmFile("_enable"); }
  [[nodiscard]] std::string speedFile() const override { return pwmFile(""); }
  [[nodiscard]] std::error_code switchToAutomatic() override;

  std::optional<std::int64_t> lastWritten_; // RPM.
};

} // namespace ventolith::platform
