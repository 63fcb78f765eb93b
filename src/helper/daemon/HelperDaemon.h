// The helper's life: from the fans' first handing back to their last.
#pragma once

#include "helper/daemon/FanHelperService.h"
#include "helper/daemon/FansThroughSleep.h"
#include "helper/daemon/WatchedEngine.h"
#include "runtime/Event.h"

#include <optional>
#include <string>

namespace ventolith::helper {

/// Everything that a helper is but its process. Idle, with nothing held, it waits on no timer.
///
/// Belongs to the thread of its executor.
class HelperDaemon {
public:
  struct Machine {
    hardware::SMCWriting& smc; // Open.
    hardware::SensorReading& sensors;
    const hardware::Privileges& privileges;
  };
  struct Surroundings {
    HelperListener& listener; // Claimed, and not resumed.
    CallerAuthorizer& authorizer;
    SleepEvents& sleepEvents;
    ServiceSupervisor& supervisor;
    HelperLog& log;
  };

  enum class End {
    asked,   ///< By the stop token.
    upgrade, ///< By a client, for another build.
    lost,    ///< Nobody can reach this helper any more.
  };
  struct Outcome {
    End end;
    bool areFansBack;
  };

  /// What is referred to outlives this object, and this object everything that it started.
  HelperDaemon(const runtime::Executor& executor, runtime::Clock& clock, Machine machine,
               Surroundings surroundings, std::string buildIdentifier);

  /// Gives every fan back, serves until it is to end, and gives every fan back. Runs once.
  runtime::Async<Outcome> run(runtime::StopToken stop);

private:
  runtime::Async<void> recover();
  void serve();
  void endFor(End end);
  runtime::Async<bool> giveFansBack();

  runtime::Clock& clock_;
  Machine machine_;
  Surroundings around_;
  WatchedEngine engine_;
  FansThroughSleep fans_;
  FanHelperService service_;
  runtime::Event ended_;
  End end_ = End::asked; // Of the first reason.
};

} // namespace ventolith::helper
