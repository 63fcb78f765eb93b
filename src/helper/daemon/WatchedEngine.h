// The engine under the eye of the service manager, which kills a helper whose engine hangs.
#pragma once

#include "helper/daemon/HelperLog.h"
#include "helper/daemon/ServedFans.h"
#include "helper/daemon/WatchedClock.h"
#include "helper/engine/LocalFanController.h"
#include "helper/link/HelperSurroundings.h"

#include <memory>
#include <optional>
#include <string>

namespace ventolith::helper {

/// Owns the engine. The helper is watched from the moment at which a command begins until no command is under
/// way, the engine is at rest, and what an earlier run may have held is back; meanwhile each wait of the
/// engine that ends is a sign of life. So a claim that hangs is noticed as a loop that hangs is, and a helper
/// that holds nothing neither wakes up nor can be killed for being idle.
///
/// Reads the engine's stream of states, which nobody else does. Belongs to the engine's thread.
class WatchedEngine final : public ServedFans {
public:
  static constexpr runtime::Duration mostFrequentSign = std::chrono::seconds(1);
  static constexpr int giveBackAttempts = 5;
  static constexpr runtime::Duration giveBackInterval = std::chrono::seconds(2);
  static constexpr runtime::Duration recoveryInterval = std::chrono::seconds(2);

  /// All of it outlives this object, and this object everything that it was asked to do.
  WatchedEngine(const runtime::Executor& executor, runtime::Clock& clock, hardware::SMCWriting& smc,
                hardware::SensorReading& sensors, const hardware::Privileges& privileges,
                ServiceSupervisor& supervisor, HelperLog& log);

  runtime::Async<core::ControlResult> setManual(core::FanID fan, std::int64_t rpm) override;
  runtime::Async<core::ControlResult> setPercent(core::FanID fan, double percent) override;
  runtime::Async<core::ControlResult> fullBlast() override;
  runtime::Async<core::ControlResult> applyPlan(core::FanControlPlan plan) override;
  runtime::Async<core::ControlResult> automatic() override;
  runtime::Async<void> restoreAuto() override;
  runtime::Async<void> heartbeat() override;
  core::ControlStateStream& stateStream() override { return engine_->stateStream(); }

  [[nodiscard]] const core::ControlState& currentState() const override { return engine_->currentState(); }

  /// Does nothing if all is at rest. Else, a recovery that has not succeeded included, five attempts, two
  /// seconds apart; a single one without the privilege that could make another succeed. Claims that are under
  /// way have stood down when it returns.
  runtime::Async<std::optional<std::string>> giveEveryFanBack() override;

  /// Whether there are fans at all that could have been taken; an error that is no answer counts as yes.
  [[nodiscard]] static runtime::Async<bool> mayHaveFans(hardware::SMCWriting& smc);

  /// LocalFanController::restoreAllFansToAutomatic; a machine that knows no number of fans has none. A
  /// recovery that fails is tried again every 2 seconds until it succeeds.
  runtime::Async<std::optional<std::string>> recover();

  /// LocalFanController::activePlan; none if every fan is left to the firmware.
  runtime::Async<std::optional<core::FanControlPlan>> planInForce();

  /// Whether the engine is at rest, no command is under way and no recovery is due.
  [[nodiscard]] bool isAtRest() const {
    return commandsUnderWay_ == 0 && !isRecoveryDue_ && engine_->isAtRest();
  }

  /// The service manager watches from here on, whenever there is something to watch.
  void beginSupervision();

private:
  template <class Result>
  runtime::Async<Result> observed(runtime::Async<Result> command);
  void commandBegins();
  void commandEnds();
  runtime::Async<std::optional<std::string>> giveBackOnce();
  runtime::Async<std::optional<std::string>> recoverOnce();
  runtime::Async<void> recoverUntilItSucceeds();

  void noteSignOfLife();
  void lookForRest();
  runtime::Async<void> followStates();
  void watchItComeToRest();
  runtime::Async<void> lookUntilItRests();

  runtime::Executor executor_;
  runtime::Clock& clock_;
  hardware::SMCWriting& smc_;
  const hardware::Privileges& privileges_;
  ServiceSupervisor& supervisor_;
  HelperLog& log_;
  WatchedClock watchedClock_;
  std::shared_ptr<LocalFanController> engine_;

  int commandsUnderWay_ = 0;
  bool isRecoveryDue_ = false; // Asked for, and not succeeded yet.
  bool keepsRecovering_ = false;
  bool isSupervised_ = false;
  std::optional<runtime::StopSource> activity_; // From the first command until all is at rest.
  runtime::Instant lastSign_ = runtime::distantPast;
  bool followsStates_ = false;
  bool looksForRest_ = false;
};

} // namespace ventolith::helper
