// Which SMC temperature keys the user sees, and what they are called.
#pragma once

#include "core/SensorSnapshot.h"

#include <optional>
#include <string_view>

namespace ventolith::hardware::SensorNaming {

struct FriendlyName {
  std::string_view name;
  core::SensorCategory category;

  bool operator==(const FriendlyName&) const = default;
};

/// None for a key outside the curated set, which stays hidden.
[[nodiscard]] std::optional<FriendlyName> friendlyName(std::string_view key);

} // namespace ventolith::hardware::SensorNaming
