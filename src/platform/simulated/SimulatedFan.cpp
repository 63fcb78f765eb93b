#include "platform/simulated/SimulatedFan.h"

#include "hardware/FanKeys.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace ventolith::simulated {

namespace fankeys = hardware::fankeys;

namespace {

// The firmware lets a fan idle again only when it has become this much cooler, so that it does not start
// and stop all the time.
constexpr double hysteresisCelsius = 4;
// A fan this near to its target has reached it.
constexpr double settledRPM = 0.5;

} // namespace

SimulatedFan::SimulatedFan(FanDescription description)
    : description_(std::move(description)),
      mode_(fankeys::modeAutomatic),
      target_(description_.idle),
      speed_(description_.idle) {}

void SimulatedFan::step(double seconds, double celsius, const FirmwareDescription& firmware) {
  if (mode_ != fankeys::modeManual) target_ = firmwareTarget(celsius, firmware);
  const double goal = std::isnan(target_) ? 0 : std::clamp(target_, 0.0, description_.maximum);
  const double share = -std::expm1(-seconds / description_.timeConstant);
  speed_ += (goal - speed_) * share;
  if (std::abs(goal - speed_) < settledRPM) speed_ = goal;
}

void SimulatedFan::setMode(std::uint8_t mode, runtime::Instant now) {
  if (mode == fankeys::modeManual && now < insistUntil_) return;
  mode_ = mode;
  insistUntil_ = runtime::distantPast;
}

void SimulatedFan::reclaim(runtime::Instant insistUntil) {
  mode_ = fankeys::modeReclaimed;
  insistUntil_ = insistUntil;
}

double SimulatedFan::firmwareTarget(double celsius, const FirmwareDescription& firmware) {
  isDriven_ = celsius > firmware.startCelsius - (isDriven_ ? hysteresisCelsius : 0);
  if (!isDriven_) return description_.idle;
  const double share = std::clamp(
      (celsius - firmware.startCelsius) / (firmware.fullCelsius - firmware.startCelsius), 0.0, 1.0);
  return std::max(description_.idle,
                  description_.minimum + share * (description_.maximum - description_.minimum));
}

} // namespace ventolith::simulated
