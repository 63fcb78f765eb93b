// The application's fan controller in production: every command goes to the helper.
#pragma once

#include "core/ControlContract.h"
#include "helper/link/Completion.h"
#include "helper/link/HelperBuildVersion.h"
#include "helper/link/HelperChannel.h"
#include "helper/link/HelperVersionReconciliation.h"
#include "helper/link/ProcessWideCounter.h"
#include "runtime/Clock.h"
#include "runtime/WaitingRow.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace ventolith::helper {

/// The commands of all controllers that take each other's place in a process. Where they share it, what an
/// older one has still to send is sent before what the newer one is given, or not at all once that gives the
/// fans back. Belongs to the thread of their executor.
struct CommandOrder {
  runtime::WaitingRow row;
  std::uint64_t restores = 0; // A command from before the last one is not sent any more.
};

struct XPCFanControllerOptions {
  runtime::Duration statePollInterval = std::chrono::seconds(2);
  std::string ownBuildVersion = HelperBuildVersion::identifier;
  std::int64_t maxUpgradeAttempts = HelperVersionReconciliation::defaultMaxUpgradeAttempts;
  std::shared_ptr<CommandOrder> order = std::make_shared<CommandOrder>();
};

/// A single-threaded owner of the line to the helper. It replaces a channel that broke, sees to it that the
/// helper is of this application's build before it sends a command, and reads the helper's state again and
/// again into `stateStream` once a command has taken fans over.
///
/// What goes wrong on the line is a value: `noHelper` for a command, no state, silence for a heartbeat. A
/// command has no time limit: it ends when the helper answers, or is gone.
///
/// Nothing but its owner keeps a controller alive, neither a call under way nor the polling: when the owner
/// lets go of it, on the thread of `executor`, calls under way end as if the helper were gone.
class XPCFanController final : public core::FanControlling,
                               public std::enable_shared_from_this<XPCFanController> {
  struct Key {
    explicit Key() = default;
  };

public:
  /// How long a helper that was asked to end for an upgrade has before it is looked for again.
  static constexpr runtime::Duration upgradePause = std::chrono::milliseconds(300);

  /// A controller that opens its first channel and begins to check the helper's build. `clock` and `attempts`
  /// outlive all its work; `mainExecutor` is the one of `HelperManager`.
  [[nodiscard]] static std::shared_ptr<XPCFanController>
  make(const runtime::Executor& executor, runtime::Executor mainExecutor, runtime::Clock& clock,
       HelperChannelFactory channels, XPCFanControllerOptions options = {},
       ProcessWideCounter& attempts = processWideUpgradeAttempts());
  XPCFanController(Key, const runtime::Executor& executor, runtime::Executor mainExecutor,
                   runtime::Clock& clock, HelperChannelFactory channels, XPCFanControllerOptions options,
                   ProcessWideCounter& attempts);
  ~XPCFanController() override;

  // A command waits for the check of the helper's build, and is sent whatever came of it, behind those that
  // were given before it. One that a `restoreAuto` has overtaken meanwhile is not sent, for it would take the
  // fans again: it ends with `acquiring`, since nothing has refused it.
  runtime::Async<core::ControlResult> setManual(core::FanID fan, std::int64_t rpm) override;
  runtime::Async<core::ControlResult> setPercent(core::FanID fan, double percent) override;
  runtime::Async<core::ControlResult> fullBlast() override;
  /// failed("could not encode plan") for a plan with a number that is not finite.
  runtime::Async<core::ControlResult> applyPlan(core::FanControlPlan plan) override;
  runtime::Async<core::ControlResult> automatic() override;

  // These wait for no check.
  runtime::Async<void> restoreAuto() override;
  runtime::Async<void> heartbeat() override;

  core::ControlStateStream& stateStream() override { return stateStream_; }

  /// The helper's state; none if it does not give one that can be understood.
  [[nodiscard]] runtime::Async<std::optional<core::ControlState>> readRemoteState();
  /// The helper's build; none if it does not tell.
  [[nodiscard]] runtime::Async<std::optional<std::string>> readRemoteVersion();

private:
  // Work refers to the controller weakly, and looks for it anew after each wait.
  using Weak = std::weak_ptr<XPCFanController>;
  using Channel = std::shared_ptr<HelperChannel>; // Shared by the calls that are under way on it.
  using Done = std::monostate;
  enum class StatePolling { asItIs, started };

  // Commands and state: XPCFanController.cpp
  runtime::Async<core::ControlResult> command(HelperMessage message, StatePolling polling);
  static runtime::Async<core::ControlResult> reconciledCommand(Weak controller, HelperMessage message,
                                                               StatePolling polling);
  static runtime::Async<void> restoreAutoNow(Weak controller);
  static runtime::Async<void> sendHeartbeat(Weak controller);
  static runtime::Async<std::optional<core::ControlState>> remoteState(Weak controller);
  static runtime::Async<std::optional<std::string>> versionOn(Channel connection);
  static runtime::Async<std::optional<HelperReply>> call(Weak controller, HelperMessage message);
  static runtime::Async<std::optional<HelperReply>> callOn(Channel connection, HelperMessage message);
  /// Starts `work` behind what runs now: what is sent now is sent first.
  void startLater(std::string name, runtime::Async<void> work) const;
  void ensureStatePollLoopRunning();
  static runtime::Async<void> statePollLoop(Weak controller, runtime::Clock& clock,
                                            runtime::Duration interval, runtime::StopToken stop);

  // The connection and the helper's build: XPCConnection.cpp
  void configureConnection();
  void recreateConnection();
  void recreateConnectionIfNeeded();
  static Channel usableConnection(const Weak& controller);
  static Channel presentConnection(const Weak& controller);
  void connectionChanged();
  static runtime::Async<void> checkFreshConnection(Weak controller);
  static runtime::Async<void> ensureHelperVersionReconciled(Weak controller);
  void beginReconciliation();
  static runtime::Async<void> runReconciliationPass(Weak controller);
  static runtime::Async<std::optional<HelperVersionDecision>> probeAndDecide(Weak controller);
  static runtime::Async<HelperVersionProbe> probeHelperVersion(Weak controller, std::string ownBuildVersion);
  static runtime::Async<void> requestHelperShutdownForUpgrade(Weak controller);
  static runtime::Async<void> reportHelperStale(Weak controller, bool isStale);

  runtime::SerialExecutor serial_;
  runtime::Executor mainExecutor_;
  runtime::Clock& clock_;
  HelperChannelFactory channels_;
  runtime::Duration statePollInterval_;
  std::string ownBuildVersion_;
  ProcessWideCounter& upgradeAttempts_;

  Channel connection_;
  std::uint64_t connectionGeneration_ =
      0;                              // Advanced by each new connection: handlers of older ones are dead.
  bool needsFreshConnection_ = false; // The connection is gone for good; the next use replaces it.
  HelperVersionReconciler reconciler_;
  std::uint64_t connectionChanges_ = 0; // A verdict on a helper that has changed meanwhile is none.
  std::shared_ptr<Completion<Done>> inFlightReconciliationTask_;
  /// Without it, a command that comes as a check ends would pass those that have waited for the check.
  std::shared_ptr<CommandOrder> commandOrder_;
  std::optional<runtime::StopSource> pollTask_; // Once started, for good.
  core::ControlStateStream stateStream_;
};

} // namespace ventolith::helper
