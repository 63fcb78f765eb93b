#include "platform/macos/desktop/UpdateEngines.h"

namespace ventolith::platform {

app::UpdateEngineFactory systemUpdateEngines(UpdateEngineSettings) {
  return [](const auto&, const auto&) { return nullptr; };
}

} // namespace ventolith::platform
