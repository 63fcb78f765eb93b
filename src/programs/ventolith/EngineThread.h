// The thread on which everything below the application's model runs.
#pragma once

#include "platform/system/SystemClock.h"
#include "runtime/Async.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>

#include <thread>

namespace ventolith::programs {

/// One thread with an event loop and a clock, both there before it starts. Until then everything of its
/// executor belongs to the thread that made it.
class EngineThread {
public:
  EngineThread();
  EngineThread(const EngineThread&) = delete;
  EngineThread& operator=(const EngineThread&) = delete;
  ~EngineThread(); // As `end`.

  [[nodiscard]] runtime::Executor executor() { return context_.get_executor(); }
  [[nodiscard]] runtime::Clock& clock() { return clock_; }

  void start();
  /// Returns when the thread has ended. What it had under way stays as it stands, and goes with this object.
  void end();

private:
  boost::asio::io_context context_{1};
  platform::SystemClock clock_{context_.get_executor()};
  boost::asio::executor_work_guard<boost::asio::io_context::executor_type> guard_{context_.get_executor()};
  std::thread thread_;
};

} // namespace ventolith::programs
