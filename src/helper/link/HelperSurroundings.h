// What a helper needs of the system around it, besides its listener.
#pragma once

#include "helper/link/HelperListener.h"
#include "runtime/Async.h"
#include "runtime/StopToken.h"
#include "runtime/Time.h"

#include <functional>

namespace ventolith::helper {

/// Who may control the fans.
class CallerAuthorizer {
public:
  CallerAuthorizer() = default;
  CallerAuthorizer(const CallerAuthorizer&) = delete;
  CallerAuthorizer& operator=(const CallerAuthorizer&) = delete;
  virtual ~CallerAuthorizer() = default;

  /// May wait for a person to answer, if the caller does. No for a caller that is gone, when nobody can be
  /// asked, and as soon as `stop` is requested. Never throws.
  virtual runtime::Async<bool> mayControlFans(HelperCaller caller, runtime::StopToken stop) = 0;
};

/// The machine's going to sleep and waking up.
class SleepEvents {
public:
  struct Handlers {
    /// Before sleep, which waits for it, though for no more than a few seconds.
    std::function<runtime::Async<void>()> willSleep;
    std::function<void()> didWake;
  };

  SleepEvents() = default;
  SleepEvents(const SleepEvents&) = delete;
  SleepEvents& operator=(const SleepEvents&) = delete;
  virtual ~SleepEvents() = default;

  /// Observes until this object goes. Where nothing tells of sleep, no handler is ever called.
  virtual void observe(Handlers handlers) = 0;
};

/// The service manager that started the helper, and starts it again when it fails. Where there is none, the
/// calls do nothing.
class ServiceSupervisor {
public:
  ServiceSupervisor() = default;
  ServiceSupervisor(const ServiceSupervisor&) = delete;
  ServiceSupervisor& operator=(const ServiceSupervisor&) = delete;
  virtual ~ServiceSupervisor() = default;

  virtual void ready() = 0;
  virtual void stopping() = 0;

  /// How long `alive` may fail to come before the helper is killed while it is watched; zero where nobody
  /// watches.
  [[nodiscard]] virtual runtime::Duration watchdogInterval() const = 0;
  /// Starts and ends the watch. Not watched at first.
  virtual void setWatched(bool watched) = 0;
  virtual void alive() = 0;
};

} // namespace ventolith::helper
