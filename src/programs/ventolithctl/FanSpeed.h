// Fans and speeds as they are given on the command line.
#pragma once

#include "core/FanControlPlan.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace ventolith::ctl {

struct Percent {
  double value = 0; // 0 to 100 of the fan's range.
  bool operator==(const Percent&) const = default;
};
struct RPM {
  std::int64_t value = 0;
  bool operator==(const RPM&) const = default;
};
using FanSpeed = std::variant<RPM, Percent>;

/// "0": the number of a fan, as a snapshot shows it. Fails with InputError.
[[nodiscard]] core::FanID readFanNumber(std::string_view text);

/// "2400" is RPM, "45%" and "45.5%" are percentages. Fails with InputError.
[[nodiscard]] FanSpeed readFanSpeed(std::string_view text);

/// "2400 RPM", "45 %".
[[nodiscard]] std::string speedText(const FanSpeed& speed);

} // namespace ventolith::ctl
