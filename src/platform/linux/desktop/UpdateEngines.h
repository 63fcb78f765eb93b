// What looks for updates on this system.
#pragma once

#include "app/UpdateEngine.h"
#include "app/platform-kit/AppReleaseMetadata.h"
#include "runtime/Async.h"
#include "runtime/Clock.h"

#include <functional>
#include <string>

namespace ventolith::platform {

/// The clock, and what runs the executors, outlive the engine and the work that it has begun.
struct UpdateEngineSettings {
  runtime::Executor mainExecutor;
  runtime::Executor engineExecutor; // Of the one engine thread, which does the work.
  runtime::Clock& clock;            // Of that thread.
  app::AppReleaseMetadata running;  // The build that looks for a newer one.
  /// Called on the main executor with the page of an update that a check has found.
  std::function<void(const std::string& url)> openPage;
};

/// Reads the update feed, and offers the page of what it finds.
[[nodiscard]] app::UpdateEngineFactory systemUpdateEngines(UpdateEngineSettings settings);

} // namespace ventolith::platform
