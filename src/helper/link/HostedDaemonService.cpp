#include "helper/link/HostedDaemonService.h"

#include <boost/asio/post.hpp>

#include <utility>

namespace ventolith::helper {

using runtime::Async;

namespace {

template <class Result>
using Operation = Async<Result> (DaemonService::*)();

template <class Result>
Async<Result> perform(std::shared_ptr<DaemonService> service, Operation<Result> operation) {
  co_return co_await ((*service).*operation)();
}

template <class Result>
Async<Result> performAt(const runtime::Executor& home, std::shared_ptr<DaemonService> service,
                        Operation<Result> operation) {
  return boost::asio::co_spawn(home, perform(std::move(service), operation), boost::asio::use_awaitable);
}

} // namespace

HostedDaemonService::HostedDaemonService(runtime::Executor home, std::unique_ptr<DaemonService> service)
    : home_(std::move(home)), service_(std::move(service)) {}

HostedDaemonService::~HostedDaemonService() {
  boost::asio::post(home_, [service = std::move(service_)]() mutable { service.reset(); });
}

Async<DaemonStatus> HostedDaemonService::status() {
  return performAt(home_, service_, &DaemonService::status);
}

Async<DaemonService::ErrorText> HostedDaemonService::registerDaemon() {
  return performAt(home_, service_, &DaemonService::registerDaemon);
}

Async<DaemonService::ErrorText> HostedDaemonService::unregisterDaemon() {
  return performAt(home_, service_, &DaemonService::unregisterDaemon);
}

void HostedDaemonService::openSystemSettings() {
  boost::asio::post(home_, [service = service_] { service->openSystemSettings(); });
}

} // namespace ventolith::helper
