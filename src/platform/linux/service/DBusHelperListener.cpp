#include "platform/linux/service/DBusHelperListener.h"

#include "core/Visitor.h"
#include "platform/linux/service/DBusHelperProtocol.h"
#include "platform/linux/service/SystemServices.h"

#include <boost/asio/post.hpp>
#include <fmt/format.h>
#include <systemd/sd-bus-protocol.h>

#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace ventolith::platform {

using core::Visitor;
using helper::HelperAnswer;
using helper::HelperCaller;
using helper::HelperMessage;
using helper::Refusal;
namespace messages = helper::messages;
namespace replies = helper::replies;

namespace {

/// Of a plan's bytes no more than these are copied: the service refuses more than 1 MiB by their number.
constexpr std::size_t copiedBytes = (std::size_t{1} << 20) + 1;

const char* errorName(Refusal::Reason reason) {
  switch (reason) {
  case Refusal::Reason::notAuthorized: return SD_BUS_ERROR_ACCESS_DENIED;
  case Refusal::Reason::tooManyCalls: return SD_BUS_ERROR_LIMITS_EXCEEDED;
  case Refusal::Reason::bodyTooLarge: return SD_BUS_ERROR_INVALID_ARGS;
  case Refusal::Reason::shuttingDown: return SD_BUS_ERROR_FAILED;
  }
  return SD_BUS_ERROR_FAILED;
}

/// The reply's body; false when it is longer than the bus takes.
bool append(sdbus::MethodReply& reply, const helper::HelperReply& content) {
  return std::visit(
      Visitor{[](const replies::Done&) { return true; },
              [&](const replies::Version& version) { return bool(reply << version.identifier); },
              [&](const replies::Code& code) { return bool(reply << code.value); },
              [&](const replies::State& state) { return appendBytes(reply, state.json); }},
      content);
}

sdbus::MethodReply replyTo(const sdbus::MethodCall& call,
                           const std::variant<helper::HelperReply, Refusal>& answer) {
  if (const auto* refusal = std::get_if<Refusal>(&answer)) {
    return call.createErrorReply(sdbus::Error(errorName(refusal->reason), refusal->text));
  }
  sdbus::MethodReply reply = call.createReply();
  if (append(reply, std::get<helper::HelperReply>(answer))) return reply;
  return call.createErrorReply(
      sdbus::Error(SD_BUS_ERROR_LIMITS_EXCEEDED, "The answer is too long for the bus."));
}

} // namespace

/// A message of the protocol as the bus's introspection shows it.
struct DBusHelperListener::Method {
  std::string name;
  std::string inputSignature;
  std::vector<std::string> inputNames;
  std::string outputSignature;
  std::vector<std::string> outputNames;
  std::function<std::optional<HelperMessage>(sdbus::MethodCall& call)> read;
};

/// What answers that are under way come back to.
struct DBusHelperListener::State : std::enable_shared_from_this<DBusHelperListener::State> {
  State(runtime::Executor onExecutor, std::shared_ptr<BusConnection> over)
      : executor(std::move(onExecutor)), connection(std::move(over)) {}

  void take(const sdbus::MethodCall& call, HelperMessage message);
  static runtime::Async<void> answer(std::weak_ptr<State> listener, std::uint64_t number, HelperCaller caller,
                                     HelperMessage message, helper::HelperService& service);
  enum class Kind { heartbeat, other };
  void finish(std::uint64_t number, Kind kind, const HelperAnswer& answer);
  void refuseAll();
  void reply(const sdbus::MethodCall& call, const std::variant<helper::HelperReply, Refusal>& answer);
  void callerIsGone(const HelperCaller& caller);

  runtime::Executor executor;
  std::shared_ptr<BusConnection> connection;
  helper::HelperService* service = nullptr; // Before `resume` nothing comes.
  std::map<HelperCaller, BusMatch> watched;
  std::uint64_t calls = 0;
  std::map<std::uint64_t, sdbus::MethodCall> unanswered; // Goes before the connection.
};

