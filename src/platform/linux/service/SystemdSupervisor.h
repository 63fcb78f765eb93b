// The service manager, as it is reached by whoever it started: one datagram a notification.
#pragma once

#include "helper/link/HelperSurroundings.h"

namespace ventolith::platform {

/// Reads at its start whether, and within what time, the service manager wants to hear from this process
/// (WATCHDOG_USEC, WATCHDOG_PID). Where NOTIFY_SOCKET is not set, nothing is sent.
///
/// A watch that is off is off on the other side too: the service manager's own timer is stopped, so that a
/// helper that holds nothing need not wake up to say so.
class SystemdSupervisor final : public helper::ServiceSupervisor {
public:
  SystemdSupervisor();

  void ready() override;
  void stopping() override;
  [[nodiscard]] runtime::Duration watchdogInterval() const override { return interval_; }
  void setWatched(bool watched) override;
  void alive() override;

private:
  [[nodiscard]] bool hasWatchdog() const { return interval_ > runtime::Duration::zero(); }

  runtime::Duration interval_;
};

} // namespace ventolith::platform
