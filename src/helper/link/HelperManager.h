// The application's handle on the helper's registration with the system.
#pragma once

#include "helper/link/DaemonService.h"
#include "runtime/Observable.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace ventolith::helper {

enum class HelperManagerField { status, isHelperStale, isAttemptingStaleRecovery };

/// Publishes whether the helper is registered, allowed or missing, registers and unregisters it, and carries
/// the flag of a stale helper. It does not speak to the helper: that is `XPCFanController`.
///
/// Lives on the main executor; an operation runs there whoever awaits it, and keeps the manager until it is
/// done. None of them fails: what goes wrong is written to standard error, and shows in `status`.
class HelperManager final : public runtime::Observable<HelperManagerField>,
                            public std::enable_shared_from_this<HelperManager> {
  struct Key {
    explicit Key() = default;
  };

public:
  using Print = std::function<void(const std::string& text)>; // The text ends with a line feed.

  /// A manager that has read its status. It starts with the stale flag that was reported last.
  static runtime::Async<std::shared_ptr<HelperManager>> make(runtime::Executor mainExecutor,
                                                             std::unique_ptr<DaemonService> service,
                                                             Print print = writeToStandardError);
  HelperManager(Key, runtime::Executor mainExecutor, std::unique_ptr<DaemonService> service, Print print);

  [[nodiscard]] DaemonStatus status() const { return status_; } ///< As it was read last.
  /// A helper runs that could not be brought to this application's build.
  [[nodiscard]] bool isHelperStale() const { return isHelperStale_; }
  [[nodiscard]] bool isAttemptingStaleRecovery() const { return isAttemptingStaleRecovery_; }

  runtime::Async<void> refreshStatus();
  /// How it went shows in `status`. That may be requires-approval, which is the moment for
  /// `openSystemSettings`.
  runtime::Async<void> registerDaemon();
  runtime::Async<void> unregister();

  /// Restarts the helper on the user's word: unregisters and registers it. Nothing while that is under way.
  /// The stale flag stays: only a version check that succeeds takes it back.
  runtime::Async<void> recoverFromStaleHelper();

  void openSystemSettings() { service_->openSystemSettings(); }

  /// To every manager of the process, those to come included. On the main executor.
  static void reportHelperStale(bool isStale);

  static void writeToStandardError(const std::string& text);

private:
  using Self = std::shared_ptr<HelperManager>;

  [[nodiscard]] runtime::Async<void> onMain(runtime::Async<void> work) const;
  static runtime::Async<void> readStatus(Self self);
  static runtime::Async<void> registerNow(Self self, std::string operation);
  static runtime::Async<void> unregisterNow(Self self);
  static runtime::Async<void> recoverNow(Self self);

  runtime::Executor mainExecutor_;
  std::unique_ptr<DaemonService> service_;
  Print print_;
  DaemonStatus status_ = DaemonStatus::notRegistered;
  std::uint64_t questions_ = 0;    // For the status.
  std::uint64_t lastAnswered_ = 0; // The answer to an older one, which comes late, counts for nothing.
  bool isHelperStale_;
  bool isAttemptingStaleRecovery_ = false;
};

} // namespace ventolith::helper
