#include "platform/macos/desktop/SparkleUpdateEngine.h"
#include "platform/macos/desktop/UpdateEngines.h"

#include <utility>

namespace ventolith::platform {

app::UpdateEngineFactory systemUpdateEngines(UpdateEngineSettings) {
  return [](const app::UpdateFeedConfiguration&, std::shared_ptr<app::UpdateEngineDelegate> delegate) {
    return std::make_unique<SparkleUpdateEngine>(std::move(delegate));
  };
}

} // namespace ventolith::platform
