#include "platform/linux/service/CallerUser.h"

#include <cstdint>
#include <utility>

namespace ventolith::platform {

runtime::Async<BusResult<uid_t>> userOf(std::shared_ptr<BusConnection> connection, std::string uniqueName,
                                        runtime::StopToken stop) {
  sdbus::MethodCall call = connection->newCall({.destination = "org.freedesktop.DBus",
                                                .path = "/org/freedesktop/DBus",
                                                .interface = "org.freedesktop.DBus",
                                                .name = "GetConnectionUnixUser"});
  call << uniqueName;
  BusResult<BusReply> reply = co_await connection->call(std::move(call), std::move(stop));
  if (!reply) co_return reply.error();
  std::uint32_t user = 0;
  if (!reply->read(user)) co_return BusFailure{"", "the bus names no user"};
  co_return uid_t{user};
}

} // namespace ventolith::platform
