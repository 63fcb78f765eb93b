#include "platform/linux/service/BusConnection.h"

#include "runtime/Event.h"

#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/this_coro.hpp>
#include <fmt/format.h>
#include <sdbus-c++/IProxy.h>
#include <systemd/sd-bus.h>

#include <chrono>
#include <cstdint>
#include <cstring>
#include <memory>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace ventolith::platform {

namespace asio = boost::asio;
using asio::posix::descriptor_base;

namespace {

/// So many messages are handled before other work of the thread has its turn: a client that sends without end
/// delays the engine by no more than these.
constexpr int messagesInARow = 16;
constexpr auto flushLimit = std::chrono::seconds(1);

/// The way to what the binding keeps to its own family. Never made.
struct Access : sdbus::Message {
  static sdbus::internal::ISdBus* binding(const sdbus::Message& message) {
    return message.*(&Access::sdbus_);
  }
};

/// A message of sd-bus as one of the binding's.
template <class Kind>
class Wrapped : public Kind {
public:
  Wrapped(sd_bus_message* message, sdbus::internal::ISdBus* binding) : Kind(message, binding) {}
};

class WrappedCall : public sdbus::MethodCall {
public:
  WrappedCall(sd_bus_message* message, sdbus::internal::ISdBus* binding)
      : MethodCall(message, binding, sdbus::adopt_message) {}
};

struct SlotEnd {
  void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};
using Slot = std::unique_ptr<sd_bus_slot, SlotEnd>;

constexpr std::chrono::seconds longestWelcome{1};

struct BusEnd {
  void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};
using TrialBus = std::unique_ptr<sd_bus, BusEnd>;

TrialBus startTrial(const std::optional<std::string>& address) {
  sd_bus* bus = nullptr;
  if (!address) return TrialBus(sd_bus_open_system(&bus) >= 0 ? bus : nullptr);
  if (sd_bus_new(&bus) < 0) return nullptr;
  TrialBus trial(bus);
  constexpr int saysHello = 1;
  const bool isStarted = sd_bus_set_address(bus, address->c_str()) >= 0 &&
                         sd_bus_set_bus_client(bus, saysHello) >= 0 && sd_bus_start(bus) >= 0;
  return isStarted ? std::move(trial) : nullptr;
}

/// The binding waits for a bus that takes connections and says nothing, minutes long; and it forgets a
/// connection that it cannot open, and leaks it. So each bus is tried first.
bool isWelcoming(const std::optional<std::string>& address) {
  const TrialBus trial = startTrial(address);
  const auto deadline = std::chrono::steady_clock::now() + longestWelcome;
  while (trial) {
    if (sd_bus_is_ready(trial.get()) > 0) return true;
    const int processed = sd_bus_process(trial.get(), nullptr);
    if (processed < 0) return false;
    if (processed > 0) continue;
    const auto left =
        std::chrono::duration_cast<std::chrono::microseconds>(deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) return false;
    if (sd_bus_wait(trial.get(), static_cast<std::uint64_t>(left.count())) < 0) return false;
  }
  return false;
}

std::unique_ptr<sdbus::IConnection> connectionTo(const std::optional<std::string>& address) {
  if (!isWelcoming(address)) {
    const std::string where = address ? "at " + *address : "on the system's bus";
    throw sdbus::Error(SD_BUS_ERROR_NO_SERVER, "Nobody listens " + where);
  }
  return address ? sdbus::createSessionBusConnectionWithAddress(*address)
                 : sdbus::createSystemBusConnection();
}

BusFailure failureOf(int error) {
  return {"org.freedesktop.DBus.Error.Failed", std::strerror(error)};
}

BusFailure failureOf(sd_bus_message* reply) {
  const sd_bus_error* error = sd_bus_message_get_error(reply);
  const auto text = [](const char* given) { return std::string(given == nullptr ? "" : given); };
  return {text(error->name), text(error->message)};
}

} // namespace

class BusConnection::Key {};

struct BusConnection::Match : std::enable_shared_from_this<BusConnection::Match> {
  Match(std::weak_ptr<BusConnection> heard, sdbus::internal::ISdBus* used, SignalHandler called)
      : connection(std::move(heard)), binding(used), handler(std::move(called)) {}
  Match(const Match&) = delete;
  Match& operator=(const Match&) = delete;
  ~Match() {
    slot.reset();
    if (const auto living = connection.lock()) living->arm(); // The bus is told.
  }

  static int heard(sd_bus_message* message, void* data, sd_bus_error*) {
    const auto self = static_cast<Match*>(data)->shared_from_this(); // The handler may end the match.
    Wrapped<sdbus::PlainMessage> signal(message, self->binding);
    self->handler(signal);
    return 0;
  }

