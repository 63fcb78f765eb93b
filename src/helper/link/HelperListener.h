// The helper's end of the line.
#pragma once

#include "helper/link/HelperMessage.h"
#include "runtime/Async.h"

#include <functional>
#include <optional>
#include <string>
#include <variant>

namespace ventolith::helper {

/// A client's connection. Its name stands for it alone, for as long as the listener lives.
struct HelperCaller {
  std::string name;
  /// Of this one call: whether it waits while a person is asked for permission.
  bool waitsForAPerson = true;

  bool operator==(const HelperCaller& other) const { return name == other.name; }
  auto operator<=>(const HelperCaller& other) const { return name <=> other.name; }
};

/// Why a message got no reply.
struct Refusal {
  enum class Reason { notAuthorized, tooManyCalls, bodyTooLarge, shuttingDown };
  Reason reason = Reason::notAuthorized;
  std::string text; // For the caller.
  bool operator==(const Refusal&) const = default;
};

/// None: there is nothing to say, to a Heartbeat and to a caller that is gone.
using HelperAnswer = std::optional<std::variant<HelperReply, Refusal>>;

/// What a listener hands each message to.
class HelperService {
public:
  HelperService() = default;
  HelperService(const HelperService&) = delete;
  HelperService& operator=(const HelperService&) = delete;
  virtual ~HelperService() = default;

  /// Called in the order in which a caller's messages arrived, without waiting for the answers to the ones
  /// before.
  virtual runtime::Async<HelperAnswer> answer(HelperCaller caller, HelperMessage message) = 0;

  /// A caller that was watched went away.
  virtual void callerIsGone(const HelperCaller& caller) = 0;
};

class HelperListener {
public:
  HelperListener() = default;
  HelperListener(const HelperListener&) = delete;
  HelperListener& operator=(const HelperListener&) = delete;
  virtual ~HelperListener() = default; // As `invalidate`.

  /// Serves from here on; messages that came before have waited. `lost` is called, with the reason, when
  /// nobody can reach this listener any more. `service` outlives the listener.
  virtual void resume(HelperService& service, std::function<void(std::string reason)> lost) = 0;

  /// From here on the service is told when the caller goes away, until `unwatch`. A caller that is gone
  /// already may go unnoticed: asking for its permission tells.
  virtual void watch(const HelperCaller& caller) = 0;
  virtual void unwatch(const HelperCaller& caller) = 0;

  /// Stops serving: what is under way gets no answer any more. Answers given before are sent.
  virtual void invalidate() = 0;
};

} // namespace ventolith::helper
