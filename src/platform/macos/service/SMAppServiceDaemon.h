// The helper as a daemon that the application's bundle brings along.
#pragma once

#include "helper/link/DaemonService.h"
#include "platform/macos/service/SideQueue.h"

namespace ventolith::platform {

/// Registers the launch daemon "com.ventolith.helper.plist" of the bundle with the system, which asks the
/// user to allow it. The system may take its time for each answer; that holds up the next operation here, and
/// nothing else.
class SMAppServiceDaemon final : public helper::DaemonService {
public:
  explicit SMAppServiceDaemon(runtime::Executor executor) : queue_(std::move(executor)) {}

  runtime::Async<helper::DaemonStatus> status() override;
  /// A daemon that is registered stays so, and that is no error.
  runtime::Async<ErrorText> registerDaemon() override;
  /// The helper has ended when this returns; after 40 seconds it says that the system does not answer. That
  /// there was none is no error.
  runtime::Async<ErrorText> unregisterDaemon() override;
  /// The settings' page of login items.
  void openSystemSettings() override;

private:
  SideQueue queue_;
};

} // namespace ventolith::platform
