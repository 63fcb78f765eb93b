// The result type of every asynchronous operation, and the two ways to start one.
#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <cstdio>
#include <exception>
#include <string>
#include <utility>

namespace ventolith::runtime {

template <class Result>
using Async = boost::asio::awaitable<Result>;
using Executor = boost::asio::any_io_executor;

/// A single-threaded owner's private executor. `co_await serial.run(impl())` runs `impl` here and
/// resumes the caller on the caller's own executor. Wherever `impl` suspends, other work of the same
/// owner can run.
class SerialExecutor {
public:
  explicit SerialExecutor(const Executor& executor) : strand_(boost::asio::make_strand(executor)) {}

  template <class Result>
  [[nodiscard]] Async<Result> run(Async<Result> work) const {
    return boost::asio::co_spawn(strand_, std::move(work), boost::asio::use_awaitable);
  }

  [[nodiscard]] Executor executor() const { return strand_; }

private:
  boost::asio::strand<Executor> strand_;
};

/// Starts `work` on `executor` and lets it go. An exception that escapes it is a programming error: it
/// is reported under `name` on standard error and ends the process.
inline void start(const Executor& executor, std::string name, Async<void> work) {
  boost::asio::co_spawn(
      executor, std::move(work), [name = std::move(name)](const std::exception_ptr& escaped) {
        if (!escaped) return;
        try {
          std::rethrow_exception(escaped);
        } catch (const std::exception& error) {
          std::fprintf(stderr, "ventolith: %s ended by an exception: %s\n", name.c_str(), error.what());
        } catch (...) {
          std::fprintf(stderr, "ventolith: %s ended by an unknown exception\n", name.c_str());
        }
        std::terminate();
      });
}

} // namespace ventolith::runtime
