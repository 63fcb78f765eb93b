// One event loop in virtual time, as the tests of asynchronous owners need it.
#pragma once

#include "runtime/Async.h"
#include "runtime/ManualClock.h"

#include <boost/asio/io_context.hpp>

#include <utility>

namespace ventolith::support {

/// Stands before everything that the work it starts refers to.
struct VirtualTime {
  boost::asio::io_context context;
  runtime::ManualClock clock{context};

  [[nodiscard]] runtime::Executor executor() { return context.get_executor(); }

  /// Starts `work` and runs it up to its first wait.
  void start(runtime::Async<void> work) {
    runtime::start(executor(), "test", std::move(work));
    clock.settle();
  }
};

} // namespace ventolith::support
