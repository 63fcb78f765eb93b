// The helper's registration with the system that starts it.
#pragma once

#include "runtime/Async.h"

#include <optional>
#include <string>

namespace ventolith::helper {

enum class DaemonStatus {
  notRegistered = 0,
  enabled = 1,          ///< Registered and allowed: the one status in which there is a helper to talk to.
  requiresApproval = 2, ///< Somebody has to allow it first.
  notFound = 3,         ///< The system knows no such service.
};

class DaemonService {
public:
  using ErrorText = std::optional<std::string>;

  DaemonService() = default;
  DaemonService(const DaemonService&) = delete;
  DaemonService& operator=(const DaemonService&) = delete;
  virtual ~DaemonService() = default;

  virtual runtime::Async<DaemonStatus> status() = 0;

  /// Registers and starts the helper. The text of what went wrong, or none; a refusal by the user shows in
  /// `status`.
  virtual runtime::Async<ErrorText> registerDaemon() = 0;
  /// Stops and unregisters it.
  virtual runtime::Async<ErrorText> unregisterDaemon() = 0;

  /// Leads the user to where the helper is allowed. Has done so when a `status` that is asked for afterwards
  /// is answered.
  virtual void openSystemSettings() = 0;
};

} // namespace ventolith::helper
