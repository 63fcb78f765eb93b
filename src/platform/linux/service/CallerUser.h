// Who is behind a name on the bus, as the bus itself knows it.
#pragma once

#include "platform/linux/service/BusConnection.h"
#include "runtime/Async.h"

#include <sys/types.h>

#include <memory>
#include <string>

namespace ventolith::platform {

/// The user that the connection of this unique name belongs to. Fails for a connection that is gone,
/// and when `stop` is requested.
runtime::Async<BusResult<uid_t>> userOf(std::shared_ptr<BusConnection> connection, std::string uniqueName,
                                        runtime::StopToken stop);

} // namespace ventolith::platform
