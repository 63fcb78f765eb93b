// Whom this process lets in as a helper.
#pragma once

#include <optional>
#include <string>

namespace ventolith::platform {

/// The requirement that clients have to satisfy by their signatures, if this process is signed by a team
/// itself. None for a development build, which has nothing to compare with and lets in its own user alone.
/// Fails with ServiceError where the own signature is a team's but cannot be trusted.
[[nodiscard]] std::optional<std::string> requirementForClients();

} // namespace ventolith::platform
