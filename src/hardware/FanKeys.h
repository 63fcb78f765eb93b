// The SMC keys of the fan subsystem.
#pragma once

#include "core/SensorSnapshot.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ventolith::hardware::fankeys {

inline constexpr const char* keyCount = "#KEY";
inline constexpr const char* fanCount = "FNum";
/// Set to 1 around claims and releases, back to 0 when no fan is held.
inline constexpr const char* forceTest = "Ftst";

/// Of machines that keep a record of what is held: how many fans that an earlier process held have still to
/// go back and are not among those of the machine now. No Mac has it.
inline constexpr const char* fansOutOfReach = "FOoR";

/// A key has four characters, of which the fan's index is one: this many fans can be named.
inline constexpr core::FanID nameableFans = 10;

[[nodiscard]] constexpr bool isNameable(core::FanID fan) {
  return fan >= 0 && fan < nameableFans;
}

// Each takes a fan that is nameable.
[[nodiscard]] std::string measured(core::FanID fan);         // "F<n>Ac", RPM
[[nodiscard]] std::string minimum(core::FanID fan);          // "F<n>Mn", RPM
[[nodiscard]] std::string maximum(core::FanID fan);          // "F<n>Mx", RPM
[[nodiscard]] std::string target(core::FanID fan);           // "F<n>Tg", RPM, written as a float
[[nodiscard]] std::string modeFirstChoice(core::FanID fan);  // "F<n>Md"
[[nodiscard]] std::string modeSecondChoice(core::FanID fan); // "F<n>md", on machines that lack the first

/// Values of the mode key.
inline constexpr std::uint8_t modeAutomatic = 0; // The firmware drives the fan.
inline constexpr std::uint8_t modeManual = 1;
inline constexpr std::uint8_t modeReclaimed = 3; // The firmware has taken the fan back by itself.

/// `value` without its fraction; none if it is not a number. Beyond 64 bits the nearest that fits.
[[nodiscard]] std::optional<std::int64_t> truncated(std::optional<double> value);

/// How many fans "FNum" says there are, as far as they can be named; none if it gave no number.
[[nodiscard]] std::optional<core::FanID> fanCountOf(std::optional<double> value);

} // namespace ventolith::hardware::fankeys