  /// A match that the bus refuses hears nothing; without this function sd-bus would drop the connection.
  static int installed(sd_bus_message*, void*, sd_bus_error*) { return 0; }

  std::weak_ptr<BusConnection> connection;
  sdbus::internal::ISdBus* binding;
  SignalHandler handler;
  Slot slot;
};

struct BusConnection::PendingCall {
  static int answered(sd_bus_message* message, void* data, sd_bus_error*) {
    auto& self = *static_cast<PendingCall*>(data);
    if (sd_bus_message_is_method_error(message, nullptr) > 0) {
      self.result.emplace(failureOf(message));
    } else {
      self.result.emplace(
          BusReply(self.connection, Wrapped<sdbus::MethodReply>(message, self.connection->binding_)));
    }
    self.ended.happen();
    return 0;
  }

  std::shared_ptr<BusConnection> connection;
  runtime::Event ended;
  std::optional<BusResult<BusReply>> result;
  Slot slot;
};

BusResult<std::shared_ptr<BusConnection>> BusConnection::open(const runtime::Executor& executor,
                                                              const std::optional<std::string>& address) {
  try {
    auto opened = std::make_shared<BusConnection>(Key(), executor, connectionTo(address));
    opened->arm();
    return opened;
  } catch (const sdbus::Error& error) {
    return BusFailure{error.getName(), error.getMessage()};
  } catch (const boost::system::system_error& error) { // No descriptor is left to watch it by.
    return BusFailure{"org.freedesktop.DBus.Error.Failed", error.what()};
  }
}

BusConnection::BusConnection(Key /*key*/, const runtime::Executor& executor,
                             std::unique_ptr<sdbus::IConnection> connection)
    : executor_(executor),
      connection_(std::move(connection)),
      uniqueName_(connection_->getUniqueName()),
      descriptor_(executor) {
  // A call ends when its reply comes or the bus is lost. It follows that sd-bus never asks for a timer.
  connection_->setMethodCallTimeout(UINT64_MAX);
  const auto bus = sdbus::createProxy(*connection_, "org.freedesktop.DBus", "/org/freedesktop/DBus");
  const sdbus::MethodCall probe = bus->createMethodCall("org.freedesktop.DBus.Peer", "Ping");
  binding_ = Access::binding(probe);
  raw_ = sd_bus_message_get_bus(rawOf(probe));
  // sd-bus closes its socket by itself. Asio would then have to forget a number that may name something else
  // by now, so it is given one of its own.
  const int descriptor = ::dup(sd_bus_get_fd(raw_));
  if (descriptor < 0) throw sdbus::createError(errno, "Failed to watch the bus");
  descriptor_.assign(descriptor);
}

BusConnection::~BusConnection() {
  closeDescriptor();
  sd_bus_close(raw_); // The binding would wait, without end, for what could not be sent.
}

void BusConnection::closeDescriptor() {
  if (!descriptor_.is_open()) return;
  // Taken out of the reactor before it is closed: Asio's own close relies on this being the socket's last
  // number.
  ::close(descriptor_.release());
}

sdbus::MethodCall BusConnection::newCall(const BusMember& member) const {
  sd_bus_message* message = nullptr;
  const int outcome =
      sd_bus_message_new_method_call(raw_, &message, member.destination.c_str(), member.path.c_str(),
                                     member.interface.c_str(), member.name.c_str());
  if (outcome < 0) throw sdbus::createError(-outcome, "Failed to create a call of " + member.name);
  return WrappedCall(message, binding_);
}

runtime::Async<BusResult<BusReply>> BusConnection::call(sdbus::MethodCall call, runtime::StopToken stop) {
  return callOver(shared_from_this(), std::move(call), std::move(stop));
}

runtime::Async<BusResult<BusReply>> BusConnection::callOver(std::shared_ptr<BusConnection> self,
                                                            sdbus::MethodCall call, runtime::StopToken stop) {
  PendingCall pending{self, runtime::Event(co_await asio::this_coro::executor), std::nullopt, {}};
  sd_bus_slot* slot = nullptr;
  const int sent =
      sd_bus_call_async(self->raw_, &slot, rawOf(call), &PendingCall::answered, &pending, UINT64_MAX);
  if (sent < 0) co_return failureOf(-sent);
  pending.slot.reset(slot);
  self->arm();

  const auto wake = [&pending] { pending.ended.happen(); };
  const auto stopObservation = stop.onStop(wake);
  const auto lossObservation = self->lost().onStop(wake);
  if (!stop.stopRequested() && !self->isLost()) co_await pending.ended.wait();
  if (pending.result) co_return std::move(*pending.result);
  if (self->isLost()) co_return BusFailure{"org.freedesktop.DBus.Error.Disconnected", self->lossReason_};
  co_return BusFailure{"org.freedesktop.DBus.Error.NoReply", "The call was given up."};
}

