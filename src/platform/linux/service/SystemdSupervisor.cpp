#include "platform/linux/service/SystemdSupervisor.h"

#include <fmt/format.h>
#include <systemd/sd-daemon.h>

#include <chrono>
#include <cstdint>
#include <string>

namespace ventolith::platform {

namespace {

/// A notification that cannot be delivered has nobody to be reported to.
void notify(const std::string& state) {
  static_cast<void>(::sd_notify(0, state.c_str()));
}

runtime::Duration intervalOfThisProcess() {
  std::uint64_t microseconds = 0;
  if (::sd_watchdog_enabled(0, &microseconds) <= 0) return runtime::Duration::zero();
  return std::chrono::microseconds(microseconds);
}

} // namespace

SystemdSupervisor::SystemdSupervisor() : interval_(intervalOfThisProcess()) {}

void SystemdSupervisor::ready() {
  // The service manager starts to watch as soon as a service is ready, unless the same notification says
  // otherwise.
  notify(hasWatchdog() ? "READY=1\nWATCHDOG_USEC=0" : "READY=1");
}

void SystemdSupervisor::stopping() {
  notify("STOPPING=1");
}

void SystemdSupervisor::setWatched(bool watched) {
  if (!hasWatchdog()) return;
  const auto interval = std::chrono::duration_cast<std::chrono::microseconds>(interval_);
  notify(watched ? fmt::format("WATCHDOG_USEC={}\nWATCHDOG=1", interval.count()) : "WATCHDOG_USEC=0");
}

void SystemdSupervisor::alive() {
  if (hasWatchdog()) notify("WATCHDOG=1");
}

} // namespace ventolith::platform
