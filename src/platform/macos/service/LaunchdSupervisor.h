// launchd, which starts a helper again by itself; and what it does not do: to end one that hangs.
#pragma once

#include "helper/link/HelperSurroundings.h"
#include "platform/macos/service/MachService.h"

#include <memory>

namespace ventolith::platform {

/// launchd wants to hear nothing, and never looks whether a daemon still works. So this process watches
/// itself, from a thread of the system's: where no sign of life comes in time, it ends itself as a crash
/// does, and the helper that launchd starts next gives the fans back first of all. Time during which the
/// machine sleeps does not count. A helper for development may be stopped in a debugger, and is not watched.
///
/// Belongs to one thread.
class LaunchdSupervisor final : public helper::ServiceSupervisor {
public:
  explicit LaunchdSupervisor(MachService::Domain domain);
  ~LaunchdSupervisor() override;

  void ready() override {}
  void stopping() override {}
  [[nodiscard]] runtime::Duration watchdogInterval() const override;
  void setWatched(bool watched) override;
  void alive() override;

private:
  class Watch;

  std::unique_ptr<Watch> watch_; // None for a helper that is not watched.
};

} // namespace ventolith::platform
