// What each system offers around the helper: the line between application and helper, permission, sleep, the
// service manager, and the helper's registration. Defined by the system's own folder.
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
  /// Where application and helper meet instead of at the system's own place: on Linux the address of a
  /// message bus, on macOS the name of a mach service in the user's own domain.
  std::optional<std::string> busAddress;
  /// A helper program for development, which runs as the user while it is registered; none is the system's
  /// service.
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

  /// The helper's end: from here on this process is the machine's helper, and messages to it wait until the
  /// listener is resumed. Fails with AnotherHelperError (on macOS, where launchd starts one helper at a time,
  /// only in a process that was started otherwise) and with ServiceError.
  [[nodiscard]] std::unique_ptr<helper::HelperListener> claimListener();

  /// Whether another process is the machine's helper, as far as can be told at once. Starts none. Blocks for
  /// two seconds at most; on Linux, no bus knows no helper.
  [[nodiscard]] bool isHelperPresent() const;

  /// The system's policy: polkit's word on Linux; on macOS, where the listener lets nobody else in, whoever
  /// is connected.
  [[nodiscard]] std::unique_ptr<helper::CallerAuthorizer> policyAuthorizer();
  /// Admits whoever runs as the user of this process: for a helper that is no system service.
  [[nodiscard]] std::unique_ptr<helper::CallerAuthorizer> sameUserAuthorizer();

  [[nodiscard]] std::unique_ptr<helper::SleepEvents> sleepEvents();
  [[nodiscard]] std::unique_ptr<helper::ServiceSupervisor> supervisor();
  [[nodiscard]] std::unique_ptr<helper::DaemonService> daemonService();

private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

} // namespace ventolith::platform
