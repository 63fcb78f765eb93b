// Permission by the system's policy, which may ask a person.
#pragma once

#include "helper/link/HelperSurroundings.h"
#include "platform/linux/service/BusConnection.h"
#include "runtime/Clock.h"

#include <memory>
#include <string>

namespace ventolith::platform {

/// Asks polkit about each call, for the action "com.ventolith.helper.control-fans"; polkit remembers what it
/// was told for as long as its policy says. Who asks waits, nobody else does. A person is asked only after
/// polkit has said that it takes one, and for a caller that waits for it.
///
/// Root, who could do all of it anyway, is admitted without a question. Where polkit does not answer nobody
/// else is; that is reported on standard error, however often it happens, once in `reportInterval` at most.
class PolkitAuthorizer final : public helper::CallerAuthorizer {
public:
  /// How long polkit may take for an answer that no person has to give.
  static constexpr runtime::Duration answerLimit = std::chrono::seconds(5);
  static constexpr runtime::Duration reportInterval = std::chrono::minutes(1);

  /// `bus` is the one that the callers are on. It outlives this object, and `clock` the calls too.
  PolkitAuthorizer(Bus& bus, runtime::Clock& clock);

  runtime::Async<bool> mayControlFans(helper::HelperCaller caller, runtime::StopToken stop) override;

private:
  class Asking;

  Bus& bus_;
  std::shared_ptr<Asking> asking_; // Outlives this object in a call that does.
};

} // namespace ventolith::platform