void DBusHelperListener::State::take(const sdbus::MethodCall& call, HelperMessage message) {
  const std::uint64_t number = ++calls;
  unanswered.emplace(number, call);
  HelperCaller caller{call.getSender(), allowsInteractiveAuthorization(call)};
  boost::asio::post(executor, [listener = weak_from_this(), number, caller = std::move(caller),
                               message = std::move(message)]() mutable {
    const auto self = listener.lock();
    if (!self) return;
    runtime::start(
        self->executor, "a message's answer",
        answer(std::move(listener), number, std::move(caller), std::move(message), *self->service));
  });
}

runtime::Async<void> DBusHelperListener::State::answer(std::weak_ptr<State> listener, std::uint64_t number,
                                                       HelperCaller caller, HelperMessage message,
                                                       helper::HelperService& service) {
  const Kind kind = std::holds_alternative<messages::Heartbeat>(message) ? Kind::heartbeat : Kind::other;
  const HelperAnswer answer = co_await service.answer(std::move(caller), std::move(message));
  if (const auto self = listener.lock()) self->finish(number, kind, answer);
}

void DBusHelperListener::State::finish(std::uint64_t number, Kind kind, const HelperAnswer& answer) {
  const auto call = unanswered.extract(number);
  if (call.empty()) return;
  if (answer) return reply(call.mapped(), *answer);
  // A caller who waits for the end of a heartbeat shall not wait for ever.
  if (kind == Kind::heartbeat) reply(call.mapped(), replies::Done());
}

void DBusHelperListener::State::refuseAll() {
  for (const auto& [number, call] : std::exchange(unanswered, {})) {
    reply(call, Refusal{Refusal::Reason::shuttingDown, "The helper stops serving."});
  }
}

void DBusHelperListener::State::reply(const sdbus::MethodCall& call,
                                      const std::variant<helper::HelperReply, Refusal>& answer) {
  if (call.doesntExpectReply()) return;
  try {
    if (connection->send(replyTo(call, answer))) return;
    // Also for an answer of another kind than the protocol's, the caller shall not wait for ever.
    connection->send(call.createErrorReply(sdbus::Error(SD_BUS_ERROR_FAILED, "The answer cannot be sent.")));
  } catch (const sdbus::Error&) {
    // The bus is going, which tells the caller.
  }
}

void DBusHelperListener::State::callerIsGone(const HelperCaller& caller) {
  boost::asio::post(executor, [listener = weak_from_this(), caller] {
    const auto self = listener.lock();
    if (self && self->watched.erase(caller) > 0) self->service->callerIsGone(caller);
  });
}

DBusHelperListener::DBusHelperListener(runtime::Executor executor, std::shared_ptr<BusConnection> connection)
    : executor_(std::move(executor)),
      connection_(std::move(connection)),
      state_(std::make_shared<State>(executor_, connection_)) {
  claimName();
  connection_->pause();
  exportObject();
}

DBusHelperListener::~DBusHelperListener() {
  invalidate();
}

void DBusHelperListener::claimName() {
  try {
    connection_->sdbus().requestName(protocol::busName); // Does not queue, and is not replaced.
  } catch (const sdbus::Error& error) {
    const bool isTaken =
        error.getName() == SD_BUS_ERROR_FILE_EXISTS || error.getName() == "System.Error.EALREADY";
    if (isTaken) throw AnotherHelperError("Another helper serves this machine already.");
    throw ServiceError(
        fmt::format("The bus does not let this process be the helper: {}.", error.getMessage()));
  }
}

