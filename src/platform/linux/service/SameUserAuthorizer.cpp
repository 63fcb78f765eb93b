#include "platform/linux/service/SameUserAuthorizer.h"

#include "platform/linux/service/CallerUser.h"

#include <unistd.h>

#include <utility>

namespace ventolith::platform {

runtime::Async<bool> SameUserAuthorizer::mayControlFans(helper::HelperCaller caller,
                                                        runtime::StopToken stop) {
  const auto connection = bus_.connection();
  if (!connection) co_return false;
  const BusResult<uid_t> user = co_await userOf(*connection, caller.name, std::move(stop));
  co_return user.has_value() && *user == ::geteuid();
}

} // namespace ventolith::platform
