// The seam to what looks for updates: the platform's framework, or a reader of the update feed.
#pragma once

#include "app/platform-kit/UpdateFeedConfiguration.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace ventolith::app {

/// An error as platforms give them.
struct PlatformError {
  std::string domain;
  std::int64_t code = 0;
  std::string description;                         // For the user.
  std::shared_ptr<const PlatformError> underlying; // What caused it, if the platform says so.
  bool isTaskCancellation = false;                 // The task that was to do the work was cancelled.
};

namespace PlatformErrors {
inline constexpr const char* updaterDomain = "SUSparkleErrorDomain";
inline constexpr std::int64_t noUpdateFound = 1001;
inline constexpr std::int64_t installationCancelled = 4007;
inline constexpr const char* urlDomain = "NSURLErrorDomain";
inline constexpr std::int64_t urlCancelled = -999;
inline constexpr const char* cocoaDomain = "NSCocoaErrorDomain";
inline constexpr std::int64_t userCancelled = 3072;
} // namespace PlatformErrors

namespace PlatformFailureClassification {
/// Somebody called the work off, rather than that it failed. Of what caused the error only the next level
/// is looked at.
[[nodiscard]] bool isCancellation(const PlatformError& error);
} // namespace PlatformFailureClassification

/// What an engine asks and tells. Any thread may call it, at any time, also for checks that the engine makes
/// by itself.
class UpdateEngineDelegate {
public:
  UpdateEngineDelegate() = default;
  UpdateEngineDelegate(const UpdateEngineDelegate&) = delete;
  UpdateEngineDelegate& operator=(const UpdateEngineDelegate&) = delete;
  virtual ~UpdateEngineDelegate() = default;

  /// The channels that are offered besides the feed's default one.
  [[nodiscard]] virtual std::set<std::string> allowedChannels() const = 0;

  virtual void didFindValidUpdate(std::string displayVersion) = 0;
  virtual void didNotFindUpdate() = 0;
  virtual void didAbort(PlatformError error) = 0;
  /// The end of a check; with an error if it failed, which `didAbort` may have told before.
  virtual void didFinishUpdateCycle(std::optional<PlatformError> error) = 0;
};

/// Is called, and goes away, on the main executor.
class UpdateEngine {
public:
  UpdateEngine() = default;
  UpdateEngine(const UpdateEngine&) = delete;
  UpdateEngine& operator=(const UpdateEngine&) = delete;
  virtual ~UpdateEngine() = default;

  /// Begins a check on the user's word and returns at once; how it goes is for the delegate. Asked for while
  /// a check runs, it is that one, or replaces it: of a check that was replaced nothing more is told.
  /// Whatever the delegate is told after this call counts as the outcome of this check.
  virtual void checkForUpdates() = 0;
};

/// Makes an engine that is started. Null: this build cannot be updated although its settings are valid.
using UpdateEngineFactory = std::function<std::unique_ptr<UpdateEngine>(
    const UpdateFeedConfiguration& configuration, std::shared_ptr<UpdateEngineDelegate> delegate)>;

} // namespace ventolith::app
