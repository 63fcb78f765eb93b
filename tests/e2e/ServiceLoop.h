// The executor of what is under test, in virtual time, while real processes and a real bus answer it.
#pragma once

#include "e2e/Patience.h"
#include "runtime/Async.h"
#include "runtime/ManualClock.h"

#include <boost/asio/io_context.hpp>

#include <chrono>
#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace ventolith::e2e {

/// Stands before everything that refers to its clock or its executor.
class ServiceLoop {
public:
  /// What an operation that was begun has come to; none as long as it runs.
  template <class Result>
  using Pending = std::shared_ptr<std::optional<Result>>;

  [[nodiscard]] runtime::Executor executor() { return context_.get_executor(); }
  [[nodiscard]] runtime::ManualClock& clock() { return clock_; }

  /// Runs all that becomes ready until `holds` says yes, without letting virtual time pass. Fails with
  /// std::runtime_error, which names `what`, once the patience of a test is over.
  void until(const std::string& what, const std::function<bool()>& holds) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!holds()) {
      if (std::chrono::steady_clock::now() > end) throw std::runtime_error("waited in vain: " + what);
      runFor(std::chrono::milliseconds(5));
    }
  }

  /// Runs all that becomes ready in `span` of real time: for what is not to happen.
  void runFor(std::chrono::milliseconds span) {
    const auto end = std::chrono::steady_clock::now() + span;
    context_.restart();
    handled_ += context_.run_until(end);
    std::this_thread::sleep_until(end);
  }

  /// Runs until nothing wakes this loop any more, once what is on its way has come.
  void untilAsleep() {
    until("a loop that sleeps", [this] {
      const std::size_t before = handled_;
      runFor(std::chrono::milliseconds(200));
      return handled_ == before;
    });
  }

  /// How often something woke this loop in `runFor` and `until`.
  [[nodiscard]] std::size_t handledCount() const { return handled_; }

  /// Runs `work` up to its first wait.
  template <class Result>
  Pending<Result> begin(runtime::Async<Result> work) {
    auto pending = std::make_shared<std::optional<Result>>();
    boost::asio::co_spawn(context_, std::move(work),
                          [pending](const std::exception_ptr& exception, Result result) {
                            if (exception) std::rethrow_exception(exception);
                            pending->emplace(std::move(result));
                          });
    clock_.settle();
    return pending;
  }

  /// Waits for the result of what was begun.
  template <class Result>
  Result end(const Pending<Result>& pending) {
    until("the result", [&] { return pending->has_value(); });
    return **pending;
  }

  template <class Result>
  Result await(runtime::Async<Result> work) {
    return end(begin(std::move(work)));
  }

private:
  boost::asio::io_context context_;
  runtime::ManualClock clock_{context_};
  std::size_t handled_ = 0;
};

} // namespace ventolith::e2e
