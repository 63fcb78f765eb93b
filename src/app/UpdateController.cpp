#include "app/UpdateController.h"

#include <boost/asio/post.hpp>

#include <utility>

namespace ventolith::app {

namespace {

bool isDomainCancellation(const PlatformError& error) {
  const auto is = [&](const char* domain, std::int64_t code) {
    return error.domain == domain && error.code == code;
  };
  return is(PlatformErrors::urlDomain, PlatformErrors::urlCancelled) ||
         is(PlatformErrors::cocoaDomain, PlatformErrors::userCancelled);
}

} // namespace

bool PlatformFailureClassification::isCancellation(const PlatformError& error) {
  return error.isTaskCancellation || isDomainCancellation(error) ||
         (error.underlying && isDomainCancellation(*error.underlying));
}

UpdateCheckOutcome outcomeForAbort(const PlatformError& error) {
  if (error.domain == PlatformErrors::updaterDomain) {
    if (error.code == PlatformErrors::noUpdateFound) return UpdateCheckOutcome::upToDate;
    if (error.code == PlatformErrors::installationCancelled) return UpdateCheckOutcome::cancelled;
  }
  if (PlatformFailureClassification::isCancellation(error)) return UpdateCheckOutcome::cancelled;
  return UpdateCheckOutcome::failed(error.description);
}

/// The engine calls it from anywhere, so that it touches nothing but what never changes, and posts.
class UpdateController::Delegate final : public UpdateEngineDelegate,
                                         public std::enable_shared_from_this<Delegate> {
public:
  Delegate(runtime::Executor mainExecutor, std::set<std::string> allowed)
      : mainExecutor_(std::move(mainExecutor)), allowed_(std::move(allowed)) {}

  [[nodiscard]] std::set<std::string> allowedChannels() const override { return allowed_; }
  void didFindValidUpdate(std::string displayVersion) override {
    report(UpdateCheckOutcome::updateAvailable(std::move(displayVersion)));
  }
  void didNotFindUpdate() override { report(UpdateCheckOutcome::upToDate); }
  void didAbort(PlatformError error) override { report(outcomeForAbort(error)); }
  void didFinishUpdateCycle(std::optional<PlatformError> error) override {
    if (error) report(outcomeForAbort(*error));
  }

  OnOutcome onOutcome; // The main executor's.

private:
  void report(UpdateCheckOutcome outcome) {
    boost::asio::post(mainExecutor_, [weak = weak_from_this(), outcome = std::move(outcome)] {
      const auto self = weak.lock();
      if (!self || !self->onOutcome) return;
      const OnOutcome told = self->onOutcome; // It may replace itself.
      told(outcome);
    });
  }

  const runtime::Executor mainExecutor_;
  const std::set<std::string> allowed_;
};

UpdateController::UpdateController(const runtime::Executor& mainExecutor, const BundleInfo& bundle,
                                   const UpdateEngineFactory& makeEngine) {
  const auto configuration = UpdateFeedConfiguration::ofBundle(bundle);
  if (!configuration) return;
  delegate_ = std::make_shared<Delegate>(mainExecutor, sparkleAllowedChannels(configuration->channel()));
  engine_ = makeEngine(*configuration, delegate_);
}

UpdateController::~UpdateController() = default;

std::optional<std::string> UpdateController::unavailableReason() const {
  return isAvailable() ? std::nullopt : std::optional(std::string(notConfigured));
}

void UpdateController::checkForUpdates() {
  if (engine_) engine_->checkForUpdates();
}

void UpdateController::setOnOutcome(OnOutcome onOutcome) {
  if (delegate_) delegate_->onOutcome = std::move(onOutcome);
}

} // namespace ventolith::app
