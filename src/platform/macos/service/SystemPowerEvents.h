// Sleep and wake-up, as the power management of IOKit tells them.
#pragma once

#include "helper/link/HelperSurroundings.h"

#include <memory>

namespace ventolith::platform {

/// The machine waits with its sleep until `willSleep` has ended, and is told so once, also where that fails
/// or never began; after ten seconds it is told so even if the executor's thread hangs. Whether it may sleep
/// at all is not for this process to say. The notices come on a thread of the system's, and do nothing there
/// but post. A wake-up in the dark, in which nobody uses the machine, is none: the system tells of none.
///
/// Belongs to the thread of `executor`, where the handlers run, one at a time, in the order of the notices.
class SystemPowerEvents final : public helper::SleepEvents {
public:
  explicit SystemPowerEvents(runtime::Executor executor);
  ~SystemPowerEvents() override;

  /// Where the system takes no registration, that is reported on standard error, and nothing is ever called.
  void observe(Handlers handlers) override;

private:
  class Registration;

  runtime::Executor executor_;
  std::unique_ptr<Registration> registration_; // None before `observe`.
};

} // namespace ventolith::platform
