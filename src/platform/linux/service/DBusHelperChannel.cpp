#include "platform/linux/service/DBusHelperChannel.h"

#include "core/Visitor.h"
#include "platform/linux/service/DBusHelperProtocol.h"

#include <boost/asio/post.hpp>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>

namespace ventolith::platform {

using core::Visitor;
using helper::HelperMessage;
using helper::HelperReply;
namespace messages = helper::messages;
namespace replies = helper::replies;

namespace {

/// What is sent by the clock has no helper started that an administrator has stopped.
bool isForARunningHelper(const HelperMessage& message) {
  return std::holds_alternative<messages::Heartbeat>(message) ||
         std::holds_alternative<messages::ReadState>(message);
}

/// None when the message is longer than the bus takes.
std::optional<sdbus::MethodCall> encoded(const BusConnection& connection, const HelperMessage& message) {
  sdbus::MethodCall call =
      connection.newCall({protocol::busName, protocol::objectPath, protocol::interfaceName,
                          std::string(helper::nameOf(message))});
  if (helper::changesAnything(message)) allowInteractiveAuthorization(call);
  if (isForARunningHelper(message)) leaveServiceUnstarted(call);
  const bool isEncoded = std::visit(
      Visitor{
          [&](const messages::SetManualRPM& command) { return bool(call << command.fan << command.rpm); },
          [&](const messages::SetPercent& command) { return bool(call << command.fan << command.percent); },
          [&](const messages::ApplyConfig& command) { return appendBytes(call, command.plan); },
          [](const auto&) { return true; }},
      message);
  if (!isEncoded) return std::nullopt;
  return call;
}

/// None when the reply is not made as one to `message` is.
std::optional<HelperReply> decoded(const HelperMessage& message, BusReply& reply) {
  using Decoded = std::optional<HelperReply>;
  const auto done = [&] { return reply.read() ? Decoded(replies::Done()) : std::nullopt; };
  return std::visit(Visitor{[&](const messages::HelperVersion&) -> Decoded {
                              replies::Version version;
                              return reply.read(version.identifier) ? Decoded(std::move(version))
                                                                    : std::nullopt;
                            },
                            [&](const messages::ReadState&) -> Decoded {
                              auto json = readBytes(reply.message(), std::numeric_limits<std::size_t>::max());
                              return json ? Decoded(replies::State{std::move(*json)}) : std::nullopt;
                            },
                            [&](const messages::ShutdownForUpgrade&) -> Decoded { return done(); },
                            [&](const messages::RestoreAuto&) -> Decoded { return done(); },
                            [&](const messages::Heartbeat&) -> Decoded { return std::nullopt; },
                            [&](const auto&) -> Decoded {
                              replies::Code code;
                              return reply.read(code.value) ? Decoded(code) : std::nullopt;
                            }},
                    message);
}

/// Knows no channel, which may go while it waits.
runtime::Async<std::optional<HelperReply>> callOver(std::shared_ptr<BusConnection> connection,
                                                    HelperMessage message, runtime::StopToken ended) {
  if (!connection || ended.stopRequested()) co_return std::nullopt;
  auto call = encoded(*connection, message);
  if (!call) co_return std::nullopt;
  auto reply = co_await connection->call(std::move(*call), ended);
  if (!reply || ended.stopRequested()) co_return std::nullopt;
  co_return decoded(message, reply.value());
}

} // namespace

DBusHelperChannel::~DBusHelperChannel() {
  invalidate();
}

void DBusHelperChannel::resume(Handlers handlers) {
  handlers_ = std::make_shared<const Handlers>(std::move(handlers));
  auto connection = bus_.connection();
  if (!connection) return;
  connection_ = std::move(connection.value());
  ownerMatch_ = connection_->matchOwner(protocol::busName,
                                        [this](const std::string&) { tell(&Handlers::interrupted); });
  lossObservation_ = connection_->lost().onStop([this] { tellOfInvalidation(); });
}

runtime::Async<std::optional<HelperReply>> DBusHelperChannel::call(HelperMessage message) {
  if (!connection_) tellOfInvalidation();
  return callOver(connection_, std::move(message), ended_.token());
}

void DBusHelperChannel::send(HelperMessage message) {
  if (!connection_) return tellOfInvalidation();
  if (auto call = encoded(*connection_, message)) connection_->send(std::move(*call));
}

void DBusHelperChannel::invalidate() {
  handlers_.reset();
  ownerMatch_ = BusMatch();
  lossObservation_ = runtime::StopObservation();
  ended_.requestStop();
}

void DBusHelperChannel::tellOfInvalidation() {
  if (!std::exchange(isInvalidationTold_, true)) tell(&Handlers::invalidated);
}

void DBusHelperChannel::tell(std::function<void()> Handlers::* handler) {
  boost::asio::post(executor_, [told = std::weak_ptr(handlers_), handler] {
    const auto handlers = told.lock();
    if (handlers) ((*handlers).*handler)();
  });
}

} // namespace ventolith::platform
