#include "platform/simulated/SMCEncoding.h"

#include "hardware/SMCValue.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace ventolith::simulated {

namespace {

struct NumberType {
  std::string_view name;
  std::uint32_t size; // Bytes.
  double scale;       // Units of the last bit in 1; 0 for a float.
  double lowest;      // In units of the last bit.
  double highest;
};

constexpr std::array numberTypes{
    NumberType{"flt ", 4, 0, 0, 0},
    NumberType{"ui8 ", 1, 1, 0, 255},
    NumberType{"flag", 1, 1, 0, 1},
    NumberType{"ui16", 2, 1, 0, 65535},
    NumberType{"ui32", 4, 1, 0, 4294967295.0},
    NumberType{"si8 ", 1, 1, -128, 127},
    NumberType{"si16", 2, 1, -32768, 32767},
    NumberType{"si32", 4, 1, -2147483648.0, 2147483647.0},
    NumberType{"fpe2", 2, 4, 0, 65535},
    NumberType{"sp78", 2, 256, -32768, 32767},
};

const NumberType* findType(std::string_view name) {
  const auto* const found = std::find_if(numberTypes.begin(), numberTypes.end(),
                                         [name](const NumberType& type) { return type.name == name; });
  return found == numberTypes.end() ? nullptr : found;
}

} // namespace

std::optional<std::uint32_t> sizeOfType(std::string_view type) {
  const NumberType* const known = findType(type);
  if (known == nullptr) return std::nullopt;
  return known->size;
}

std::optional<hardware::SMCBytes> encodeNumber(std::string_view type, double number) {
  const NumberType* const known = findType(type);
  if (known == nullptr) return std::nullopt;
  if (known->scale == 0) return hardware::encodeFloat(number);
  const double units = std::isnan(number) ? 0 : std::round(number * known->scale);
  const auto bits =
      static_cast<std::uint64_t>(static_cast<std::int64_t>(std::clamp(units, known->lowest, known->highest)));
  hardware::SMCBytes bytes = hardware::zeroSMCBytes;
  for (std::uint32_t place = 0; place < known->size; ++place) {
    bytes[place] = static_cast<std::uint8_t>(bits >> (8 * (known->size - 1 - place)));
  }
  return bytes;
}

} // namespace ventolith::simulated
