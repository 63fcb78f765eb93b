// Values on their way into the SMC's bytes: the counterpart of `hardware::decodeSMCValue`, for every type
// that a machine's file may use.
#pragma once

#include "hardware/SMCParamStruct.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace ventolith::simulated {

/// Bytes of a value of `type`; none for a type whose size does not follow from its name.
[[nodiscard]] std::optional<std::uint32_t> sizeOfType(std::string_view type);

/// `number` in the form of `type`, the nearest that the type can hold; none for a type without a number.
/// Floats are little-endian, all else big-endian.
[[nodiscard]] std::optional<hardware::SMCBytes> encodeNumber(std::string_view type, double number);

} // namespace ventolith::simulated
