// Whether some helper runs, for a process that is none.
#pragma once

#include "platform/macos/service/MachService.h"

namespace ventolith::platform {

/// Whether another process runs the helper's program: as root for the system's domain, as this process's user
/// for the user's own. Starts none, and waits for nobody.
[[nodiscard]] bool isHelperPresent(MachService::Domain domain);

} // namespace ventolith::platform
