// The one object that windows and menus show and act upon.
#pragma once

#include "app/AppModelDependencies.h"
#include "app/PowerSource.h"
#include "app/UpdateController.h"
#include "app/platform-kit/UpdateCheckOutcome.h"
#include "core/ControlContract.h"
#include "core/SensorSnapshot.h"
#include "helper/link/Completion.h"
#include "helper/link/HelperManager.h"
#include "runtime/Observable.h"
#include "runtime/StopToken.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace ventolith::app {

enum class AppModelField {
  snapshot,
  connectionError,
  activePlan,
  presets,
  activePresetID,
  autoSwitch,
  powerSource,
  fanSliderRPM,
  draggingFans,
  isDashboardVisible,
  controlState,
  isHelperActive,
  updateMessage,
  updateOutcome,
  helperManager,
};

/// Reads the sensors in this process, holds what the user wants as one plan, keeps it on disk, and sends it
/// through a controller: one that touches nothing while the helper is not enabled, one that speaks to the
/// helper from then on. It never writes a fan. What the user wants (`activePlan`) and what the controller
/// says (`controlState`) are two things: the second never changes the first, but a plan that was refused
/// takes its fans out of it.
///
/// Lives on the main executor. Actions change the fields and the files at once and report nothing; what they
/// send is sent by work that begins after them, in their order. Whoever calls an action keeps the model
/// meanwhile. Letting go of the model ends its loops and its controller.
class AppModel final : public runtime::Observable<AppModelField>,
                       public std::enable_shared_from_this<AppModel> {
  struct Key {
    explicit Key() = default;
  };

public:
  static constexpr runtime::Duration activePollPause = std::chrono::seconds(2);
  static constexpr runtime::Duration idlePollPause = std::chrono::seconds(5);
  static constexpr runtime::Duration heartbeatPeriod = std::chrono::seconds(5);
  static constexpr runtime::Duration helperStatusPeriod = std::chrono::seconds(3);

  /// A model that has loaded its files and begun its loops. Called on the main executor.
  [[nodiscard]] static std::shared_ptr<AppModel> make(AppModelDependencies its);
  AppModel(Key, AppModelDependencies its);
  ~AppModel();

  /// What the curve editor begins with for a fan without a curve; its points have new identifiers each time.
  [[nodiscard]] static core::FanCurve defaultCurve();

  // Published fields.
  [[nodiscard]] const core::SensorSnapshot& snapshot() const { return snapshot_; }
  /// The machine could not be opened: no reading will ever come.
  [[nodiscard]] const std::optional<std::string>& connectionError() const { return connectionError_; }
  [[nodiscard]] const core::FanControlPlan& activePlan() const { return activePlan_; }
  [[nodiscard]] const std::vector<core::FanPreset>& presets() const { return presets_; }
  /// The preset that the active plan came from, which edits of rules and tuning leave as it is.
  [[nodiscard]] const std::optional<core::UUID>& activePresetID() const { return activePresetID_; }
  [[nodiscard]] const core::AutoSwitchSettings& autoSwitch() const { return autoSwitch_; }
  [[nodiscard]] PowerSource powerSource() const { return powerSource_; }
  /// Where the sliders stand. For display: never stored, never sent.
  [[nodiscard]] const std::map<core::FanID, double>& fanSliderRPM() const { return fanSliderRPM_; }
  /// The fans whose slider the user holds now.
  [[nodiscard]] const std::set<core::FanID>& draggingFans() const { return draggingFans_; }
  [[nodiscard]] bool isDashboardVisible() const { return isDashboardVisible_; }
  [[nodiscard]] const core::ControlState& controlState() const { return controlState_; }
  [[nodiscard]] bool isHelperActive() const { return isHelperActive_; }
  [[nodiscard]] const std::string& updateMessage() const { return updateMessage_; }
  /// None is idle.
  [[nodiscard]] const std::optional<UpdateCheckOutcome>& updateOutcome() const { return updateOutcome_; }
  /// None until the helper's status has been read for the first time.
  [[nodiscard]] const std::shared_ptr<helper::HelperManager>& helperManager() const { return helperManager_; }

  // Derived values.
  [[nodiscard]] bool updatesAvailable() const { return updates_.isAvailable(); }
  [[nodiscard]] bool canControlFans() const { return isHelperActive_; }
  [[nodiscard]] core::FanControlModePlan planMode(core::FanID fan) const;
  /// The mode that is shown for the fan.
  [[nodiscard]] core::ControlMode mode(const core::Fan& fan) const;
  [[nodiscard]] std::optional<core::FanCurve> curve(core::FanID fan) const;
  /// The RPM that the fan's slider shows.
  [[nodiscard]] double sliderValue(const core::Fan& fan) const;
  [[nodiscard]] std::set<core::FanID> stoppedFanIDs() const;
  /// The fastest fan of the snapshot, the first of equals; none without fans.
  [[nodiscard]] std::optional<core::Fan> representativeFan() const;
  /// None when no preset has the active identifier.
  [[nodiscard]] std::optional<core::FanPreset> activePreset() const;

  void setDashboardVisible(bool isVisible);

  /// Registers the helper, and leads the user to where it is allowed if that is what is missing. Nothing
  /// while that is under way.
  void beginHelperOnboarding();
  /// Nothing when no page is configured.
  void openSupport();

  // Control actions: AppModelControls.cpp
  void beginManualDrag(const core::Fan& fan);
  /// Sends nothing.
  void previewSliderRPM(const core::Fan& fan, double rpm);
  void commitManualRPM(const core::Fan& fan);
  /// Ends a drag that the user could not end: the slider follows the plan again, and nothing is sent.
  void abandonManualDrag(const core::Fan& fan);
  void setFanFullBlast(const core::Fan& fan);
  void setFanAutomatic(const core::Fan& fan);
  void activateFullBlast();
  /// The way out of everything: rules and tuning go as well.
  void activateAutomatic();
  void setFanCurve(const core::FanCurve& curve, const std::vector<core::FanID>& fanIDs);
  void setTuning(const core::ControlTuning& tuning);
  void setRules(std::vector<core::FanRule> rules);
  void addRule(core::FanRule rule);
  void updateRule(const core::FanRule& rule);
  void deleteRule(const core::UUID& id);
  /// Moves the rules at the places `from` before the one at `destination`, counted before the move.
  void moveRules(const std::set<std::size_t>& from, std::size_t destination);
  /// The one road to the controller. Publishes and stores before anybody knows whether the plan will take.
  void applyPlan(core::FanControlPlan plan);

  // Presets: AppModelPresets.cpp
  void activatePreset(core::FanPreset preset);
  void addOrUpdatePreset(const core::FanPreset& preset);
  /// Does nothing to one that is built in.
  void deletePreset(const core::FanPreset& preset);
  void duplicatePreset(const core::FanPreset& preset);
  void newPresetFromCurrent(std::string name = "Custom");
  /// Stores the name as it is given; one of blanks alone does nothing.
  void renamePreset(core::FanPreset preset, std::string name);

  /// Takes effect at once, for the source as it is.
  void setAutoSwitch(core::AutoSwitchSettings settings);

  void checkForUpdates();

  /// For an application that ends: asks the controller to give the fans back, and does not wait. The main
  /// executor has to run what this begins; what the user wants stays stored.
  void restoreAutoOnQuit();

private:
  using Weak = std::weak_ptr<AppModel>;
  using Manager = std::shared_ptr<helper::HelperManager>;
  using FirstManager = helper::Completion<Manager>;
  using Generation = std::uint64_t;

  // Start and loops: AppModelLoops.cpp. Work refers to the model weakly, and looks for it anew after each
  // wait.
  void begin();
  void startOnMain(std::string name, runtime::Async<void> work) const;
  static runtime::Async<void> pollLoop(Weak model, runtime::Clock& clock, hardware::SMCConnection& smc,
                                       hardware::SensorReading& sensors, runtime::StopToken stop);
  runtime::Duration takeReading(core::SensorSnapshot reading);
  static runtime::Async<void> heartbeatLoop(Weak model, runtime::Clock& clock, runtime::StopToken stop);
  runtime::Async<void> heartbeatIfDue() const;
  static runtime::Async<void> helperStatusPollLoop(Weak model, runtime::Executor mainExecutor,
                                                   std::unique_ptr<helper::DaemonService> service,
                                                   runtime::Clock& clock, runtime::StopToken stop);
  void adopt(Manager manager);
  void syncHelperStatus();
  void replaceController(const FanControllerFactory& makeController);
  void consumeControlState(core::ControlState state);
  [[nodiscard]] bool activePlanHasManualControl() const;
  static runtime::Async<void> onboard(Weak model, std::shared_ptr<FirstManager> firstManager);

  // AppModelControls.cpp
  enum class Failure { reverts, isIgnored };
  static runtime::Async<void> sendPlan(Weak model, core::FanControlPlan plan, Failure failure);
  void startSending(core::FanControlPlan plan, Failure failure);
  void revertToAutomaticIfFailed(const core::ControlResult& result, const std::vector<core::FanID>& fans);
  void publishAndSavePlan(core::FanControlPlan plan);
  void setFanMode(core::FanID fan, core::FanControlModePlan mode);
  void setSlider(core::FanID fan, double rpm);
  void holdSlider(core::FanID fan);
  void letGoOfSlider(core::FanID fan);

  // AppModelPresets.cpp
  void seedPresetsIfDue();
  void publishAndSavePresets(std::vector<core::FanPreset> presets);
  void publishAndSaveActivePreset(std::optional<core::UUID> id);
  void clearActivePreset() { publishAndSaveActivePreset(std::nullopt); }

  // AppModelPower.cpp
  void beginPowerMonitor(std::unique_ptr<PowerSourceProvider> provider);
  void handlePowerChange(PowerSource source);
  [[nodiscard]] std::optional<core::UUID> presetIDFor(PowerSource source) const;

  // AppModelUpdates.cpp
  void showUpdate(std::optional<UpdateCheckOutcome> outcome, std::string message);
  void showOutcome(const UpdateCheckOutcome& outcome) { showUpdate(outcome, outcome.message()); }
  [[nodiscard]] std::string idleUpdateMessage() const;
  void showThatUpdatesAreUnavailable();
  void takeOutcome(const UpdateCheckOutcome& outcome, Generation generation);
  static runtime::Async<void> timeOutUpdateCheck(Weak model, runtime::Clock& clock, Generation generation,
                                                 runtime::StopToken stop);
  void scheduleOutcomeClear(UpdateCheckOutcome outcome, Generation generation);
  static runtime::Async<void> clearOutcome(Weak model, runtime::Clock& clock, UpdateCheckOutcome outcome,
                                           Generation generation, runtime::StopToken stop);

  AppModelDependencies its_;
  runtime::StopSource stop_; // Of all loops and waits.
  UpdateController updates_;
  std::unique_ptr<HostedController> controller_;
  std::shared_ptr<FirstManager> firstManager_; // Null for those who still wait when the model goes.
  bool isOnboarding_ = false;
  std::shared_ptr<PowerSourceMonitor> powerMonitor_; // The engine's, and let go of there.
  Generation updateCheckGeneration_ = 0;             // Ties late arrivals to their check.

  core::SensorSnapshot snapshot_ = core::SensorSnapshot::empty;
  std::optional<std::string> connectionError_;
  core::FanControlPlan activePlan_ = core::FanControlPlan::allAutomatic;
  std::vector<core::FanPreset> presets_;
  std::optional<core::UUID> activePresetID_;
  core::AutoSwitchSettings autoSwitch_ = core::AutoSwitchSettings::off;
  PowerSource powerSource_ = PowerSource::unknown;
  std::map<core::FanID, double> fanSliderRPM_;
  std::set<core::FanID> draggingFans_;
  bool isDashboardVisible_ = false;
  core::ControlState controlState_ = core::ControlState::idle;
  bool isHelperActive_ = false;
  std::string updateMessage_;
  std::optional<UpdateCheckOutcome> updateOutcome_;
  Manager helperManager_;
};

} // namespace ventolith::app
