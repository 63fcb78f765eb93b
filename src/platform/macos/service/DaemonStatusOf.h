// The system's statuses of a registered service, as numbers.
#pragma once

#include "helper/link/DaemonService.h"

namespace ventolith::platform {

/// Whether the bundle that this program is a part of holds the service's property list.
enum class PropertyList { isBrought, isMissing };

/// What macOS never had to do with it does not find, so that a service that could be registered may be
/// "not found" until it is: then alone `lookForList` is called. A number that is none of the four says
/// nothing of a helper that could be talked to.
template <class LookForList>
[[nodiscard]] constexpr helper::DaemonStatus daemonStatusOf(long number, const LookForList& lookForList) {
  using Status = helper::DaemonStatus;
  switch (number) {
  case 0: return Status::notRegistered;
  case 1: return Status::enabled;
  case 2: return Status::requiresApproval;
  case 3: return lookForList() == PropertyList::isBrought ? Status::notRegistered : Status::notFound;
  default: return Status::notFound;
  }
}

/// Whether there is something that could be taken away.
[[nodiscard]] constexpr bool isRegistered(helper::DaemonStatus status) {
  return status == helper::DaemonStatus::enabled || status == helper::DaemonStatus::requiresApproval;
}

} // namespace ventolith::platform
