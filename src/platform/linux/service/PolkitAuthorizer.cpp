#include "platform/linux/service/PolkitAuthorizer.h"

#include "platform/linux/service/CallerUser.h"
#include "platform/linux/service/ErrorLine.h"

#include <boost/asio/this_coro.hpp>
#include <fmt/format.h>

#include <cstdint>
#include <map>
#include <utility>

namespace ventolith::platform {

using runtime::Async;

namespace {

constexpr const char* action = "com.ventolith.helper.control-fans";

enum class Interaction : std::uint32_t { none = 0, allowed = 1 };

struct Decision {
  bool isAuthorized = false;
  bool isChallenge = false; // A person could change it.
};

sdbus::MethodCall question(const BusConnection& connection, const std::string& caller,
                           Interaction interaction) {
  using Subject = sdbus::Struct<std::string, std::map<std::string, sdbus::Variant>>;
  sdbus::MethodCall call = connection.newCall({.destination = "org.freedesktop.PolicyKit1",
                                               .path = "/org/freedesktop/PolicyKit1/Authority",
                                               .interface = "org.freedesktop.PolicyKit1.Authority",
                                               .name = "CheckAuthorization"});
  const std::map<std::string, std::string> noDetails;
  const std::string notCancellable;
  call << Subject("system-bus-name", {{"name", sdbus::Variant(caller)}}) << action << noDetails
       << static_cast<std::uint32_t>(interaction) << notCancellable;
  return call;
}

Async<BusResult<Decision>> ask(std::shared_ptr<BusConnection> connection, std::string caller,
                               Interaction interaction, runtime::StopToken stop) {
  BusResult<BusReply> reply = co_await connection->call(question(*connection, caller, interaction), stop);
  if (!reply) co_return reply.error();
  sdbus::Struct<bool, bool, std::map<std::string, std::string>> answer; // The details tell nothing here.
  if (!reply->read(answer)) co_return BusFailure{"", "it was not understood"};
  co_return Decision{std::get<0>(answer), std::get<1>(answer)};
}

Async<void> endAfter(runtime::Duration limit, runtime::Clock& clock, runtime::StopToken answered,
                     runtime::StopSource end) {
  co_await clock.sleep(limit, answered);
  if (!answered.stopRequested()) end.requestStop();
}

} // namespace

/// Everything that a question needs while it is open.
class PolkitAuthorizer::Asking {
public:
  explicit Asking(runtime::Clock& clock) : clock_(clock) {}

  static Async<bool> decide(std::shared_ptr<Asking> self, std::shared_ptr<BusConnection> connection,
                            helper::HelperCaller caller, runtime::StopToken stop);

private:
  Async<BusResult<Decision>> askWithoutAPerson(std::shared_ptr<BusConnection> connection, std::string caller,
                                               runtime::StopToken stop);
  void report(const helper::HelperCaller& caller, const BusFailure& failure);

  runtime::Clock& clock_;
  runtime::Instant quietUntil_ = runtime::distantPast;
};

Async<bool> PolkitAuthorizer::Asking::decide(std::shared_ptr<Asking> self,
                                             std::shared_ptr<BusConnection> connection,
                                             helper::HelperCaller caller, runtime::StopToken stop) {
  const BusResult<uid_t> user = co_await userOf(connection, caller.name, stop);
  if (!user || stop.stopRequested()) co_return false; // It is gone.
  if (*user == 0) co_return true;

  BusResult<Decision> decision = co_await self->askWithoutAPerson(connection, caller.name, stop);
  const bool takesAPerson = decision && !decision->isAuthorized && decision->isChallenge;
  if (takesAPerson && caller.waitsForAPerson)
    decision = co_await ask(connection, caller.name, Interaction::allowed, stop);
  if (stop.stopRequested()) co_return false;
  if (!decision) self->report(caller, decision.error());
  co_return decision && decision->isAuthorized;
}

Async<BusResult<Decision>>
PolkitAuthorizer::Asking::askWithoutAPerson(std::shared_ptr<BusConnection> connection, std::string caller,
                                            runtime::StopToken stop) {
  runtime::StopSource answered;
  runtime::StopSource end;
  const auto stopObservation = stop.onStop([&end] { end.requestStop(); });
  runtime::start(co_await boost::asio::this_coro::executor, "the time limit of a question",
                 endAfter(answerLimit, clock_, answered.token(), end));
  auto decision = co_await ask(std::move(connection), std::move(caller), Interaction::none, end.token());
  answered.requestStop();
  co_return decision;
}

void PolkitAuthorizer::Asking::report(const helper::HelperCaller& caller, const BusFailure& failure) {
  const runtime::Instant now = clock_.now();
  if (now < quietUntil_) return;
  quietUntil_ = now + reportInterval;
  sayOnStandardError(fmt::format("[PolkitAuthorizer] polkit gave no answer, {} is not admitted: {}",
                                 caller.name, failure.description()));
}

PolkitAuthorizer::PolkitAuthorizer(Bus& bus, runtime::Clock& clock)
    : bus_(bus), asking_(std::make_shared<Asking>(clock)) {}

Async<bool> PolkitAuthorizer::mayControlFans(helper::HelperCaller caller, runtime::StopToken stop) {
  const auto connection = bus_.connection();
  if (!connection) co_return false; // Nor is there a caller then.
  co_return co_await Asking::decide(asking_, *connection, std::move(caller), std::move(stop));
}

} // namespace ventolith::platform
