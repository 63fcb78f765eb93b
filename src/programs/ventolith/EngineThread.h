// The thread on which everything below the application's model runs.
#pragma once

#include "platform/system/SystemClock.h"
#include "runtime/Async.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>

#include <chrono>
#include <future>
#include <thread>

namespace ventolith::programs {

/// One thread with an event loop and a clock, both there before it starts. Until then everything of its
/// executor belongs to the thread that made it.
class EngineThread {
public:
  EngineThread();
  EngineThread(const EngineThread&) = delete;
  EngineThread& operator=(const EngineThread&) = delete;
  ~EngineThread(); // Waits for the thread's end.

  [[nodiscard]] runtime::Executor executor() { return context_.get_executor(); }
  [[nodiscard]] runtime::Clock& clock() { return clock_; }

  void start();
  /// True when the thread has ended; what it had under way stays as it stands, and goes with this object.
  /// False when something has held it up for `longest`.
  [[nodiscard]] bool end(std::chrono::milliseconds longest);

private:
  boost::asio::io_context context_{1};
  platform::SystemClock clock_{context_.get_executor()};
  boost::asio::executor_work_guard<boost::asio::io_context::executor_type> guard_{context_.get_executor()};
  std::promise<void> ended_;
  std::thread thread_;
};

} // namespace ventolith::programs
