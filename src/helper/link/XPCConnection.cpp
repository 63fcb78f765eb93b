// XPCFanController's connection: how it is opened and replaced, and how the helper at its other end is
// brought to the application's own build.
#include "helper/link/HelperManager.h"
#include "helper/link/XPCFanController.h"

#include <boost/asio/post.hpp>

#include <utility>

namespace ventolith::helper {

using runtime::Async;

void XPCFanController::configureConnection() {
  // The handlers run in the middle of anything, so they post. By then the connection may have been replaced.
  const auto posted = [this](void (*handle)(XPCFanController&)) {
    return [executor = serial_.executor(), controller = weak_from_this(), generation = connectionGeneration_,
            handle] {
      boost::asio::post(executor, [controller, generation, handle] {
        const auto self = controller.lock();
        if (self && self->connectionGeneration_ == generation) handle(*self);
      });
    };
  };
  // A connection that was interrupted revives by itself, but the helper may be of another build now.
  connection_->resume(
      {.interrupted = posted([](XPCFanController& self) { self.connectionChanged(); }),
       .invalidated = posted([](XPCFanController& self) { self.needsFreshConnection_ = true; })});
  startLater("the check of a fresh connection to the helper", checkFreshConnection(weak_from_this()));
}

void XPCFanController::recreateConnection() {
  ++connectionGeneration_;
  connection_->invalidate();
  connection_ = channels_();
  needsFreshConnection_ = false;
  connectionChanged(); // Nothing is known of the helper at the new one's end.
  configureConnection();
}

void XPCFanController::recreateConnectionIfNeeded() {
  if (needsFreshConnection_) recreateConnection();
}

/// A new one if the present one is gone for good. None if the controller is gone.
XPCFanController::Channel XPCFanController::usableConnection(const Weak& controller) {
  const auto self = controller.lock();
  if (!self) return nullptr;
  self->recreateConnectionIfNeeded();
  return self->connection_;
}

XPCFanController::Channel XPCFanController::presentConnection(const Weak& controller) {
  const auto self = controller.lock();
  return self ? self->connection_ : nullptr;
}

void XPCFanController::connectionChanged() {
  ++connectionChanges_;
  reconciler_.connectionChanged();
}

/// Never replaces the connection: where none can be opened, each would be followed by the next without an
/// end.
Async<void> XPCFanController::checkFreshConnection(Weak controller) {
  const auto isUsable = [&controller] {
    const auto self = controller.lock();
    return self && !self->needsFreshConnection_;
  };
  if (isUsable()) co_await ensureHelperVersionReconciled(controller);
}

Async<void> XPCFanController::ensureHelperVersionReconciled(Weak controller) {
  auto self = controller.lock();
  if (!self) co_return;
  if (!self->inFlightReconciliationTask_) {
    self->recreateConnectionIfNeeded();
    if (!self->reconciler_.needsProbe()) co_return;
    self->beginReconciliation();
  }
  const auto task = self->inFlightReconciliationTask_;
  self = nullptr;
  co_await Completion<Done>::valueOf(task);
}

void XPCFanController::beginReconciliation() {
  const auto task = std::make_shared<Completion<Done>>(serial_.executor());
  inFlightReconciliationTask_ = task;
  const auto pass = [](Weak controller, std::shared_ptr<Completion<Done>> ended) -> Async<void> {
    co_await runReconciliationPass(controller);
    if (const auto self = controller.lock()) self->inFlightReconciliationTask_ = nullptr;
    ended->complete(Done());
  };
  startLater("the reconciliation of the helper's build", pass(weak_from_this(), task));
}

Async<void> XPCFanController::runReconciliationPass(Weak controller) {
  for (;;) {
    const auto decision = co_await probeAndDecide(controller);
    if (!decision) co_return;
    if (*decision != HelperVersionDecision::triggerUpgradeSwap) {
      co_await reportHelperStale(controller, *decision == HelperVersionDecision::stale);
      co_return;
    }
    co_await requestHelperShutdownForUpgrade(controller);
    auto self = controller.lock();
    if (!self) co_return;
    self->recreateConnectionIfNeeded();
    runtime::Clock& clock = self->clock_;
    self = nullptr;
    co_await clock.sleep(upgradePause, runtime::StopToken());
    self = controller.lock(); // The connection may have broken just now.
    if (self) self->recreateConnectionIfNeeded();
  }
}

/// None if the controller is gone.
Async<std::optional<HelperVersionDecision>> XPCFanController::probeAndDecide(Weak controller) {
  auto self = controller.lock();
  if (!self) co_return std::nullopt;
  const std::uint64_t changesBefore = self->connectionChanges_;
  std::string ownBuildVersion = self->ownBuildVersion_;
  self = nullptr;

  const HelperVersionProbe probe = co_await probeHelperVersion(controller, std::move(ownBuildVersion));

  self = controller.lock();
  if (!self) co_return std::nullopt;
  const auto decision = self->reconciler_.next(probe, self->upgradeAttempts_.count());
  if (self->connectionChanges_ != changesBefore) self->reconciler_.connectionChanged();
  if (decision == HelperVersionDecision::triggerUpgradeSwap) self->upgradeAttempts_.addOne();
  co_return decision;
}

Async<HelperVersionProbe> XPCFanController::probeHelperVersion(Weak controller, std::string ownBuildVersion) {
  const auto version = co_await versionOn(presentConnection(controller));
  if (!version) co_return HelperVersionProbe::noReply;
  co_return *version == ownBuildVersion ? HelperVersionProbe::matched : HelperVersionProbe::mismatched;
}

Async<void> XPCFanController::requestHelperShutdownForUpgrade(Weak controller) {
  co_await callOn(presentConnection(controller), messages::ShutdownForUpgrade{});
}

Async<void> XPCFanController::reportHelperStale(Weak controller, bool isStale) {
  auto self = controller.lock();
  if (!self) co_return;
  const runtime::Executor mainExecutor = self->mainExecutor_;
  self = nullptr;
  const auto report = [](bool stale) -> Async<void> {
    HelperManager::reportHelperStale(stale);
    co_return;
  };
  co_await boost::asio::co_spawn(mainExecutor, report(isStale), boost::asio::use_awaitable);
}

} // namespace ventolith::helper
