#include "app/UpdateController.h"

#include <boost/asio/post.hpp>

#include <atomic>
#include <cstdint>
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

/// The engine calls it from anywhere: there it touches what never changes and the number of the check, and
/// posts.
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

  /// On the main executor. A handler is that of a check of its own.
  void setOnOutcome(OnOutcome onOutcome) {
    if (onOutcome) ++check_;
    onOutcome_ = std::move(onOutcome);
  }

private:
  /// The check that an outcome belongs to is the one that is current when it is told, however late the main
  /// executor comes to it.
  void report(UpdateCheckOutcome outcome) {
    boost::asio::post(mainExecutor_,
                      [weak = weak_from_this(), check = check_.load(), outcome = std::move(outcome)] {
                        if (const auto self = weak.lock()) self->pass(outcome, check);
                      });
  }
  void pass(const UpdateCheckOutcome& outcome, std::uint64_t check) const {
    if (check != check_ || !onOutcome_) return;
    const OnOutcome told = onOutcome_; // It may replace itself.
    told(outcome);
  }

  const runtime::Executor mainExecutor_;
  const std::set<std::string> allowed_;
  std::atomic<std::uint64_t> check_ = 0; // Raised on the main executor, read anywhere.
  OnOutcome onOutcome_;                  // The main executor's.
};

UpdateController::UpdateController(const runtime::Executor& mainExecutor, const BundleInfo& bundle,
                                   const UpdateEngineFactory& makeEngine) {
  const auto configuration = UpdateFeedConfiguration::ofBundle(bundle);
  if (!configuration) return;
  auto delegate = std::make_shared<Delegate>(mainExecutor, sparkleAllowedChannels(configuration->channel()));
  engine_ = makeEngine(*configuration, delegate);
  if (engine_) delegate_ = std::move(delegate);
}

UpdateController::~UpdateController() = default;

std::optional<std::string> UpdateController::unavailableReason() const {
  return isAvailable() ? std::nullopt : std::optional(std::string(notConfigured));
}

void UpdateController::checkForUpdates() {
  if (engine_) engine_->checkForUpdates();
}

void UpdateController::setOnOutcome(OnOutcome onOutcome) {
  if (delegate_) delegate_->setOnOutcome(std::move(onOutcome));
}

} // namespace ventolith::app
