// Permission by the system's policy, which may ask a person.
#pragma once

#include "helper/link/HelperSurroundings.h"
#include "platform/linux/service/BusConnection.h"

#include <memory>
#include <string>

namespace ventolith::platform {

/// Asks polkit about each call, for the action "com.ventolith.helper.control-fans"; polkit remembers what it
/// was told for as long as its policy says. Who asks waits, nobody else does.
///
/// Where polkit cannot answer, root alone is admitted, who could do all of it anyway. The first such failure
/// in a row is reported on standard error.
class PolkitAuthorizer final : public helper::CallerAuthorizer {
public:
  /// `bus` is the one that the callers are on, and outlives this object.
  explicit PolkitAuthorizer(Bus& bus) : bus_(bus) {}

  runtime::Async<bool> mayControlFans(helper::HelperCaller caller) override;

private:
  struct Failures {
    bool isReported = false; // Since the last answer.
  };

  static runtime::Async<bool> admitRoot(std::shared_ptr<BusConnection> connection,
                                        helper::HelperCaller caller, std::string failure,
                                        std::shared_ptr<Failures> failures);

  Bus& bus_;
  std::shared_ptr<Failures> failures_ =
      std::make_shared<Failures>(); // Outlives a call that outlives this object.
};

} // namespace ventolith::platform
