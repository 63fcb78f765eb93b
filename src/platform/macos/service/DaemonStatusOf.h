// The system's statuses of a registered service, as numbers.
#pragma once

#include "helper/link/DaemonService.h"

namespace ventolith::platform {

/// A number that is none of the four says nothing of a helper that could be talked to.
[[nodiscard]] constexpr helper::DaemonStatus daemonStatusOf(long number) {
  switch (number) {
  case 0: return helper::DaemonStatus::notRegistered;
  case 1: return helper::DaemonStatus::enabled;
  case 2: return helper::DaemonStatus::requiresApproval;
  default: return helper::DaemonStatus::notFound;
  }
}

} // namespace ventolith::platform
