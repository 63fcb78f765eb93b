// An unbounded asynchronous stream with one producer and one reader.
#pragma once

#include "runtime/Async.h"
#include "runtime/Event.h"
#include "runtime/StopToken.h"

#include <boost/asio/this_coro.hpp>

#include <deque>
#include <optional>
#include <utility>

namespace ventolith::runtime {

/// Buffers without limit and drops nothing: a reader that starts late receives every value since the
/// stream was made, in order. Whoever makes a stream for long sees to it that somebody reads it.
///
/// Belongs to one thread. One reader at a time.
template <class Value>
class StateStream {
public:
  void yield(Value value) {
    values_.push_back(std::move(value));
    if (waiter_ != nullptr) waiter_->happen();
  }

  /// The next value; none once `stop` is requested and the buffer is empty.
  Async<std::optional<Value>> next(StopToken stop) {
    while (values_.empty() && !stop.stopRequested()) {
      Event waiter(co_await boost::asio::this_coro::executor);
      waiter_ = &waiter;
      const auto observation = stop.onStop([&waiter] { waiter.happen(); });
      co_await waiter.wait();
      waiter_ = nullptr;
    }
    if (values_.empty()) co_return std::nullopt;
    Value value = std::move(values_.front());
    values_.pop_front();
    co_return value;
  }

  /// The next value if one is there already.
  std::optional<Value> tryNext() {
    if (values_.empty()) return std::nullopt;
    Value value = std::move(values_.front());
    values_.pop_front();
    return value;
  }

private:
  std::deque<Value> values_;
  Event* waiter_ = nullptr; // Set while the reader waits.
};

} // namespace ventolith::runtime
