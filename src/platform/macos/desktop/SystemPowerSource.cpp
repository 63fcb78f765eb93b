#include "platform/macos/desktop/SystemPowerSource.h"

#include "platform/macos/desktop/IOPowerSource.h"

namespace ventolith::platform {

std::unique_ptr<app::PowerSourceProvider> systemPowerSource(const runtime::Executor& engineExecutor,
                                                            std::optional<std::string>,
                                                            std::filesystem::path) {
  return std::make_unique<IOPowerSource>(engineExecutor);
}

} // namespace ventolith::platform
