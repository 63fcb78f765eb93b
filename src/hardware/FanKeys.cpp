#include "hardware/FanKeys.h"

#include <algorithm>
#include <cmath>

namespace ventolith::hardware::fankeys {

namespace {

std::string fanKey(core::FanID fan, const char* suffix) {
  return std::string("F").append(std::to_string(fan)).append(suffix);
}

} // namespace

std::string measured(core::FanID fan) {
  return fanKey(fan, "Ac");
}
std::string minimum(core::FanID fan) {
  return fanKey(fan, "Mn");
}
std::string maximum(core::FanID fan) {
  return fanKey(fan, "Mx");
}
std::string target(core::FanID fan) {
  return fanKey(fan, "Tg");
}
std::string modeFirstChoice(core::FanID fan) {
  return fanKey(fan, "Md");
}
std::string modeSecondChoice(core::FanID fan) {
  return fanKey(fan, "md");
}

std::optional<std::int64_t> truncated(std::optional<double> value) {
  if (!value || std::isnan(*value)) return std::nullopt;
  constexpr double limit = 9.2e18; // Below the largest 64-bit integer.
  return static_cast<std::int64_t>(std::clamp(*value, -limit, limit));
}

std::optional<core::FanID> fanCountOf(std::optional<double> value) {
  const auto count = truncated(value);
  if (!count) return std::nullopt;
  return std::clamp<core::FanID>(*count, 0, nameableFans);
}

} // namespace ventolith::hardware::fankeys
