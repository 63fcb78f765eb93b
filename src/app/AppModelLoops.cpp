// AppModel's beginning, its loops, and the replacement of the controller.
#include "app/AppModel.h"
#include "app/ControlActions.h"

#include <boost/asio/post.hpp>

#include <utility>

namespace ventolith::app {

using helper::DaemonStatus;
using helper::HelperManager;
using runtime::Async;

void AppModel::begin() {
  replaceController(its_.makePreviewController);
  startOnMain("the reading of the sensors",
              pollLoop(weak_from_this(), its_.clock, its_.smc, its_.sensors, stop_.token()));
  startOnMain("the heartbeat", heartbeatLoop(weak_from_this(), its_.clock, stop_.token()));
  startOnMain("the watching of the helper's status",
              helperStatusPollLoop(weak_from_this(), its_.mainExecutor, std::move(its_.daemonService),
                                   its_.clock, stop_.token()));
  beginPowerMonitor(std::move(its_.powerSource));
}

/// Posted, so that it begins behind what runs now: an observer's action and a loop's step end first.
void AppModel::startOnMain(std::string name, Async<void> work) const {
  auto begin = [executor = its_.mainExecutor, name = std::move(name), work = std::move(work)]() mutable {
    runtime::start(executor, std::move(name), std::move(work));
  };
  boost::asio::post(its_.mainExecutor, std::move(begin));
}

Async<void> AppModel::pollLoop(Weak model, runtime::Clock& clock, hardware::SMCConnection& smc,
                               hardware::SensorReading& sensors, runtime::StopToken stop) {
  if (stop.stopRequested()) co_return;
  if (const auto error = co_await smc.open()) {
    if (const auto self = model.lock())
      self->assign(AppModelField::connectionError, self->connectionError_,
                   std::optional("Could not open AppleSMC: " + error->description()));
    co_return;
  }
  while (!stop.stopRequested()) {
    auto reading = co_await sensors.snapshot();
    auto self = model.lock();
    if (!self) co_return;
    const runtime::Duration pause = self->takeReading(std::move(reading));
    self = nullptr;
    co_await clock.sleep(pause, stop);
  }
}

/// Gives the pause until the next reading.
runtime::Duration AppModel::takeReading(core::SensorSnapshot reading) {
  assign(AppModelField::snapshot, snapshot_, std::move(reading));
  seedPresetsIfDue();
  return isDashboardVisible_ || controlsAFan(activePlan_) ? activePollPause : idlePollPause;
}

Async<void> AppModel::heartbeatLoop(Weak model, runtime::Clock& clock, runtime::StopToken stop) {
  for (;;) {
    co_await clock.sleep(heartbeatPeriod, stop);
    if (stop.stopRequested()) co_return;
    auto self = model.lock();
    if (!self) co_return;
    auto heartbeat = self->heartbeatIfDue();
    self = nullptr;
    co_await std::move(heartbeat);
  }
}

Async<void> AppModel::heartbeatIfDue() const {
  if (activePlanHasManualControl()) return controller_->heartbeat();
  const auto nothing = []() -> Async<void> { co_return; };
  return nothing();
}

/// The first status has to be asked for, as each later one: a bus may have to answer. The first sync
/// therefore comes as soon as that answer is in. It waits for nothing else, above all for no reading, so a
/// helper that is enabled already gets the stored plan in its first moments; and no reading waits for it,
/// should the system not answer.
Async<void> AppModel::helperStatusPollLoop(Weak model, runtime::Executor mainExecutor,
                                           std::unique_ptr<helper::DaemonService> service,
                                           runtime::Clock& clock, runtime::StopToken stop) {
  if (stop.stopRequested()) co_return;
  const Manager manager = co_await HelperManager::make(std::move(mainExecutor), std::move(service));
  if (const auto self = model.lock()) self->adopt(manager);
  for (;;) {
    co_await clock.sleep(helperStatusPeriod, stop);
    if (stop.stopRequested()) co_return;
    co_await manager->refreshStatus();
    if (const auto self = model.lock()) self->syncHelperStatus();
  }
}

void AppModel::adopt(Manager manager) {
  assign(AppModelField::helperManager, helperManager_, manager);
  firstManager_->complete(std::move(manager));
  syncHelperStatus();
}

void AppModel::syncHelperStatus() {
  const bool isEnabled = helperManager_->status() == DaemonStatus::enabled;
  if (isEnabled == isHelperActive_) return;
  assign(AppModelField::isHelperActive, isHelperActive_, isEnabled);
  replaceController(isEnabled ? its_.makeHelperController : its_.makePreviewController);
  if (isEnabled && activePlanHasManualControl()) startSending(activePlan_, Failure::isIgnored);
}

/// The old one is dropped without any closing step.
void AppModel::replaceController(const FanControllerFactory& makeController) {
  const auto mirror = [model = weak_from_this()](core::ControlState state) {
    if (const auto self = model.lock()) self->consumeControlState(std::move(state));
  };
  controller_ =
      std::make_unique<HostedController>(its_.mainExecutor, its_.engineExecutor, makeController, mirror);
}

void AppModel::consumeControlState(core::ControlState state) {
  assign(AppModelField::controlState, controlState_, std::move(state));
}

bool AppModel::activePlanHasManualControl() const {
  return hasManualControl(activePlan_);
}

void AppModel::beginHelperOnboarding() {
  if (isOnboarding_) return; // A second registration would ask the user a second time.
  isOnboarding_ = true;
  startOnMain("the registration of the helper", onboard(weak_from_this(), firstManager_));
}

Async<void> AppModel::onboard(Weak model, std::shared_ptr<FirstManager> firstManager) {
  const Manager manager = co_await FirstManager::valueOf(std::move(firstManager));
  if (!manager) co_return;
  co_await manager->registerDaemon();
  const auto self = model.lock();
  if (self) self->syncHelperStatus();
  if (manager->status() == DaemonStatus::requiresApproval) manager->openSystemSettings();
  if (self) self->isOnboarding_ = false;
}

void AppModel::restoreAutoOnQuit() {
  startOnMain("giving the fans back", controller_->restoreAuto());
}

} // namespace ventolith::app
