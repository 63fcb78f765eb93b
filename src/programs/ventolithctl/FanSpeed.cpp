#include "programs/ventolithctl/FanSpeed.h"

#include "core/Visitor.h"
#include "hardware/FanKeys.h"
#include "programs/ventolithctl/Context.h"
#include "programs/ventolithctl/TextLayout.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <charconv>
#include <optional>

namespace ventolith::ctl {

namespace {

constexpr std::int64_t highestRPM = 100000; // No fan turns faster; what is above is a slip of the finger.

/// Digits and nothing else.
std::optional<std::int64_t> wholeNumber(std::string_view text) {
  std::int64_t number = 0;
  const bool isSigned = text.starts_with('-');
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (isSigned || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

/// Digits, and a fraction if there is one.
std::optional<double> decimalNumber(std::string_view text) {
  constexpr std::string_view ofDecimals = "0123456789.";
  const bool isDecimal = text.find_first_not_of(ofDecimals) == std::string_view::npos;
  double number = 0;
  if (text.empty() || !isDecimal || !CLI::detail::lexical_cast(std::string(text), number))
    return std::nullopt;
  return number;
}

} // namespace

core::FanID readFanNumber(std::string_view text) {
  const auto number = wholeNumber(text);
  if (number && *number < hardware::fankeys::nameableFans) return *number;
  throw InputError(fmt::format("FAN: \"{}\" is no fan's number; they go from 0 to {}", printable(text),
                               hardware::fankeys::nameableFans - 1));
}

FanSpeed readFanSpeed(std::string_view text) {
  if (text.ends_with('%')) {
    const auto percent = decimalNumber(text.substr(0, text.size() - 1));
    if (percent && *percent <= 100) return Percent{*percent};
    throw InputError(fmt::format("SPEED: \"{}\" is no percentage from 0% to 100%", printable(text)));
  }
  const auto rpm = wholeNumber(text);
  if (rpm && *rpm <= highestRPM) return RPM{*rpm};
  throw InputError(fmt::format("SPEED: \"{}\" is neither an RPM (0 to {}) nor a percentage, such as 45%",
                               printable(text), highestRPM));
}

std::string speedText(const FanSpeed& speed) {
  return std::visit(core::Visitor{[](RPM rpm) { return fmt::format("{} RPM", rpm.value); },
                                  [](Percent percent) { return fmt::format("{} %", percent.value); }},
                    speed);
}

} // namespace ventolith::ctl
