#include "platform/linux/desktop/SystemPowerSource.h"

#include "platform/linux/desktop/KernelEvents.h"
#include "platform/linux/desktop/PowerSupplySource.h"
#include "platform/linux/desktop/UPowerSource.h"

#include <utility>

namespace ventolith::platform {

std::unique_ptr<app::PowerSourceProvider> systemPowerSource(const runtime::Executor& engineExecutor,
                                                            std::optional<std::string> busAddress,
                                                            std::filesystem::path powerSupplyFolder) {
  auto fromKernel = [engineExecutor, folder = std::move(powerSupplyFolder)] {
    return std::make_unique<PowerSupplySource>(engineExecutor, folder, openKernelEvents());
  };
  return std::make_unique<UPowerSource>(engineExecutor, std::move(busAddress), std::move(fromKernel));
}

} // namespace ventolith::platform
