// The helper as a unit of systemd.
#pragma once

#include "helper/link/DaemonService.h"
#include "platform/linux/service/BusConnection.h"
#include "runtime/Clock.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ventolith::platform {

/// What the state of a unit's file, in systemd's words, says about the helper.
[[nodiscard]] helper::DaemonStatus statusOfUnitFile(std::string_view state);

/// The unit "ventolith-helper.service". "Registered" is enabled: systemd starts the helper with the system,
/// and when somebody calls it. Changes ask for permission, which may mean that a person is asked, for as long
/// as it takes.
///
/// A registration that was refused shows as "requires approval" until one succeeds or somebody else enables
/// the unit. The unit file's state is asked for once, and again when systemd said that unit files changed,
/// when it started anew, and after own changes: `status` can be called often.
class SystemdDaemonService final : public helper::DaemonService {
public:
  /// `bus` and `clock` outlive this object, and this object the calls of its operations. `bus` belongs to
  /// `executor`.
  SystemdDaemonService(const runtime::Executor& executor, Bus& bus, runtime::Clock& clock)
      : serial_(executor), bus_(bus), clock_(clock) {}

  runtime::Async<helper::DaemonStatus> status() override;

  /// Returns when the helper is ready, or has failed to be; after 30 seconds it says so and leaves it to
  /// systemd.
  runtime::Async<ErrorText> registerDaemon() override;

  /// Returns when the helper has ended, with the same limit.
  runtime::Async<ErrorText> unregisterDaemon() override;

  /// Says how an administrator enables the helper.
  void openSystemSettings() override;

private:
  struct Watch;
  struct JobEnd {
    std::string result; // In systemd's words: "done", "failed".
  };
  using WatchResult = BusResult<std::shared_ptr<Watch>>;

  runtime::Async<helper::DaemonStatus> currentStatus();
  runtime::Async<ErrorText> enableAndStart();
  runtime::Async<ErrorText> stopAndDisable();

  [[nodiscard]] WatchResult watch();
  ErrorText noteRefusal(const BusFailure& failure);
  /// Starts a job of the unit by a method of systemd, and waits for its end.
  runtime::Async<BusResult<JobEnd>> runJob(std::shared_ptr<Watch> watch, std::string method);

  runtime::SerialExecutor serial_;
  Bus& bus_;
  runtime::Clock& clock_;
  std::shared_ptr<Watch> watch_; // On the present connection; none before the first use.
  bool isRefused_ = false;
};

} // namespace ventolith::platform