bool BusConnection::send(sdbus::MethodCall call) {
  call.dontExpectReply();
  return send(static_cast<const sdbus::Message&>(call));
}

bool BusConnection::send(const sdbus::Message& message) {
  const bool isSent = sd_bus_send(raw_, rawOf(message), nullptr) >= 0;
  arm();
  return isSent;
}

BusMatch BusConnection::match(const std::string& rule, SignalHandler handler) {
  auto state = std::make_shared<Match>(weak_from_this(), binding_, std::move(handler));
  sd_bus_slot* slot = nullptr;
  sd_bus_add_match_async(raw_, &slot, rule.c_str(), &Match::heard, &Match::installed, state.get());
  state->slot.reset(slot);
  arm();
  return BusMatch(std::move(state));
}

BusMatch BusConnection::matchOwner(const std::string& name, OwnerHandler handler) {
  return match(fmt::format("type='signal',sender='org.freedesktop.DBus',path='/org/freedesktop/DBus',"
                           "interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='{}'",
                           name),
               [handler = std::move(handler)](sdbus::Message& signal) {
                 std::string changed;
                 std::string before;
                 std::string after;
                 if (readBody(signal, changed, before, after)) handler(after);
               });
}

void BusConnection::pause() {
  isPaused_ = true;
}

void BusConnection::unpause() {
  isPaused_ = false;
  arm();
}

void BusConnection::flush() {
  const auto deadline = std::chrono::steady_clock::now() + flushLimit;
  while (!isPaused_ && !isProcessing_ && hasToSend()) {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    pollfd socket{descriptor_.native_handle(), POLLOUT, 0};
    if (left.count() <= 0 || ::poll(&socket, 1, static_cast<int>(left.count())) <= 0) return;
    process();
  }
}

bool BusConnection::hasToSend() const {
  const int events = isLost() ? 0 : sd_bus_get_events(raw_);
  return events > 0 && (events & POLLOUT) != 0;
}

void BusConnection::process() {
  if (isPaused_ || isProcessing_ || isLost()) return;
  const auto self = shared_from_this(); // A handler may let go of the last owner.
  isProcessing_ = true;
  processSome();
  isProcessing_ = false;
  arm();
}

void BusConnection::processSome() {
  for (int message = 0; message < messagesInARow && !isPaused_; ++message) {
    const int outcome = sd_bus_process(raw_, nullptr);
    if (outcome < 0) return lose(-outcome);
    if (outcome == 0) return;
    // While nobody takes what is to be sent, nothing is read that would add to it.
    if (hasToSend()) return;
  }
  processSoon();
}

void BusConnection::processSoon() {
  if (std::exchange(isProcessedSoon_, true)) return;
  asio::post(executor_, [weak = weak_from_this()] {
    const auto self = weak.lock();
    if (!self) return;
    self->isProcessedSoon_ = false;
    self->process();
  });
}

void BusConnection::arm() {
  if (isPaused_ || isProcessing_ || isLost()) return;
  if (hasToSend()) return await(descriptor_base::wait_write, isWritingAwaited_);
  std::uint64_t timeout = UINT64_MAX;
  // Messages that came in while sd-bus waited for something else, or a loss that a send has noticed.
  if (sd_bus_get_timeout(raw_, &timeout) < 0 || timeout == 0) processSoon();
  await(descriptor_base::wait_read, isReadingAwaited_);
}

void BusConnection::await(descriptor_base::wait_type readiness, bool& isAwaited) {
  if (std::exchange(isAwaited, true)) return;
  descriptor_.async_wait(
      readiness, [weak = weak_from_this(), readiness, &isAwaited](const boost::system::error_code& error) {
        const auto self = weak.lock();
        if (!self) return;
        isAwaited = false;
        if (error) return;
        // Something to read does not help while there is something to send.
        if (readiness == descriptor_base::wait_read && self->hasToSend()) return self->arm();
        self->process();
      });
}

void BusConnection::lose(int error) {
  if (isLost()) return;
  lossReason_ = fmt::format("The message bus is gone: {}.", std::strerror(error));
  closeDescriptor();
  sd_bus_close(raw_);
  lost_.requestStop();
}

BusResult<std::shared_ptr<BusConnection>> Bus::connection() {
  if (connection_ && !connection_->isLost()) return connection_;
  auto opened = BusConnection::open(executor_, address_);
  if (opened) connection_ = opened.value();
  return opened;
}

} // namespace ventolith::platform
