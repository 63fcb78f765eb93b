// What the system offers around the helper: the line between application and helper, permission, sleep, and
// the helper's registration.
#pragma once

#include "helper/link/DaemonService.h"
#include "helper/link/HelperChannel.h"
#include "helper/link/HelperListener.h"
#include "helper/link/HelperSurroundings.h"
#include "runtime/Clock.h"

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace ventolith::platform {

/// Nobody can be reached, or be listened to; says why.
class ServiceError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// Another helper serves this machine.
class AnotherHelperError : public ServiceError {
public:
  using ServiceError::ServiceError;
};

struct ServiceOptions {
  /// The name of a mach service in the user's own domain; none is the helper's in the system's.
  std::optional<std::string> busAddress;
  /// A helper program that runs as an agent of the user's, for development; none is the system's daemon.
  std::optional<std::string> helperProgram;
};

/// All that it gives outlives neither this object nor `clock`, and belongs to the thread of `executor`.
class SystemServices {
public:
  SystemServices(const runtime::Executor& executor, runtime::Clock& clock, ServiceOptions options);
  SystemServices(const SystemServices&) = delete;
  SystemServices& operator=(const SystemServices&) = delete;
  ~SystemServices();

  /// The application's end of the line.
  [[nodiscard]] helper::HelperChannelFactory helperChannels();

  /// The helper's end, in a process that launchd has started as the helper: messages to it wait until the
  /// listener is resumed. Fails with AnotherHelperError, in a process that was started otherwise while a
  /// helper runs, and with ServiceError.
  [[nodiscard]] std::unique_ptr<helper::HelperListener> claimListener();

  /// Whether another process runs as the helper. Waits for nobody.
  [[nodiscard]] bool isHelperPresent() const;

  /// Admits whom the listener has let in.
  [[nodiscard]] std::unique_ptr<helper::CallerAuthorizer> policyAuthorizer();
  /// Of those, whoever runs as the user of this process: for a helper that is no system service.
  [[nodiscard]] std::unique_ptr<helper::CallerAuthorizer> sameUserAuthorizer();

  [[nodiscard]] std::unique_ptr<helper::SleepEvents> sleepEvents();
  [[nodiscard]] std::unique_ptr<helper::ServiceSupervisor> supervisor();
  [[nodiscard]] std::unique_ptr<helper::DaemonService> daemonService();

private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

} // namespace ventolith::platform
