// One fan: its mode, its target, and the inertia with which it follows.
#pragma once

#include "platform/simulated/MachineDescription.h"
#include "runtime/Time.h"

#include <cstdint>

namespace ventolith::simulated {

class SimulatedFan {
public:
  explicit SimulatedFan(FanDescription description);

  /// Lets `seconds` pass. In any mode but the manual one the firmware sets the target, by its own curve
  /// over `celsius`.
  void step(double seconds, double celsius, const FirmwareDescription& firmware);

  /// A value written to the mode key, automatic or manual. A fan that the firmware insists on goes on
  /// reading as reclaimed.
  void setMode(std::uint8_t mode, runtime::Instant now);
  /// The firmware takes the fan, and answers attempts to get it back with silence until `insistUntil`.
  void reclaim(runtime::Instant insistUntil);
  /// RPM as written. It runs the fan in manual mode only: 0 stops it, what is above the maximum is the
  /// maximum.
  void setTarget(double rpm) { target_ = rpm; }

  [[nodiscard]] const FanDescription& description() const { return description_; }
  [[nodiscard]] std::uint8_t mode() const { return mode_; }
  [[nodiscard]] double target() const { return target_; } // RPM
  [[nodiscard]] double speed() const { return speed_; }   // RPM

private:
  [[nodiscard]] double firmwareTarget(double celsius, const FirmwareDescription& firmware);

  FanDescription description_;
  std::uint8_t mode_;
  double target_;
  double speed_;
  bool isDriven_ = false; // The firmware has found it warm, and not yet cool again.
  runtime::Instant insistUntil_ = runtime::distantPast;
};

} // namespace ventolith::simulated
