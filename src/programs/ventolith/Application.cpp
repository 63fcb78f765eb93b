#include "programs/ventolith/Application.h"

#include "helper/link/HostedDaemonService.h"
#include "platform/system/UserFolders.h"
#include "platform/system/desktop/OpenURL.h"
#include "platform/system/desktop/SystemPowerSource.h"
#include "platform/system/desktop/SystemUserSettings.h"
#include "platform/system/desktop/UpdateEngines.h"
#include "platform/system/service/ErrorLine.h"
#include "programs/ventolith/FullSpeed.h"

#include <cstdio>
#include <optional>
#include <utility>

namespace ventolith::programs {

namespace {

/// None also where a variable is set to nothing.
std::optional<std::string> setting(const Environment& environment, const char* name) {
  auto value = environment(name);
  return value && value->empty() ? std::nullopt : value;
}

platform::ServiceOptions serviceOptions(const Environment& environment) {
  return {.busAddress = setting(environment, "VENTOLITH_BUS"),
          .helperProgram = setting(environment, "VENTOLITH_HELPER")};
}

/// A build that does not know its own version has no updates.
app::UpdateEngineFactory updateEngines(const Executors& executors, const app::BundleInfo& bundle) {
  auto running = app::AppReleaseMetadata::ofBundle(bundle);
  if (!running) return [](auto&&...) { return nullptr; };
  return platform::systemUpdateEngines({.mainExecutor = executors.main,
                                        .engineExecutor = executors.engine,
                                        .clock = executors.engineClock,
                                        .running = std::move(*running),
                                        .openPage = platform::openURL});
}

void writeLine(const std::string& line) {
  std::puts(line.c_str());
  std::fflush(stdout);
}

} // namespace

Application::Application(const Executors& executors, const Environment& environment)
    : machine_(selectMachine(environment, executors.engineClock)),
      smc_(executors.engine, *machine_.smc),
      sensors_(executors.engine, smc_, *machine_.hid, executors.engineClock, platform::sayOnStandardError),
      services_(executors.engine, executors.engineClock, serviceOptions(environment)),
      bundle_(platform::InstalledBundle::ofProgram(files_)),
      lifecycle_(platform::systemUserSettings(files_)),
      model_(app::AppModel::make(dependencies(executors, environment))) {
  keepFullSpeed();
  if (bundle_.complaint()) platform::sayOnStandardError("ventolith: " + *bundle_.complaint());
}

app::AppModelDependencies Application::dependencies(const Executors& executors,
                                                    const Environment& environment) {
  const runtime::Executor& engine = executors.engine;
  return {
      .mainExecutor = executors.main,
      .engineExecutor = engine,
      .clock = executors.mainClock,
      .smc = smc_,
      .sensors = sensors_,
      .makePreviewController = app::previewControllers(engine, executors.engineClock, writeLine),
      .makeHelperController =
          app::helperControllers(engine, executors.main, executors.engineClock, services_.helperChannels()),
      .daemonService = std::make_unique<helper::HostedDaemonService>(engine, services_.daemonService()),
      .configStore = app::ConfigStore(files_, platform::userConfigurationFolder),
      .powerSource = platform::systemPowerSource(
          engine, setting(environment, "VENTOLITH_BUS"),
          setting(environment, "VENTOLITH_POWER_SUPPLY").value_or(platform::powerSupplies)),
      .bundle = bundle_,
      .makeUpdateEngine = updateEngines(executors, bundle_),
      .supportURL = bundle_.string("AppSupportURL"),
      .openURL = platform::openURL,
  };
}

void Application::terminate() {
  lifecycle_.applicationWillTerminate();
  model_ = nullptr;
}

} // namespace ventolith::programs
