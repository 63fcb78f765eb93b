// The files under data/machines as the build put them into the library, so that no program needs the
// folder.
#pragma once

#include <string_view>
#include <vector>

namespace ventolith::simulated {

struct EmbeddedMachine {
  std::string_view name; // Of the file, without ".json".
  std::string_view text;
};

[[nodiscard]] std::vector<EmbeddedMachine> embeddedMachines();

} // namespace ventolith::simulated
