// A value that arrives once, and whoever waits for it.
#pragma once

#include "runtime/Async.h"

#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>

#include <memory>
#include <optional>
#include <utility>

namespace ventolith::helper {

/// Belongs to one thread. Any number of coroutines wait, before and after the value has come.
template <class Value>
class Completion {
public:
  explicit Completion(const runtime::Executor& executor)
      : arrival_(executor, boost::asio::steady_timer::time_point::max()) {}

  /// The first value counts; later ones are dropped.
  void complete(Value value) {
    if (value_) return;
    value_ = std::move(value);
    arrival_.cancel();
  }

  static runtime::Async<Value> valueOf(std::shared_ptr<Completion> completion) {
    boost::system::error_code ignored;
    while (!completion->value_)
      co_await completion->arrival_.async_wait(
          boost::asio::redirect_error(boost::asio::use_awaitable, ignored));
    co_return *completion->value_;
  }

private:
  std::optional<Value> value_;
  boost::asio::steady_timer arrival_; // Never expires: cancelling it wakes all who wait.
};

} // namespace ventolith::helper
