// A connection to the message bus that lives in an Asio executor: no thread of its own, no wake-up when
// nothing arrives, and nothing that waits for the bus once it is open.
#pragma once

#include "platform/linux/service/BusMessage.h"
#include "runtime/Async.h"
#include "runtime/StopToken.h"

#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/system/result.hpp>
#include <sdbus-c++/IConnection.h>

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

struct sd_bus;
struct sd_bus_slot;

namespace ventolith::platform {

class BusConnection;

/// Why a call has no reply, by the bus's names ("org.freedesktop.DBus.Error.ServiceUnknown").
struct BusFailure {
  std::string name;
  std::string message; // For people.
  [[nodiscard]] std::string description() const { return message + " (" + name + ")"; }
};

[[noreturn]] inline void throw_exception_from_error(const BusFailure& failure,
                                                    const boost::source_location&) {
  throw std::logic_error("a result of the bus was used that is none: " + failure.description());
}

template <class Value>
using BusResult = boost::system::result<Value, BusFailure>;

/// A reply, and the connection that its message must not outlive.
class BusReply {
public:
  /// Holds none: only to be assigned to.
  BusReply() = default;
  BusReply(std::shared_ptr<const BusConnection> connection, sdbus::MethodReply message)
      : held_(std::make_unique<Held>(Held{std::move(connection), std::move(message)})) {}

  [[nodiscard]] sdbus::MethodReply& message() { return held_->message; }

  /// Reads the whole body; false when it is not made of exactly `values`.
  template <class... Values>
  [[nodiscard]] bool read(Values&... values) {
    return readBody(held_->message, values...);
  }

private:
  struct Held {
    std::shared_ptr<const BusConnection> connection;
    sdbus::MethodReply message; // Goes first.
  };
  std::unique_ptr<Held> held_;
};

/// Where a call goes.
struct BusMember {
  std::string destination; // A name: "org.freedesktop.DBus", ":1.42".
  std::string path;
  std::string interface;
  std::string name;
};

/// Ends the match that it stands for when it goes. May outlive the connection, and may go inside its own
/// handler.
class BusMatch {
public:
  BusMatch() = default;
  explicit BusMatch(std::shared_ptr<void> state) : state_(std::move(state)) {}
  BusMatch(BusMatch&&) noexcept = default;
  BusMatch& operator=(BusMatch&&) noexcept = default;
  BusMatch(const BusMatch&) = delete;
  BusMatch& operator=(const BusMatch&) = delete;
  ~BusMatch() = default;

private:
  std::shared_ptr<void> state_;
};

/// Belongs to the thread of its executor. Messages that were made with it must go before it; coroutines that
/// hold one hold the connection too, declared before it.
class BusConnection : public std::enable_shared_from_this<BusConnection> {
public:
  /// Called inside the processing of what arrived: it may call and send, but throws nothing.
  using SignalHandler = std::function<void(sdbus::Message& signal)>;
  /// `owner` is the unique name that owns it now; empty when nobody does.
  using OwnerHandler = std::function<void(const std::string& owner)>;

  /// Connects to the bus at `address`, or to the system's, and waits for its welcome.
  [[nodiscard]] static BusResult<std::shared_ptr<BusConnection>>
  open(const runtime::Executor& executor, const std::optional<std::string>& address);
  class Key; // Only `open` makes connections.
  BusConnection(Key key, const runtime::Executor& executor, std::unique_ptr<sdbus::IConnection> connection);
  BusConnection(const BusConnection&) = delete;
  BusConnection& operator=(const BusConnection&) = delete;
  ~BusConnection();

  [[nodiscard]] sdbus::IConnection& sdbus() { return *connection_; }
  [[nodiscard]] const std::string& uniqueName() const { return uniqueName_; }

  /// A call to be filled (`call << name << 3`) and passed to `call` or `send`. An ill-formed name or path is
  /// a programming error: sdbus::Error.
  [[nodiscard]] sdbus::MethodCall newCall(const BusMember& member) const;

  /// Waits for the reply for as long as it takes, and fails at once when the bus is lost or `stop` is
  /// requested. Every error reply is a failure; nothing is thrown.
  [[nodiscard]] runtime::Async<BusResult<BusReply>> call(sdbus::MethodCall call,
                                                         runtime::StopToken stop = {});

  /// Sends a call whose reply nobody wants, a reply, or a signal. What cannot be sent at once waits in
  /// memory. False when the message is not as it was announced to be, and when the bus is gone.
  bool send(sdbus::MethodCall call);
  bool send(const sdbus::Message& message);

  /// Hears the messages that the rule ("type='signal',sender=...") tells, from the moment that the bus has
  /// it, which is before it handles what is sent after this.
  [[nodiscard]] BusMatch match(const std::string& rule, SignalHandler handler);

  /// Hears when the owner of `name` changes, and of no other name, so that other clients wake nobody.
  [[nodiscard]] BusMatch matchOwner(const std::string& name, OwnerHandler handler);

  /// Nothing that arrives is handled until `unpause`; it waits where it costs this process no memory.
  void pause();
  void unpause();

  /// Waits until what waits in memory is sent, for a second at most. Not inside a handler.
  void flush();

  /// Requested once, when the bus is gone. Observers are called in the middle of anything.
  [[nodiscard]] runtime::StopToken lost() const { return lost_.token(); }
  [[nodiscard]] bool isLost() const { return lost_.stopRequested(); }
  /// For people; empty while the bus is there.
  [[nodiscard]] const std::string& lossReason() const { return lossReason_; }

private:
  struct Match;
  struct PendingCall;

  static runtime::Async<BusResult<BusReply>> callOver(std::shared_ptr<BusConnection> self,
                                                      sdbus::MethodCall call, runtime::StopToken stop);
  void process();
  void processSome();
  void processSoon();
  void arm();
  void await(boost::asio::posix::descriptor_base::wait_type readiness, bool& isAwaited);
  [[nodiscard]] bool hasToSend() const;
  void lose(int error);
  void closeDescriptor();

  runtime::Executor executor_;
  std::unique_ptr<sdbus::IConnection> connection_;
  sdbus::internal::ISdBus* binding_ = nullptr; // What the binding's messages are made with.
  sd_bus* raw_ = nullptr;                      // Owned by `connection_`.
  std::string uniqueName_;
  boost::asio::posix::stream_descriptor descriptor_; // Another number for sd-bus's own socket.
  bool isPaused_ = false;
  bool isProcessing_ = false;
  bool isReadingAwaited_ = false;
  bool isWritingAwaited_ = false;
  bool isProcessedSoon_ = false;
  runtime::StopSource lost_;
  std::string lossReason_;
};

/// The one bus of a process: hands out its connection, and opens a new one when that was lost.
class Bus {
public:
  /// `address` as in `BusConnection::open`.
  Bus(runtime::Executor executor, std::optional<std::string> address)
      : executor_(std::move(executor)), address_(std::move(address)) {}

  [[nodiscard]] BusResult<std::shared_ptr<BusConnection>> connection();

private:
  runtime::Executor executor_;
  std::optional<std::string> address_;
  std::shared_ptr<BusConnection> connection_;
};

} // namespace ventolith::platform
