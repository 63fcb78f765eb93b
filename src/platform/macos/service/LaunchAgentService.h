// The helper as an agent of the user's: for development, where nothing is installed.
#pragma once

#include "helper/link/DaemonService.h"
#include "platform/macos/service/MachService.h"
#include "platform/macos/service/SideQueue.h"
#include "runtime/Clock.h"

#include <string>

namespace ventolith::platform {

/// Has launchd keep the helper running in the user's graphical session, under the service's name: XPC reaches
/// nobody whom launchd has not started. The agent's property list, and what the helper writes, lie in the
/// user's temporary folder. The helper has this process's variables that begin with VENTOLITH_, and no
/// others.
///
/// "Registered" is what was registered by this object; it is removed when this object goes. What a process
/// that died has left behind is replaced.
class LaunchAgentService final : public helper::DaemonService {
public:
  /// `program` is the helper's path. `clock` outlives this object, and this object the calls of its
  /// operations.
  LaunchAgentService(runtime::Executor executor, runtime::Clock& clock, MachService service,
                     const std::string& program);
  /// The helper is asked to end, and not waited for.
  ~LaunchAgentService() override;

  runtime::Async<helper::DaemonStatus> status() override;
  /// Tries for five seconds at most.
  runtime::Async<ErrorText> registerDaemon() override;
  runtime::Async<ErrorText> unregisterDaemon() override;

  /// Says that there is nothing to allow.
  void openSystemSettings() override;

private:
  runtime::Clock& clock_;
  MachService service_;
  std::string program_;
  bool isRegistered_ = false;
  SideQueue queue_;
};

} // namespace ventolith::platform
