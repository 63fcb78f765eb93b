#include "platform/linux/service/SystemServices.h"

#include "platform/linux/service/BusConnection.h"
#include "platform/linux/service/ChildDaemonService.h"
#include "platform/linux/service/DBusHelperChannel.h"
#include "platform/linux/service/DBusHelperListener.h"
#include "platform/linux/service/HelperPresence.h"
#include "platform/linux/service/LogindSleepEvents.h"
#include "platform/linux/service/PolkitAuthorizer.h"
#include "platform/linux/service/SameUserAuthorizer.h"
#include "platform/linux/service/SystemdDaemonService.h"
#include "platform/linux/service/SystemdSupervisor.h"

#include <fmt/format.h>

#include <chrono>
#include <utility>

namespace ventolith::platform {

struct SystemServices::Parts {
  Parts(const runtime::Executor& onExecutor, runtime::Clock& withClock, ServiceOptions given)
      : executor(onExecutor),
        clock(withClock),
        options(std::move(given)),
        bus(executor, options.busAddress) {}

  runtime::Executor executor;
  runtime::Clock& clock;
  ServiceOptions options;
  Bus bus;
};

SystemServices::SystemServices(const runtime::Executor& executor, runtime::Clock& clock,
                               ServiceOptions options)
    : parts_(std::make_unique<Parts>(executor, clock, std::move(options))) {}

SystemServices::~SystemServices() = default;

helper::HelperChannelFactory SystemServices::helperChannels() {
  return [parts = parts_.get()] { return std::make_unique<DBusHelperChannel>(parts->executor, parts->bus); };
}

std::unique_ptr<helper::HelperListener> SystemServices::claimListener() {
  auto connection = parts_->bus.connection();
  if (!connection) {
    throw ServiceError(fmt::format("The message bus cannot be reached: {}.", connection.error().message));
  }
  return std::make_unique<DBusHelperListener>(parts_->executor, std::move(connection.value()));
}

bool SystemServices::isHelperPresent() const {
  return platform::isHelperPresent(parts_->options.busAddress, std::chrono::seconds(2));
}

std::unique_ptr<helper::CallerAuthorizer> SystemServices::policyAuthorizer() {
  return std::make_unique<PolkitAuthorizer>(parts_->bus, parts_->clock);
}

std::unique_ptr<helper::CallerAuthorizer> SystemServices::sameUserAuthorizer() {
  return std::make_unique<SameUserAuthorizer>(parts_->bus);
}

std::unique_ptr<helper::SleepEvents> SystemServices::sleepEvents() {
  return std::make_unique<LogindSleepEvents>(parts_->executor, parts_->bus);
}

std::unique_ptr<helper::ServiceSupervisor> SystemServices::supervisor() {
  return std::make_unique<SystemdSupervisor>();
}

std::unique_ptr<helper::DaemonService> SystemServices::daemonService() {
  if (parts_->options.helperProgram) {
    return std::make_unique<ChildDaemonService>(parts_->executor, parts_->clock,
                                                *parts_->options.helperProgram);
  }
  return std::make_unique<SystemdDaemonService>(parts_->executor, parts_->bus, parts_->clock);
}

} // namespace ventolith::platform
