// The update engine where no framework updates programs: it reads the signed update feed when it is asked to,
// tells what it found, and offers the release's page. It never loads or installs a release.
#pragma once

#include "app/UpdateEngine.h"
#include "app/platform-kit/AppReleaseMetadata.h"
#include "runtime/Async.h"
#include "runtime/Clock.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace ventolith::platform {

struct FeedLimits {
  std::size_t feedBytes = 1'048'576;
  std::size_t signatureBytes = 1'024;
  runtime::Duration connect = std::chrono::seconds(15);
  runtime::Duration check = std::chrono::seconds(45); // Tells why, before the model ends its own wait.
};

/// The domains of the errors that end a check.
namespace FeedErrors {
inline constexpr const char* transportDomain = "CURLErrorDomain"; // Codes are those of libcurl.
inline constexpr const char* feedDomain = "UpdateFeedErrorDomain";
inline constexpr std::int64_t invalidSignature = 1;
inline constexpr std::int64_t malformedFeed = 2; // Signed all the same; what is wrong with it is underlying.
inline constexpr std::int64_t checkImpossible = 3;
} // namespace FeedErrors

/// What every check needs. The clock, and what runs the executors, outlive the engine and the work that it
/// has begun.
struct FeedUpdateEngineSettings {
  runtime::Executor mainExecutor;
  runtime::Executor engineExecutor; // Of the one engine thread, which does the work.
  runtime::Clock& clock;            // Of that thread.
  app::AppReleaseMetadata running;  // The build that looks for a newer one.
  /// Called on the main executor with the page of an update that a check has found, if it has one: the check
  /// was made on the user's word, so this is the offer. Not after the engine has gone.
  std::function<void(const std::string& url)> openPage;
  FeedLimits limits = {};
  /// The only certificate authorities that count, in place of the system's.
  std::optional<std::filesystem::path> authorities = {};
};

/// A check that is asked for while one runs is that one. The delegate is told on the engine executor: the
/// outcome, of which a failure comes with the end of the cycle alone, so that none is told twice and the
/// second time lands in the next check; and then the end.
///
/// The engine goes at any moment without waiting. The delegate may still be told what was found by then.
class FeedUpdateEngine final : public app::UpdateEngine {
public:
  FeedUpdateEngine(FeedUpdateEngineSettings settings, app::UpdateFeedConfiguration configuration,
                   std::shared_ptr<app::UpdateEngineDelegate> delegate);
  ~FeedUpdateEngine() override;

  void checkForUpdates() override;

private:
  class Work;
  struct Presence {};

  runtime::Executor engineExecutor_;
  std::shared_ptr<Presence> presence_; // Goes with the engine.
  std::shared_ptr<Work> work_;         // The engine executor's.
};

[[nodiscard]] app::UpdateEngineFactory feedUpdateEngines(FeedUpdateEngineSettings settings);

} // namespace ventolith::platform
