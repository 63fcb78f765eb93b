// Serves a simulated machine over a Unix socket, so that programs in different processes share it.
#pragma once

#include "platform/simulated/SimulatedMac.h"
#include "runtime/Async.h"

#include <memory>
#include <string>

namespace ventolith::simulated {

/// At most 64 clients at a time; a further one is hung up on, and so is a client that sends what is no
/// request. A client's connections are closed when it goes.
///
/// Belongs to the thread that the machine belongs to; that thread runs `executor`.
class MachineServer {
public:
  /// Listens at `path` from now on, and serves once `executor` runs. A socket file there that nobody
  /// answers on is replaced. Fails with std::runtime_error if somebody does, or if there is something
  /// else at `path`, or if no socket can be made there.
  MachineServer(const runtime::Executor& executor, std::shared_ptr<SimulatedMac> mac,
                const std::string& path);
  MachineServer(const MachineServer&) = delete;
  MachineServer& operator=(const MachineServer&) = delete;
  ~MachineServer();

  /// Hangs up on every client, and removes the socket file. Does nothing the second time.
  void stop();

private:
  struct State;
  static runtime::Async<void> accept(std::shared_ptr<State> state);

  std::shared_ptr<State> state_;
};

} // namespace ventolith::simulated
