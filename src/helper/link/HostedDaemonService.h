// A registration service as the main executor holds it.
#pragma once

#include "helper/link/DaemonService.h"

#include <memory>

namespace ventolith::helper {

/// Carries each operation to the executor that a service belongs to, where it also lets go of it. What is
/// under way keeps the service until it is done.
class HostedDaemonService final : public DaemonService {
public:
  HostedDaemonService(runtime::Executor home, std::unique_ptr<DaemonService> service);
  ~HostedDaemonService() override;

  runtime::Async<DaemonStatus> status() override;
  runtime::Async<ErrorText> registerDaemon() override;
  runtime::Async<ErrorText> unregisterDaemon() override;
  void openSystemSettings() override;

private:
  runtime::Executor home_;
  std::shared_ptr<DaemonService> service_;
};

} // namespace ventolith::helper
