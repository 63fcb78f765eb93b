#include "hardware/SensorNaming.h"

#include <array>

namespace ventolith::hardware::SensorNaming {

using core::SensorCategory;

namespace {

struct Row {
  std::string_view key;
  FriendlyName name;
};

constexpr std::array exact = {
    Row{"TCHP", {"CPU", SensorCategory::cpu}},
    Row{"TCMb", {"CPU (cluster)", SensorCategory::cpu}},
    Row{"TCMz", {"CPU (cluster)", SensorCategory::cpu}},
};

constexpr std::array byPrefix = {
    Row{"TB", {"Battery", SensorCategory::battery}},
    Row{"TG", {"GPU", SensorCategory::gpu}},
    Row{"TD", {"SSD/Board", SensorCategory::ssd}},
};

} // namespace

std::optional<FriendlyName> friendlyName(std::string_view key) {
  for (const Row& row : exact) {
    if (key == row.key) return row.name;
  }
  for (const Row& row : byPrefix) {
    if (key.starts_with(row.key)) return row.name;
  }
  return std::nullopt;
}

} // namespace ventolith::hardware::SensorNaming
