// What looks for updates on this system.
#pragma once

#include "app/UpdateEngine.h"
#include "app/platform-kit/AppReleaseMetadata.h"
#include "runtime/Async.h"
#include "runtime/Clock.h"

#include <functional>
#include <string>

namespace ventolith::platform {

/// What an engine may need. The clock outlives the engine.
struct UpdateEngineSettings {
  runtime::Executor mainExecutor;
  runtime::Executor engineExecutor;
  runtime::Clock& clock;
  app::AppReleaseMetadata running; // The build that looks for a newer one.
  std::function<void(const std::string& url)> openPage;
};

/// Sparkle, which needs none of it: it reads the bundle that it updates, shows what it finds, and installs
/// it. There is no engine in a build without Sparkle, nor in a process that has no window to come.
[[nodiscard]] app::UpdateEngineFactory systemUpdateEngines(UpdateEngineSettings settings);

} // namespace ventolith::platform
