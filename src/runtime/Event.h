// Something that happens once, and those who wait for it.
#pragma once

#include "runtime/Async.h"

#include <boost/asio/experimental/channel.hpp>
#include <boost/asio/redirect_error.hpp>

namespace ventolith::runtime {

/// Waits on no timer, not even on one that never ends: the event loop looks after such a one every few
/// minutes, and an idle process is to sleep. Belongs to one thread.
class Event {
public:
  explicit Event(const Executor& executor) : channel_(executor) {}

  /// Wakes all who wait.
  void happen() { channel_.close(); }
  [[nodiscard]] bool hasHappened() const { return !channel_.is_open(); }

  /// At once if it has happened already. The event outlives the wait.
  Async<void> wait() {
    boost::system::error_code closed;
    if (!hasHappened())
      co_await channel_.async_receive(boost::asio::redirect_error(boost::asio::use_awaitable, closed));
  }

private:
  // Nothing is ever sent through it: a wait ends when it closes.
  boost::asio::experimental::channel<void(boost::system::error_code)> channel_;
};

} // namespace ventolith::runtime
