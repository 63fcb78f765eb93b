// Permission by who one is: for a helper that is no system service, and asks no system's policy.
#pragma once

#include "helper/link/HelperSurroundings.h"
#include "platform/linux/service/BusConnection.h"

namespace ventolith::platform {

/// Admits the callers that run as the user of this process. Asks the bus each time.
class SameUserAuthorizer final : public helper::CallerAuthorizer {
public:
  /// `bus` is the one that the callers are on, and outlives this object.
  explicit SameUserAuthorizer(Bus& bus) : bus_(bus) {}

  runtime::Async<bool> mayControlFans(helper::HelperCaller caller, runtime::StopToken stop) override;

private:
  Bus& bus_;
};

} // namespace ventolith::platform
