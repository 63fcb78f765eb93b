#include "helper/link/XPCFanController.h"

#include <boost/asio/post.hpp>

#include <stdexcept>
#include <utility>

namespace ventolith::helper {

using core::ControlResult;
using core::FanControlPlan;
using core::FanID;
using runtime::Async;

namespace {

/// The reply as a `Kind`; none if it is another, which is as good as no reply.
template <class Kind>
std::optional<Kind> replyAs(const std::optional<HelperReply>& reply) {
  const Kind* const expected = reply ? std::get_if<Kind>(&*reply) : nullptr;
  return expected != nullptr ? std::optional(*expected) : std::nullopt;
}

std::optional<std::string> encoded(const FanControlPlan& plan) {
  try {
    return core::encode(plan);
  } catch (const std::invalid_argument&) {
    return std::nullopt;
  }
}

std::optional<core::ControlState> decoded(const std::string& state) {
  try {
    return core::decodeControlState(state);
  } catch (const core::DecodeError&) {
    return std::nullopt;
  }
}

} // namespace

std::shared_ptr<XPCFanController> XPCFanController::make(const runtime::Executor& executor,
                                                         runtime::Executor mainExecutor,
                                                         runtime::Clock& clock, HelperChannelFactory channels,
                                                         XPCFanControllerOptions options,
                                                         ProcessWideCounter& attempts) {
  auto controller = std::make_shared<XPCFanController>(Key(), executor, std::move(mainExecutor), clock,
                                                       std::move(channels), std::move(options), attempts);
  controller->configureConnection();
  return controller;
}

XPCFanController::XPCFanController(Key, const runtime::Executor& executor, runtime::Executor mainExecutor,
                                   runtime::Clock& clock, HelperChannelFactory channels,
                                   XPCFanControllerOptions options, ProcessWideCounter& attempts)
    : serial_(executor),
      mainExecutor_(std::move(mainExecutor)),
      clock_(clock),
      channels_(std::move(channels)),
      statePollInterval_(options.statePollInterval),
      ownBuildVersion_(std::move(options.ownBuildVersion)),
      upgradeAttempts_(attempts),
      connection_(channels_()),
      reconciler_(options.maxUpgradeAttempts),
      commandOrder_(std::move(options.order)) {}

XPCFanController::~XPCFanController() {
  if (pollTask_) pollTask_->requestStop();
  connection_->invalidate();
}

Async<ControlResult> XPCFanController::setManual(FanID fan, std::int64_t rpm) {
  return command(messages::SetManualRPM{.fan = fan, .rpm = rpm}, StatePolling::started);
}

Async<ControlResult> XPCFanController::setPercent(FanID fan, double percent) {
  return command(messages::SetPercent{.fan = fan, .percent = percent}, StatePolling::started);
}

Async<ControlResult> XPCFanController::fullBlast() {
  return command(messages::FullBlast{}, StatePolling::started);
}

Async<ControlResult> XPCFanController::applyPlan(FanControlPlan plan) {
  auto text = encoded(plan);
  if (!text) {
    const auto failure = []() -> Async<ControlResult> {
      co_return ControlResult::failed("could not encode plan");
    };
    return failure();
  }
  return command(messages::ApplyConfig{.plan = std::move(*text)}, StatePolling::started);
}

Async<ControlResult> XPCFanController::automatic() {
  return command(messages::Automatic{}, StatePolling::asItIs);
}

Async<void> XPCFanController::restoreAuto() {
  return serial_.run(restoreAutoNow(weak_from_this()));
}

Async<void> XPCFanController::heartbeat() {
  return serial_.run(sendHeartbeat(weak_from_this()));
}

Async<std::optional<core::ControlState>> XPCFanController::readRemoteState() {
  return serial_.run(remoteState(weak_from_this()));
}

Async<std::optional<std::string>> XPCFanController::readRemoteVersion() {
  const auto read = [](Weak controller) -> Async<std::optional<std::string>> {
    co_return co_await versionOn(usableConnection(controller));
  };
  return serial_.run(read(weak_from_this()));
}

Async<ControlResult> XPCFanController::command(HelperMessage message, StatePolling polling) {
  return serial_.run(reconciledCommand(weak_from_this(), std::move(message), polling));
}

Async<ControlResult> XPCFanController::reconciledCommand(Weak controller, HelperMessage message,
                                                         StatePolling polling) {
  auto self = controller.lock();
  if (!self) co_return ControlResult::noHelper;
  const auto order = self->commandOrder_;
  const std::shared_ptr<runtime::WaitingRow> row(order, &order->row);
  const std::uint64_t restoresBefore = order->restores;
  const runtime::WaitingRow::Place place = row->enter();
  self = nullptr;
  co_await ensureHelperVersionReconciled(controller);
  co_await runtime::WaitingRow::turn(row, place);
  // From here up to where the connection has the message nothing waits: the next command comes after.
  self = controller.lock();
  if (!self) co_return ControlResult::noHelper;
  if (order->restores != restoresBefore) co_return ControlResult::acquiring;
  if (polling == StatePolling::started) self->ensureStatePollLoopRunning();
  self = nullptr;
  const auto code = replyAs<replies::Code>(co_await call(controller, std::move(message)));
  co_return code ? ControlResult::fromXPCCode(code->value) : ControlResult::noHelper;
}

Async<void> XPCFanController::restoreAutoNow(Weak controller) {
  if (const auto self = controller.lock()) ++self->commandOrder_->restores;
  co_await call(controller, messages::RestoreAuto{});
}

Async<void> XPCFanController::sendHeartbeat(Weak controller) {
  if (const Channel connection = usableConnection(controller)) connection->send(messages::Heartbeat{});
  co_return;
}

Async<std::optional<core::ControlState>> XPCFanController::remoteState(Weak controller) {
  const auto state = replyAs<replies::State>(co_await call(controller, messages::ReadState{}));
  co_return state ? decoded(state->json) : std::nullopt;
}

Async<std::optional<std::string>> XPCFanController::versionOn(Channel connection) {
  auto version = replyAs<replies::Version>(co_await callOn(connection, messages::HelperVersion{}));
  co_return version ? std::optional(std::move(version->identifier)) : std::nullopt;
}

Async<std::optional<HelperReply>> XPCFanController::call(Weak controller, HelperMessage message) {
  co_return co_await callOn(usableConnection(controller), std::move(message));
}

Async<std::optional<HelperReply>> XPCFanController::callOn(Channel connection, HelperMessage message) {
  if (!connection) co_return std::nullopt;
  co_return co_await connection->call(std::move(message));
}

void XPCFanController::startLater(std::string name, Async<void> work) const {
  auto begin = [executor = serial_.executor(), name = std::move(name), work = std::move(work)]() mutable {
    runtime::start(executor, std::move(name), std::move(work));
  };
  boost::asio::post(serial_.executor(), std::move(begin));
}

void XPCFanController::ensureStatePollLoopRunning() {
  if (pollTask_) return;
  pollTask_.emplace();
  startLater("the polling of the helper's state",
             statePollLoop(weak_from_this(), clock_, statePollInterval_, pollTask_->token()));
}

Async<void> XPCFanController::statePollLoop(Weak controller, runtime::Clock& clock,
                                            runtime::Duration interval, runtime::StopToken stop) {
  while (!stop.stopRequested()) {
    auto state = co_await remoteState(controller);
    if (const auto self = controller.lock(); self && state) self->stateStream_.yield(std::move(*state));
    co_await clock.sleep(interval, stop);
  }
}

} // namespace ventolith::helper
