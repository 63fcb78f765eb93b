// The application's end of the line to the helper.
#pragma once

#include "helper/link/HelperMessage.h"
#include "runtime/Async.h"

#include <functional>
#include <memory>
#include <optional>

namespace ventolith::helper {

/// A channel is made, resumed once, used, and invalidated. What goes wrong on it is never an exception: a
/// call ends without a reply, a message that is sent is lost.
class HelperChannel {
public:
  /// Called from the channel's own surroundings, in the middle of anything: they touch no state, they post.
  struct Handlers {
    /// The helper went away, or another took its place. The channel reaches the next one by itself.
    std::function<void()> interrupted;
    /// The channel is gone for good; a new one has to be made. A channel that could not be opened says so
    /// after its first use, not before.
    std::function<void()> invalidated;
  };

  HelperChannel() = default;
  HelperChannel(const HelperChannel&) = delete;
  HelperChannel& operator=(const HelperChannel&) = delete;
  virtual ~HelperChannel() = default; // As `invalidate`.

  virtual void resume(Handlers handlers) = 0;

  /// The reply; none when the message could not be delivered, the helper refused to answer it, or it went
  /// away before the answer. Waits for as long as it takes.
  virtual runtime::Async<std::optional<HelperReply>> call(HelperMessage message) = 0;

  /// One-way: nobody learns whether it arrived.
  virtual void send(HelperMessage message) = 0;

  /// Ends every call that is under way without a reply. No handler is called from here on.
  virtual void invalidate() = 0;
};

/// Makes a channel to the one helper of this machine. Never fails: see `Handlers::invalidated`.
using HelperChannelFactory = std::function<std::unique_ptr<HelperChannel>()>;

} // namespace ventolith::helper
