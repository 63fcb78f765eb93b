// The one way from the application to its update engine.
#pragma once

#include "app/UpdateEngine.h"
#include "app/platform-kit/BundleInfo.h"
#include "app/platform-kit/UpdateCheckOutcome.h"
#include "runtime/Async.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ventolith::app {

/// What a check that ended by an error comes to.
[[nodiscard]] UpdateCheckOutcome outcomeForAbort(const PlatformError& error);

/// Lives on the main executor.
class UpdateController {
public:
  using OnOutcome = std::function<void(UpdateCheckOutcome)>;

  static constexpr std::string_view notConfigured = "Updates are not configured in this build.";

  /// There is no engine without valid settings in `bundle`, nor where `makeEngine` gives none.
  UpdateController(const runtime::Executor& mainExecutor, const BundleInfo& bundle,
                   const UpdateEngineFactory& makeEngine);
  UpdateController(const UpdateController&) = delete;
  UpdateController& operator=(const UpdateController&) = delete;
  ~UpdateController();

  [[nodiscard]] bool isAvailable() const { return engine_ != nullptr; }
  /// None when there is an engine.
  [[nodiscard]] std::optional<std::string> unavailableReason() const;

  /// Nothing without an engine.
  void checkForUpdates();

  /// Is told how checks go, on the main executor: what the engine tells from now on, not what it told before
  /// and is still on its way. While it is empty, what the engine tells is dropped.
  void setOnOutcome(OnOutcome onOutcome);

private:
  class Delegate;

  std::shared_ptr<Delegate> delegate_; // Absent together with the engine.
  std::unique_ptr<UpdateEngine> engine_;
};

} // namespace ventolith::app
