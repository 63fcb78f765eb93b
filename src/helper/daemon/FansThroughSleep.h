// The fans over the machine's sleep: the firmware has them while it sleeps, and the plan comes back if its
// owner does.
#pragma once

#include "helper/daemon/RememberedCommands.h"
#include "helper/daemon/WatchedEngine.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ventolith::helper {

/// Awake it passes everything on. Before sleep the plan in force is remembered and every fan goes back. What
/// is commanded meanwhile is remembered too and answered `acquiring`; a command to let go forgets it all.
///
/// After waking up nothing is taken until somebody shows to be there: the first heartbeat, or command, puts
/// in force what is remembered. Without one it is forgotten after LocalFanController::heartbeatLimitSeconds.
///
/// Belongs to the engine's thread.
class FansThroughSleep final : public ServedFans {
public:
  /// How long sleep is held up for a fan that refuses to go back.
  static constexpr runtime::Duration mostDelayOfSleep = std::chrono::seconds(4);

  /// All of it outlives this object, and this object everything that it was asked to do.
  FansThroughSleep(const runtime::Executor& executor, runtime::Clock& clock, WatchedEngine& engine,
                   HelperLog& log);

  runtime::Async<core::ControlResult> setManual(core::FanID fan, std::int64_t rpm) override;
  runtime::Async<core::ControlResult> setPercent(core::FanID fan, double percent) override;
  runtime::Async<core::ControlResult> fullBlast() override;
  runtime::Async<core::ControlResult> applyPlan(core::FanControlPlan plan) override;
  runtime::Async<core::ControlResult> automatic() override;
  runtime::Async<void> restoreAuto() override;
  /// Only from a client that may control the fans: it is what brings a plan back.
  runtime::Async<void> heartbeat() override;
  core::ControlStateStream& stateStream() override { return engine_.stateStream(); }

  [[nodiscard]] const core::ControlState& currentState() const override { return engine_.currentState(); }
  runtime::Async<std::optional<std::string>> giveEveryFanBack() override;

  /// Returns when every fan is back, or could not be given back in time.
  runtime::Async<void> willSleep();
  void didWake();

private:
  enum class Phase {
    awake,
    asleep,          ///< From willSleep to didWake.
    awaitsItsClient, ///< Awake, with something remembered.
    resumes,         ///< What was remembered is being put in force.
  };

  runtime::Async<core::ControlResult> changeOrRemember(RememberedCommand command);
  runtime::Async<core::ControlResult> carryOut(RememberedCommand command);
  void startAnew();
  void resume();
  runtime::Async<void> carryOutRemembered(std::int64_t resumption);
  runtime::Async<void> awaitClient(runtime::StopToken stop);
  void enter(Phase phase);

  runtime::Executor executor_;
  runtime::Clock& clock_;
  WatchedEngine& engine_;
  HelperLog& log_;

  Phase phase_ = Phase::awake;
  RememberedCommands remembered_;
  std::int64_t startsAnew_ = 0;  // How often all that was remembered became void.
  std::int64_t resumptions_ = 0; // The last one alone carries on.
  std::optional<runtime::StopSource> waitForClient_;
};

} // namespace ventolith::helper
