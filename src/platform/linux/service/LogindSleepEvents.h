// Sleep and wake-up, as logind tells them.
#pragma once

#include "helper/link/HelperSurroundings.h"
#include "platform/linux/service/BusConnection.h"

#include <memory>

namespace ventolith::platform {

/// Holds logind's leave to delay sleep (for as long as logind allows, five seconds unless configured), and
/// gives it back when `willSleep` has ended. Nothing is called, and nothing is reported, where there is no
/// logind; one that comes later, or comes again, is found. Wakes for nothing but these events.
class LogindSleepEvents final : public helper::SleepEvents {
public:
  /// `bus` outlives this object.
  LogindSleepEvents(runtime::Executor executor, Bus& bus) : executor_(std::move(executor)), bus_(bus) {}
  ~LogindSleepEvents() override;

  /// The handlers run on the executor, one at a time, in the order of the events.
  void observe(Handlers handlers) override;

private:
  struct Observation;

  runtime::Executor executor_;
  Bus& bus_;
  std::shared_ptr<Observation> observation_; // The loop that handles the events holds it too.
};

} // namespace ventolith::platform
