// Virtual time for tests, simulations and replays: hours of watchdog time pass in milliseconds, and the
// same way every time.
#pragma once

#include "runtime/Clock.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include <map>
#include <optional>
#include <utility>

namespace ventolith::runtime {

/// Time stands still until the owner of the `io_context` advances it. Sleepers wake one at a time, in
/// the order of their deadlines and then of their arrival, and all work that is ready runs to its end
/// between two of them.
class ManualClock final : public Clock {
public:
  explicit ManualClock(boost::asio::io_context& context, Instant start = Instant(std::chrono::hours(1)))
      : context_(context), start_(start), now_(start) {}

  [[nodiscard]] Instant now() const override { return now_; }
  [[nodiscard]] WallTime wallTime() const override;
  Async<void> sleepUntil(Instant deadline, StopToken stop) override;

  /// Lets `span` pass.
  void advance(Duration span);

  /// Runs all that is ready, without letting time pass.
  void settle();

  /// Runs `work` to its end, letting as much time pass as its waits ask for, and returns its result.
  /// An exception of `work` passes through. Work that waits for something other than time never ends
  /// it: that is reported as std::logic_error.
  template <class Result>
  Result run(Async<Result> work) {
    std::optional<Result> result;
    std::exception_ptr escaped;
    bool ended = false;
    boost::asio::co_spawn(context_, std::move(work), [&](const std::exception_ptr& exception, Result value) {
      escaped = exception;
      if (!exception) result.emplace(std::move(value));
      ended = true;
    });
    passUntil(ended);
    if (escaped) std::rethrow_exception(escaped);
    return std::move(*result);
  }
  void run(Async<void> work);

  /// How many sleepers wait at present.
  [[nodiscard]] std::size_t sleeperCount() const { return sleepers_.size(); }

private:
  void wakeNext();
  void passUntil(const bool& ended);

  boost::asio::io_context& context_;
  Instant start_;
  Instant now_;
  std::uint64_t arrivals_ = 0;
  // Deadline and arrival, and the timer that the sleeper really waits on, which only a wake-up ends.
  std::map<std::pair<Instant, std::uint64_t>, boost::asio::steady_timer*> sleepers_;
};

} // namespace ventolith::runtime