void DBusHelperListener::exportObject() {
  object_ = sdbus::createObject(connection_->sdbus(), protocol::objectPath);
  const auto plain = [](HelperMessage message) {
    return [message = std::move(message)](sdbus::MethodCall&) -> std::optional<HelperMessage> {
      return message;
    };
  };
  exportMethod({"HelperVersion", "", {}, "s", {"identifier"}, plain(messages::HelperVersion())});
  exportMethod({"ShutdownForUpgrade", "", {}, "", {}, plain(messages::ShutdownForUpgrade())});
  exportMethod({"SetManualRPM", "xx", {"fan", "rpm"}, "x", {"result"}, [](sdbus::MethodCall& call) {
                  messages::SetManualRPM command;
                  return readBody(call, command.fan, command.rpm) ? std::optional<HelperMessage>(command)
                                                                  : std::nullopt;
                }});
  exportMethod({"SetPercent", "xd", {"fan", "percent"}, "x", {"result"}, [](sdbus::MethodCall& call) {
                  messages::SetPercent command;
                  return readBody(call, command.fan, command.percent) ? std::optional<HelperMessage>(command)
                                                                      : std::nullopt;
                }});
  exportMethod({"FullBlast", "", {}, "x", {"result"}, plain(messages::FullBlast())});
  exportMethod({"Automatic", "", {}, "x", {"result"}, plain(messages::Automatic())});
  exportMethod({"ApplyConfig", "ay", {"plan"}, "x", {"result"}, [](sdbus::MethodCall& call) {
                  auto plan = readBytes(call, copiedBytes);
                  return plan ? std::optional<HelperMessage>(messages::ApplyConfig{std::move(*plan)})
                              : std::nullopt;
                }});
  exportMethod({"RestoreAuto", "", {}, "", {}, plain(messages::RestoreAuto())});
  exportMethod({"Heartbeat", "", {}, "", {}, plain(messages::Heartbeat())});
  exportMethod({"ReadState", "", {}, "ay", {"state"}, plain(messages::ReadState())});
  object_->finishRegistration();
}

void DBusHelperListener::exportMethod(Method method) {
  sdbus::Flags flags;
  if (method.name == helper::nameOf(messages::Heartbeat())) flags.set(sdbus::Flags::METHOD_NO_REPLY);
  const auto received = [state = state_.get(), read = std::move(method.read)](sdbus::MethodCall call) {
    auto message = read(call);
    if (!message) throw sdbus::Error(SD_BUS_ERROR_INVALID_ARGS, "The body cannot be read.");
    state->take(call, std::move(*message));
  };
  object_->registerMethod(protocol::interfaceName, std::move(method.name), std::move(method.inputSignature),
                          method.inputNames, std::move(method.outputSignature), method.outputNames, received,
                          flags);
}

void DBusHelperListener::resume(helper::HelperService& service,
                                std::function<void(std::string reason)> lost) {
  state_->service = &service;
  lossObservation_ =
      connection_->lost().onStop([executor = executor_, state = std::weak_ptr(state_), lost = std::move(lost),
                                  connection = std::weak_ptr(connection_)] {
        boost::asio::post(executor, [state, lost, reason = connection.lock()->lossReason()] {
          if (!state.expired()) lost(reason);
        });
      });
  connection_->unpause();
}

void DBusHelperListener::watch(const HelperCaller& caller) {
  if (!state_ || state_->watched.count(caller) > 0) return;
  state_->watched.emplace(
      caller, connection_->matchOwner(caller.name, [state = state_.get(), caller](const std::string& owner) {
        if (owner.empty()) state->callerIsGone(caller);
      }));
}

void DBusHelperListener::unwatch(const HelperCaller& caller) {
  if (state_) state_->watched.erase(caller);
}

void DBusHelperListener::invalidate() {
  if (!state_) return;
  lossObservation_ = runtime::StopObservation();
  object_.reset();
  state_->refuseAll();
  state_.reset();
  auto release = connection_->newCall(
      {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ReleaseName"});
  release << protocol::busName;
  connection_->send(std::move(release));
  connection_->unpause();
  connection_->flush();
}

} // namespace ventolith::platform
