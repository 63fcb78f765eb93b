// A value that arrives once, and whoever waits for it.
#pragma once

#include "runtime/Event.h"

#include <memory>
#include <optional>
#include <utility>

namespace ventolith::helper {

/// Belongs to one thread. Any number of coroutines wait, before and after the value has come.
template <class Value>
class Completion {
public:
  explicit Completion(const runtime::Executor& executor) : arrival_(executor) {}

  /// The first value counts; later ones are dropped.
  void complete(Value value) {
    if (value_) return;
    value_ = std::move(value);
    arrival_.happen();
  }

  static runtime::Async<Value> valueOf(std::shared_ptr<Completion> completion) {
    co_await completion->arrival_.wait();
    co_return *completion->value_;
  }

private:
  std::optional<Value> value_;
  runtime::Event arrival_;
};

} // namespace ventolith::helper
