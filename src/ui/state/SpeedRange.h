// The range of a fan as its slider and its gauge run through it.
#pragma once

#include "core/SensorSnapshot.h"

#include <QString>

#include <cstdint>

namespace ventolith::ui {

/// RPM. The upper end is at least 1 above the lower one, whatever the firmware reports.
struct SpeedRange {
  double lower = 0;
  double upper = 1;

  /// How far `rpm` is on its way through the range, 0 to 1; 0 for what is not a number.
  [[nodiscard]] double fraction(double rpm) const;
  /// The same as a whole percentage, 0 to 100.
  [[nodiscard]] std::int64_t percent(double rpm) const;

  bool operator==(const SpeedRange&) const = default;
};

[[nodiscard]] SpeedRange speedRange(const core::Fan& fan);

/// "40%".
[[nodiscard]] QString percentText(std::int64_t percent);

} // namespace ventolith::ui
