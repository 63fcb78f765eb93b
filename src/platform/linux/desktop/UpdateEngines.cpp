#include "platform/linux/desktop/UpdateEngines.h"

#include "platform/linux/desktop/FeedUpdateEngine.h"

#include <utility>

namespace ventolith::platform {

app::UpdateEngineFactory systemUpdateEngines(UpdateEngineSettings settings) {
  return feedUpdateEngines({.mainExecutor = std::move(settings.mainExecutor),
                            .engineExecutor = std::move(settings.engineExecutor),
                            .clock = settings.clock,
                            .running = std::move(settings.running),
                            .openPage = std::move(settings.openPage)});
}

} // namespace ventolith::platform
