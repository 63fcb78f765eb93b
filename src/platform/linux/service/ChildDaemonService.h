// The helper as a child of this process: for development, where nothing is installed.
#pragma once

#include "helper/link/DaemonService.h"
#include "runtime/Clock.h"

#include <memory>
#include <string>

namespace ventolith::platform {

/// Does for the helper what a service manager would: starts it and waits until it says that it is ready,
/// starts it again one second after it ended by itself, gives up (with a line on standard error) when three
/// in a row ended within five seconds, and ends it. The helper has this process's environment, and dies with
/// this process.
///
/// "Registered" is the helper that is kept running; nothing of it stays when this object goes.
class ChildDaemonService final : public helper::DaemonService {
public:
  /// `program` is the helper's path. `clock` outlives this object.
  ChildDaemonService(const runtime::Executor& executor, runtime::Clock& clock, std::string program);
  /// The helper is asked to end, and not waited for.
  ~ChildDaemonService() override;

  runtime::Async<helper::DaemonStatus> status() override;

  /// A helper that is not ready after ten seconds is reported, and kept running.
  runtime::Async<ErrorText> registerDaemon() override;

  /// Returns when the helper has ended, which has ten seconds for it.
  runtime::Async<ErrorText> unregisterDaemon() override;

  /// Says that there is nothing to allow.
  void openSystemSettings() override;

private:
  struct Keeping;

  [[nodiscard]] helper::DaemonStatus statusNow() const;
  runtime::Async<ErrorText> beginKeeping();
  runtime::Async<void> endKeeping();

  runtime::SerialExecutor serial_;
  runtime::Clock& clock_;
  std::string program_;
  std::shared_ptr<Keeping> keeping_; // The latest; none at first.
};

} // namespace ventolith::platform
