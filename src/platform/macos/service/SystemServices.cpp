#include "platform/macos/service/SystemServices.h"

#include "platform/macos/service/HelperPresence.h"
#include "platform/macos/service/LaunchAgentService.h"
#include "platform/macos/service/LaunchdSupervisor.h"
#include "platform/macos/service/MachService.h"
#include "platform/macos/service/PresentCallers.h"
#include "platform/macos/service/SMAppServiceDaemon.h"
#include "platform/macos/service/SystemPowerEvents.h"
#include "platform/macos/service/XPCHelperChannel.h"
#include "platform/macos/service/XPCHelperListener.h"

#include <unistd.h>

#include <utility>

namespace ventolith::platform {

struct SystemServices::Parts {
  Parts(runtime::Executor onExecutor, runtime::Clock& withClock, ServiceOptions options)
      : executor(std::move(onExecutor)),
        clock(withClock),
        service(machServiceOf(options.busAddress, options.helperProgram.has_value())),
        helperProgram(std::move(options.helperProgram)) {}

  runtime::Executor executor;
  runtime::Clock& clock;
  MachService service;
  std::optional<std::string> helperProgram;
  std::shared_ptr<PresentCallers> callers = std::make_shared<PresentCallers>();
};

SystemServices::SystemServices(const runtime::Executor& executor, runtime::Clock& clock,
                               ServiceOptions options)
    : parts_(std::make_unique<Parts>(executor, clock, std::move(options))) {}

SystemServices::~SystemServices() = default;

helper::HelperChannelFactory SystemServices::helperChannels() {
  return
      [parts = parts_.get()] { return std::make_unique<XPCHelperChannel>(parts->executor, parts->service); };
}

std::unique_ptr<helper::HelperListener> SystemServices::claimListener() {
  // launchd starts one process a job: only who was started otherwise can find another helper.
  if (!isJobOf(parts_->service) && isHelperPresent())
    throw AnotherHelperError("Another helper serves this machine already.");
  return std::make_unique<XPCHelperListener>(parts_->executor, parts_->service, parts_->callers);
}

bool SystemServices::isHelperPresent() const {
  return platform::isHelperPresent(parts_->service.domain);
}

std::unique_ptr<helper::CallerAuthorizer> SystemServices::policyAuthorizer() {
  return std::make_unique<AdmittedAuthorizer>(parts_->callers);
}

std::unique_ptr<helper::CallerAuthorizer> SystemServices::sameUserAuthorizer() {
  return std::make_unique<SameUserAuthorizer>(parts_->callers, ::geteuid());
}

std::unique_ptr<helper::SleepEvents> SystemServices::sleepEvents() {
  return std::make_unique<SystemPowerEvents>(parts_->executor);
}

std::unique_ptr<helper::ServiceSupervisor> SystemServices::supervisor() {
  return std::make_unique<LaunchdSupervisor>(parts_->service.domain);
}

std::unique_ptr<helper::DaemonService> SystemServices::daemonService() {
  if (!parts_->helperProgram) return std::make_unique<SMAppServiceDaemon>(parts_->executor);
  return std::make_unique<LaunchAgentService>(parts_->executor, parts_->clock, parts_->service,
                                              *parts_->helperProgram);
}

} // namespace ventolith::platform
