// Versions that can be compared.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace ventolith::app {

struct SemanticVersion {
  std::vector<std::int64_t> components; // Three, if it was read from a text.

  /// Three numbers joined by dots. What stands after the first "-" or "+" is left out of account. None for
  /// any other text, and for a number beyond 64 bits.
  [[nodiscard]] static std::optional<SemanticVersion> fromText(std::string_view text);

  bool operator==(const SemanticVersion&) const = default;
  bool operator<(const SemanticVersion& other) const { return components < other.components; }
};

} // namespace ventolith::app
