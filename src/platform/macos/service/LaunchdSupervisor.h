// launchd, which starts a helper again by itself and wants to hear nothing from it.
#pragma once

#include "helper/link/HelperSurroundings.h"

namespace ventolith::platform {

class LaunchdSupervisor final : public helper::ServiceSupervisor {
public:
  void ready() override {}
  void stopping() override {}
  [[nodiscard]] runtime::Duration watchdogInterval() const override { return runtime::Duration::zero(); }
  void setWatched(bool) override {}
  void alive() override {}
};

} // namespace ventolith::platform
