#include "helper/link/HelperManager.h"

#include <cstdio>
#include <utility>
#include <vector>

namespace ventolith::helper {

using runtime::Async;

namespace {

/// A report comes from a controller, which knows no manager, and may come before the manager does.
struct StaleReports {
  std::vector<std::weak_ptr<HelperManager>> allInstances;
  bool last = false;
};

StaleReports& staleReports() {
  static StaleReports reports;
  return reports;
}

} // namespace

HelperManager::HelperManager(Key, runtime::Executor mainExecutor, std::unique_ptr<DaemonService> service,
                             Print print)
    : mainExecutor_(std::move(mainExecutor)),
      service_(std::move(service)),
      print_(std::move(print)),
      isHelperStale_(staleReports().last) {}

Async<std::shared_ptr<HelperManager>>
HelperManager::make(runtime::Executor mainExecutor, std::unique_ptr<DaemonService> service, Print print) {
  const auto begin = [](runtime::Executor main, std::unique_ptr<DaemonService> daemon,
                        Print printer) -> Async<Self> {
    const auto self =
        std::make_shared<HelperManager>(Key(), std::move(main), std::move(daemon), std::move(printer));
    auto& known = staleReports().allInstances;
    std::erase_if(known, [](const auto& instance) { return instance.expired(); });
    known.push_back(self);
    co_await readStatus(self);
    co_return self;
  };
  return boost::asio::co_spawn(mainExecutor, begin(mainExecutor, std::move(service), std::move(print)),
                               boost::asio::use_awaitable);
}

Async<void> HelperManager::onMain(Async<void> work) const {
  return boost::asio::co_spawn(mainExecutor_, std::move(work), boost::asio::use_awaitable);
}

Async<void> HelperManager::refreshStatus() {
  return onMain(readStatus(shared_from_this()));
}

Async<void> HelperManager::registerDaemon() {
  return onMain(registerNow(shared_from_this(), "register()"));
}

Async<void> HelperManager::unregister() {
  return onMain(unregisterNow(shared_from_this()));
}

Async<void> HelperManager::recoverFromStaleHelper() {
  return onMain(recoverNow(shared_from_this()));
}

void HelperManager::reportHelperStale(bool isStale) {
  staleReports().last = isStale;
  const auto told = staleReports().allInstances; // An observer may make another manager meanwhile.
  for (const auto& instance : told) {
    if (const auto manager = instance.lock())
      manager->assign(HelperManagerField::isHelperStale, manager->isHelperStale_, isStale);
  }
}

void HelperManager::writeToStandardError(const std::string& text) {
  std::fputs(text.c_str(), stderr);
}

Async<void> HelperManager::readStatus(Self self) {
  const std::uint64_t question = ++self->questions_;
  const DaemonStatus status = co_await self->service_->status();
  if (question < self->lastAnswered_) co_return;
  self->lastAnswered_ = question;
  self->assign(HelperManagerField::status, self->status_, status);
}

Async<void> HelperManager::registerNow(Self self, std::string operation) {
  if (const auto error = co_await self->service_->registerDaemon())
    self->print_("[HelperManager] " + operation + " failed: " + *error + "\n");
  co_await readStatus(self);
}

Async<void> HelperManager::unregisterNow(Self self) {
  co_await self->service_->unregisterDaemon(); // How it went shows in the status.
  co_await readStatus(self);
}

Async<void> HelperManager::recoverNow(Self self) {
  if (self->isAttemptingStaleRecovery_) co_return;
  self->assign(HelperManagerField::isAttemptingStaleRecovery, self->isAttemptingStaleRecovery_, true);
  co_await self->service_->unregisterDaemon(); // To register is worth a try either way.
  co_await registerNow(self, "recoverFromStaleHelper register()");
  self->assign(HelperManagerField::isAttemptingStaleRecovery, self->isAttemptingStaleRecovery_, false);
}

} // namespace ventolith::helper
