// A program that runs as a child of this process, and dies with it.
#pragma once

#include "runtime/Async.h"

#include <boost/asio/posix/stream_descriptor.hpp>
#include <sys/types.h>

#include <string>
#include <vector>

namespace ventolith::platform {

/// The child reads nothing, writes both its streams to this process's standard error, and is left alone by
/// what a terminal sends to its foreground. It gets SIGTERM when the thread that started it ends.
class ChildProcess {
public:
  struct Launch {
    std::vector<std::string> arguments;   // The first is the program's path.
    std::vector<std::string> environment; // "NAME=value".
  };

  /// Throws std::system_error where the program cannot be started.
  ChildProcess(const runtime::Executor& executor, Launch launch);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  /// A child that still runs is asked to end, and not waited for.
  ~ChildProcess();

  /// Nothing, if the child has ended.
  void signal(int number) const;

  /// Waits for its end, and says how it ended: "ended with status 1". One caller, once.
  runtime::Async<std::string> ended();

private:
  pid_t process_;
  boost::asio::posix::stream_descriptor handle_; // Becomes readable when the child ends.
  bool isReaped_ = false;
};

} // namespace ventolith::platform
