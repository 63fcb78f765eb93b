// The engine that owns the fans: claims them from the firmware, holds a plan, watches over the machine,
// and gives every fan back when anything is wrong.
#pragma once

#include "core/ControlContract.h"
#include "core/FanHoldPlanner.h"
#include "core/PlanEvaluator.h"
#include "hardware/Machine.h"
#include "hardware/SensorReader.h"
#include "runtime/Clock.h"
#include "runtime/WaitingRow.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace ventolith::helper {

/// A single-threaded owner, one a process, always held by a shared_ptr, which its loops share while they run.
/// Its operations suspend at every SMC and sensor call, so that others of its operations can run between two
/// steps of one; generation counters keep work that has become stale from acting.
///
/// Nobody but this object's stream reader keeps the stream short: whoever makes a controller for long
/// reads `stateStream`, or drains it.
class LocalFanController final : public core::FanControlling,
                                 public std::enable_shared_from_this<LocalFanController> {
public:
  static constexpr runtime::Duration holdPeriod = std::chrono::milliseconds(1500);
  static constexpr double thermalCeilingCelsius = 95.0; // Reached when the hottest reading is equal or above.
  static constexpr int heartbeatLimitSeconds = 15;      // Exceeded when strictly more has passed.
  static constexpr int missingTemperatureLimit = 2;     // Consecutive snapshots without temperatures.
  static constexpr runtime::Duration releaseRetryPeriod = std::chrono::seconds(2);

  /// Writes through `smc` and reads through `sensors`, both given open; `privileges` says whether this
  /// process may write at all. All of them outlive the
  /// controller, which its loops may keep beyond its owner.
  LocalFanController(const runtime::Executor& executor, runtime::Clock& clock, hardware::SMCWriting& smc,
                     hardware::SensorReading& sensors, const hardware::Privileges& privileges);

  /// The same with a `SensorReader` of its own on the connection.
  LocalFanController(const runtime::Executor& executor, runtime::Clock& clock, hardware::SMCConnection& smc,
                     hardware::HIDBridge& bridge, const hardware::Privileges& privileges);

  /// Hold the fan at `rpm`, the other fans as they are. Limits are applied when the plan is evaluated.
  runtime::Async<core::ControlResult> setManual(core::FanID fan, std::int64_t rpm) override;
  /// Hold the fan at `percent` of its range; failed for a percentage that is not finite.
  runtime::Async<core::ControlResult> setPercent(core::FanID fan, double percent) override;
  /// Every fan of the machine at 100 %; failed if they cannot be counted.
  runtime::Async<core::ControlResult> fullBlast() override;

  /// The one road into control: gives back the fans that left the plan, claims those that entered it,
  /// starts the hold loop and runs a first pass. Claiming takes up to 10 seconds a fan, and the watchdogs
  /// see to the fans meanwhile; the heartbeat counts from the plan's arrival. The last failure is the result;
  /// fans that were claimed stay claimed even so. notPrivileged changes nothing; reclaimed says that the fans
  /// were given back, by a command or a watchdog, while they were being claimed. A plan that is overtaken by
  /// a newer one claims nothing more that the newer leaves alone, which is no failure, and leaves pass and
  /// report to the newer.
  runtime::Async<core::ControlResult> applyPlan(core::FanControlPlan plan) override;

  /// Gives every fan back. A fan that refuses is retried every 2 seconds until it is back or a newer
  /// command comes; the result is then a failed that says why.
  runtime::Async<core::ControlResult> automatic() override;
  /// The same without a result, and without the test of privilege.
  runtime::Async<void> restoreAuto() override;

  runtime::Async<void> heartbeat() override;
  core::ControlStateStream& stateStream() override { return stateStream_; }

  /// The last state published.
  [[nodiscard]] const core::ControlState& currentState() const { return state_; }

  /// Whether a plan other than "all automatic" is in force; a watchdog ends that as a command does.
  [[nodiscard]] bool isPlanInForce() const { return activePlan_ != core::FanControlPlan::allAutomatic; }

  /// The plan in force, as the commands that were begun before this one have set it.
  runtime::Async<core::FanControlPlan> activePlan();

  /// Whether nothing is held, nothing has yet to go back, and no loop runs. A command that is under way may
  /// end that.
  [[nodiscard]] bool isAtRest() const;

  /// Whether it gets to rest by itself, unless a command comes. Nothing is published at the moment when it
  /// does.
  [[nodiscard]] bool isComingToRest() const;

  /// The startup recovery: a previous run may have died and left fans in manual mode, so every fan of
  /// the machine is given back, but those of a plan that is in force. Returns what failed, which includes a
  /// fan of which nothing can be learnt and one that is out of reach; it may be asked for again. Does not
  /// test privilege.
  runtime::Async<std::optional<std::string>> restoreAllFansToAutomatic();

private:
  using Generation = std::int64_t;
  using ErrorText = std::optional<std::string>;
  using WriteResult = hardware::SMCResult<std::uint8_t>;

  /// Of a release that is a command, or a watchdog's, and no retry.
  static constexpr std::optional<Generation> directCommand = std::nullopt;

  // Commands and state: LocalFanController.cpp
  /// Runs `work` on this object's executor, and keeps the object until it is done.
  template <class Result>
  runtime::Async<Result> run(runtime::Async<Result> work) {
    const auto self = shared_from_this();
    co_return co_await serial_.run(std::move(work));
  }
  runtime::Async<bool> turnOfAPlan();
  runtime::Async<core::ControlResult> applyInTurn(core::FanControlPlan plan);
  runtime::Async<core::ControlResult> applyToOneFan(core::FanID fan, core::FanControlModePlan mode);
  runtime::Async<core::ControlResult> applyFullBlast();
  runtime::Async<ErrorText> recoverAtStart();
  runtime::Async<ErrorText> releaseAllButThePlans();
  runtime::Async<ErrorText> outOfReach();
  runtime::Async<void> noteHeartbeat();
  runtime::Async<core::FanControlPlan> tellActivePlan();
  runtime::Async<std::optional<core::FanID>> fanCount();
  void publishState(bool holding, ErrorText error);

  // Taking a fan out of firmware control: FanClaim.cpp
  runtime::Async<std::optional<std::string>> resolveModeKey(core::FanID fan);
  runtime::Async<ErrorText> learnModeKey(core::FanID fan);
  runtime::Async<core::ControlResult> claimManualMode(std::string modeKey, Generation generation,
                                                      std::function<bool()> isWanted);

  // Applying and asserting a plan: PlanAssertion.cpp
  /// A pass, and what was newest when it began.
  struct Pass {
    Generation number;
    Generation command;
    Generation release;
  };
  /// By a command or a release.
  [[nodiscard]] bool isOvertaken(Pass pass) const {
    return pass.command != releaseRetryGeneration_ || pass.release != releaseGeneration_;
  }
  /// The same, or by a newer pass.
  [[nodiscard]] bool isOver(Pass pass) const { return isOvertaken(pass) || pass.number != passes_; }
  runtime::Async<core::ControlResult> applyPlanNow(core::FanControlPlan plan);
  runtime::Async<core::ControlResult> claimPlannedFans(const core::FanControlPlan& plan,
                                                       Generation generation);
  runtime::Async<std::vector<core::FanID>>
  assertPlanOnce(core::FanControlPlan plan, core::SensorSnapshot snapshot, runtime::Instant now);
  runtime::Async<bool> releaseFansOf(const core::FanHoldActions& actions, Pass pass);
  runtime::Async<bool> claimWantedFans(const core::FanHoldActions& actions, Pass pass);
  runtime::Async<std::optional<std::vector<core::FanID>>> holdTargetsOf(const core::FanHoldActions& actions,
                                                                        Pass pass);
  void enterClaimed(core::FanID fan);

  // The periodic loop and its watchdogs: HoldLoop.cpp
  enum class Round { goesOn, endsTheLoop };
  void ensureHoldLoopRunning();
  static runtime::Async<void> startedHoldLoop(std::weak_ptr<LocalFanController> controller,
                                              runtime::StopToken stop);
  runtime::Async<void> holdLoop(runtime::StopToken stop);
  runtime::Async<Round> holdRound(runtime::StopToken stop);
  ErrorText watchdogMessage(const core::SensorSnapshot& snapshot) const;
  runtime::Async<Round> releaseSequence(std::string message);
  Round reportPass(const std::vector<core::FanID>& reclaimed);

  // Back to the firmware: Release.cpp
  runtime::Async<core::ControlResult> automaticNow();
  runtime::Async<void> restoreAutoNow();
  runtime::Async<ErrorText> giveBackByCommand();
  runtime::Async<ErrorText> releaseAllToAuto(std::optional<Generation> expectedRetryGeneration);
  runtime::Async<ErrorText> releasePendingAutoFans(std::optional<Generation> expectedRetryGeneration);
  runtime::Async<ErrorText> writeZero(std::string key);
  runtime::Async<ErrorText> clearLatch();
  [[nodiscard]] bool isStale(std::optional<Generation> expectedRetryGeneration) const;
  void settleRelease(const std::set<core::FanID>& failed);
  void leaveToNewerCommand(const std::set<core::FanID>& failed);
  void forgetHeld(core::FanID fan);
  void standDownRetry();
  void ensureReleaseRetryLoopRunning();
  static runtime::Async<void> startedReleaseRetryLoop(std::weak_ptr<LocalFanController> controller,
                                                      Generation generation, runtime::StopToken stop);
  runtime::Async<void> releaseRetryLoop(Generation generation, runtime::StopToken stop);

  runtime::SerialExecutor serial_;
  runtime::Clock& clock_;
  std::unique_ptr<hardware::SensorReader> ownSensors_; // Where none was given.
  hardware::SMCWriting& smc_;
  hardware::SensorReading& sensors_;
  const hardware::Privileges& privileges_;

  std::map<core::FanID, std::string> modeKeyCache_;
  std::map<core::FanID, double> targets_; // RPM last written to each held fan.
  std::map<core::FanID, core::ControlMode> perFanMode_;
  core::FanControlPlan activePlan_ = core::FanControlPlan::allAutomatic;
  core::PlanEvaluator evaluator_;
  std::set<core::FanID> claimedFans_;            // In manual mode under this controller.
  std::set<core::FanID> pendingAutoReleaseFans_; // Have still to go back to the firmware.
  std::set<core::FanID> monitoredFans_;          // Those that the active plan does not leave automatic.
  std::set<core::FanID> stoppedFans_;            // Parked at zero by the stop policy.
  int claimsUnderWay_ = 0;                       // Of commands; a pass claims nothing meanwhile.
  std::optional<runtime::StopSource> holdTask_;
  std::optional<runtime::StopSource> releaseRetryTask_;
  Generation releaseRetryGeneration_ = 0; // Advanced by each command; retry and pass of an older one end.
  Generation releaseGeneration_ = 0;      // Advanced by each release; claim and pass of an older one end.
  Generation passes_ = 0;                 // Advanced by each pass; an older one writes no target any more.
  Generation givenBack_ = 0;              // Advanced by each command to give the fans back.
  /// Commands take their turns where one of them has something to read before it has a plan.
  std::shared_ptr<runtime::WaitingRow> planOrder_ = std::make_shared<runtime::WaitingRow>();
  runtime::Instant lastHeartbeat_ = runtime::distantPast; // The distant past: never, or released.
  int consecutiveMissingTemperatureSnapshots_ = 0;
  core::ControlStateStream stateStream_;
  core::ControlState state_ = core::ControlState::idle;
};

} // namespace ventolith::helper
