// The whole application but what is seen of it.
#pragma once

#include "app/AppModel.h"
#include "app/Lifecycle.h"
#include "app/platform-kit/BundleInfo.h"
#include "hardware/Machine.h"
#include "hardware/SMCConnection.h"
#include "hardware/SensorReader.h"
#include "platform/system/desktop/InstalledBundle.h"
#include "platform/system/service/SystemServices.h"
#include "programs/common/MachineSelection.h"
#include "runtime/Clock.h"
#include "runtime/Files.h"

#include <memory>
#include <string>

namespace ventolith::programs {

/// Where an application runs: the model on the main executor, what lies below it on the engine's. They may be
/// one. Each clock belongs to its executor's thread.
struct Executors {
  runtime::Executor main;
  runtime::Clock& mainClock;
  runtime::Executor engine;
  runtime::Clock& engineClock;
};

/// Puts together what a system offers and the model on top of it. Lives on the main executor. What it has
/// begun on the engine's refers to it, so it is not taken down while that runs.
///
/// The environment chooses the machine (see `selectMachine`) and, for development: VENTOLITH_BUS, the address
/// of the message bus in place of the system's; VENTOLITH_HELPER, a helper program that is started as a child
/// in place of the system's service; VENTOLITH_POWER_SUPPLY, a folder in place of the kernel's.
class Application {
public:
  /// Begins everything. Called before the engine's executor runs, or on its thread. Fails with MachineError.
  Application(const Executors& executors, const Environment& environment);
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;
  ~Application() = default;

  /// None any more after `terminate`.
  [[nodiscard]] const std::shared_ptr<app::AppModel>& model() const { return model_; }
  [[nodiscard]] const std::string& machineName() const { return machine_.name; }
  [[nodiscard]] const app::BundleInfo& bundle() const { return bundle_; }
  [[nodiscard]] bool hasSupportPage() const { return bundle_.string("AppSupportURL").has_value(); }
  [[nodiscard]] app::Lifecycle& lifecycle() { return lifecycle_; }

  /// The application ends in order: the fans are asked back, and the model goes. Who wants that message to be
  /// sent runs the executors on until there is nothing left to do, or for as long as there is time.
  void terminate();

private:
  [[nodiscard]] app::AppModelDependencies dependencies(const Executors& executors,
                                                       const Environment& environment);

  hardware::Machine machine_;
  hardware::SMCConnection smc_;
  hardware::SensorReader sensors_;
  platform::SystemServices services_;
  runtime::SystemFiles files_;
  platform::InstalledBundle bundle_;
  app::Lifecycle lifecycle_;
  std::shared_ptr<app::AppModel> model_;
};

} // namespace ventolith::programs
