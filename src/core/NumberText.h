// Numbers in the texts of the system.
#pragma once

#include <string>

namespace ventolith::core {

/// `value` in its shortest form that reads back to the same value, always with a fractional part or an
/// exponent: 0.0, 15.0, 0.3, 1e+16.
[[nodiscard]] std::string fractionText(double value);

} // namespace ventolith::core
