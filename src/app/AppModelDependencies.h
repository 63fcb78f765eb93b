// What the application model needs from outside.
#pragma once

#include "app/ConfigStore.h"
#include "app/HostedController.h"
#include "app/PowerSource.h"
#include "app/UpdateEngine.h"
#include "app/platform-kit/BundleInfo.h"
#include "hardware/SMCConnection.h"
#include "hardware/SensorReader.h"
#include "helper/link/DaemonService.h"
#include "helper/link/HelperChannel.h"
#include "runtime/Clock.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace ventolith::app {

/// What is referred to, and what runs the executors, outlives the model and all work that it has begun, which
/// may wait for a reading or for an answer of the helper when the model goes.
///
/// A clock belongs to one thread. `clock` is the main executor's; `sensors` and the controllers that the
/// factories make have the engine's. Where one thread runs both executors, they may be one clock.
struct AppModelDependencies {
  runtime::Executor mainExecutor;   // Serial: of one thread, or a strand.
  runtime::Executor engineExecutor; // Of the one engine thread.
  runtime::Clock& clock;            // Of the main executor's thread.

  hardware::SMCConnection& smc; // Not open yet, and this application's own: nobody writes through it.
  hardware::SensorReading& sensors;

  FanControllerFactory makePreviewController; // For as long as there is no helper.
  FanControllerFactory makeHelperController;
  std::unique_ptr<helper::DaemonService> daemonService;

  ConfigStore configStore;
  std::unique_ptr<PowerSourceProvider> powerSource;

  const BundleInfo& bundle;
  UpdateEngineFactory makeUpdateEngine;

  std::optional<std::string> supportURL; // The vendor's page, where one is configured.
  std::function<void(const std::string& url)> openURL;
};

// Of both, `clock` is that of the engine's thread.

/// Controllers that touch nothing; `print` receives each diagnostic line, without a line feed.
[[nodiscard]] FanControllerFactory previewControllers(runtime::Executor engineExecutor, runtime::Clock& clock,
                                                      std::function<void(const std::string&)> print);

/// Controllers that send every command to the helper.
[[nodiscard]] FanControllerFactory helperControllers(runtime::Executor engineExecutor,
                                                     runtime::Executor mainExecutor, runtime::Clock& clock,
                                                     helper::HelperChannelFactory channels);

} // namespace ventolith::app
