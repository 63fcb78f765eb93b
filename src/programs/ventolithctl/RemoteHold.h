// `apply --hold`: a plan that the helper holds, and this process keeps alive.
#pragma once

#include "core/FanControlPlan.h"
#include "programs/ventolithctl/Context.h"

namespace ventolith::ctl {

/// How often the helper hears that its client is alive: thrice within its limit.
inline constexpr runtime::Duration heartbeatPeriod = std::chrono::seconds(5);

/// How long a helper may be away before the hold ends. A service manager needs a second or two.
inline constexpr runtime::Duration absenceLimit = std::chrono::seconds(30);

/// Applies the plan, sends heartbeats and shows states until the user ends it, then gives the fans back. A
/// helper that was restarted gets the plan again. Ends with `failed` when the helper let go of the fans, and
/// as the command ended when the plan could not be held. `plan` has fans to hold.
runtime::Async<ExitStatus> holdRemotely(core::FanControlPlan plan, Context& context);

} // namespace ventolith::ctl
