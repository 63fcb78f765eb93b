// Parameter blocks as the 80 bytes that the driver sees, written out by offset and not through the struct
// that is under test.
#pragma once

#include "hardware/SMCParamStruct.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace ventolith::doubles {

using Block = std::array<std::uint8_t, 80>;

struct Field {
  std::size_t offset;
  std::vector<std::uint8_t> bytes;
};

/// All zero but for `fields`.
[[nodiscard]] inline Block blockOf(const std::vector<Field>& fields) {
  Block block{};
  for (const auto& [offset, bytes] : fields)
    std::copy(bytes.begin(), bytes.end(), block.begin() + static_cast<std::ptrdiff_t>(offset));
  return block;
}

[[nodiscard]] inline Block bytesOf(const hardware::SMCParamStruct& block) {
  Block bytes;
  std::memcpy(bytes.data(), &block, bytes.size());
  return bytes;
}

[[nodiscard]] inline hardware::SMCParamStruct structOf(const Block& bytes) {
  hardware::SMCParamStruct block;
  std::memcpy(&block, bytes.data(), bytes.size());
  return block;
}

} // namespace ventolith::doubles
