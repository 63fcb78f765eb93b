#include "app/AppModelDependencies.h"

#include "core/PreviewController.h"
#include "helper/link/XPCFanController.h"

#include <utility>

namespace ventolith::app {

namespace {

constexpr std::size_t previewLogLimit = 100; // Calls. The application stays for weeks, a heartbeat every 5 s.

} // namespace

FanControllerFactory previewControllers(runtime::Executor engineExecutor, runtime::Clock& clock,
                                        std::function<void(const std::string&)> print) {
  return [engineExecutor = std::move(engineExecutor), &clock, print = std::move(print)] {
    return std::make_shared<core::PreviewController>(
        engineExecutor, clock, print, core::PreviewController::defaultAcquireDelay, previewLogLimit);
  };
}

FanControllerFactory helperControllers(runtime::Executor engineExecutor, runtime::Executor mainExecutor,
                                       runtime::Clock& clock, helper::HelperChannelFactory channels) {
  return [engineExecutor = std::move(engineExecutor), mainExecutor = std::move(mainExecutor), &clock,
          channels = std::move(channels), order = std::make_shared<helper::CommandOrder>()] {
    return helper::XPCFanController::make(engineExecutor, mainExecutor, clock, channels, {.order = order});
  };
}

} // namespace ventolith::app
