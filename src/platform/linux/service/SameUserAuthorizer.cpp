#include "platform/linux/service/SameUserAuthorizer.h"

#include "platform/linux/service/CallerUser.h"

#include <unistd.h>

namespace ventolith::platform {

runtime::Async<bool> SameUserAuthorizer::mayControlFans(helper::HelperCaller caller) {
  const auto connection = bus_.connection();
  if (!connection) co_return false;
  const BusResult<uid_t> user = co_await userOf(*connection, caller.name);
  co_return user.has_value() && *user == ::geteuid();
}

} // namespace ventolith::platform
