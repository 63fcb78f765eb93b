#include "platform/linux/service/PolkitAuthorizer.h"

#include "platform/linux/service/CallerUser.h"

#include <fmt/format.h>

#include <cstdint>
#include <cstdio>
#include <map>
#include <utility>

namespace ventolith::platform {

namespace {

constexpr const char* action = "com.ventolith.helper.control-fans";
constexpr std::uint32_t allowNoInteraction = 0;
constexpr std::uint32_t allowUserInteraction = 1;

/// (is authorized, is a challenge, details).
using Decision = sdbus::Struct<bool, bool, std::map<std::string, std::string>>;

sdbus::MethodCall question(const BusConnection& connection, const helper::HelperCaller& caller) {
  using Subject = sdbus::Struct<std::string, std::map<std::string, sdbus::Variant>>;
  sdbus::MethodCall call = connection.newCall({.destination = "org.freedesktop.PolicyKit1",
                                               .path = "/org/freedesktop/PolicyKit1/Authority",
                                               .interface = "org.freedesktop.PolicyKit1.Authority",
                                               .name = "CheckAuthorization"});
  const std::map<std::string, std::string> noDetails;
  const std::string notCancellable;
  call << Subject("system-bus-name", {{"name", sdbus::Variant(caller.name)}}) << action << noDetails
       << (caller.waitsForAPerson ? allowUserInteraction : allowNoInteraction) << notCancellable;
  return call;
}

} // namespace

runtime::Async<bool> PolkitAuthorizer::mayControlFans(helper::HelperCaller caller) {
  const auto failures = failures_;
  const auto opened = bus_.connection();
  if (!opened) co_return false; // Nor is there a caller then.
  const std::shared_ptr<BusConnection>& connection = *opened;

  BusResult<BusReply> reply = co_await connection->call(question(*connection, caller));
  if (!reply) co_return co_await admitRoot(connection, caller, reply.error().description(), failures);
  Decision decision;
  if (!reply->read(decision))
    co_return co_await admitRoot(connection, caller, "it was not understood", failures);
  failures->isReported = false;
  co_return std::get<0>(decision);
}

runtime::Async<bool> PolkitAuthorizer::admitRoot(std::shared_ptr<BusConnection> connection,
                                                 helper::HelperCaller caller, std::string failure,
                                                 std::shared_ptr<Failures> failures) {
  const BusResult<uid_t> user = co_await userOf(connection, caller.name);
  const bool isAdmitted = user.has_value() && *user == 0;
  if (!std::exchange(failures->isReported, true)) {
    fmt::print(stderr, "[PolkitAuthorizer] polkit gave no answer, {} is {}: {}\n", caller.name,
               isAdmitted ? "root and admitted" : "not admitted", failure);
  }
  co_return isAdmitted;
}

} // namespace ventolith::platform
