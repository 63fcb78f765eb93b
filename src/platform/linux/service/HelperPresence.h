// Whether some helper serves a bus, for a process that is none and has no time to lose.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace ventolith::platform {

/// Whether somebody has the helper's name on the bus at `address`, or on the system's. Blocks for the answer,
/// for `limit` at most: no bus, and none that answers in time, knows no helper. Starts none either.
[[nodiscard]] bool isHelperPresent(const std::optional<std::string>& address,
                                   std::chrono::milliseconds limit);

} // namespace ventolith::platform
