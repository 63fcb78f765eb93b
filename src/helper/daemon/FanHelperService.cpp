#include "helper/daemon/FanHelperService.h"

#include "core/Excerpt.h"
#include "core/Visitor.h"

#include <fmt/format.h>

#include <utility>

namespace ventolith::helper {

using core::ControlResult;
using runtime::Async;

namespace {

std::string shown(const HelperCaller& caller) {
  return core::excerpt(caller.name);
}

HelperAnswer codeOf(const ControlResult& result) {
  return replies::Code{result.xpcCode()};
}

Async<HelperAnswer> now(HelperReply reply) {
  co_return HelperAnswer(std::move(reply));
}

Async<HelperAnswer> coded(Async<ControlResult> command) {
  const ControlResult result = co_await std::move(command);
  co_return codeOf(result);
}

Async<HelperAnswer> done(Async<void> command) {
  co_await std::move(command);
  co_return HelperAnswer(replies::Done());
}

bool letsGo(const HelperMessage& message) {
  return std::holds_alternative<messages::RestoreAuto>(message) ||
         std::holds_alternative<messages::Automatic>(message);
}

std::size_t bodyBytes(const HelperMessage& message) {
  const auto* const config = std::get_if<messages::ApplyConfig>(&message);
  return config == nullptr ? 0 : config->plan.size();
}

} // namespace

FanHelperService::FanHelperService(Surroundings surroundings)
    : its_(std::move(surroundings)), callers_(its_.listener) {}

Async<HelperAnswer> FanHelperService::answer(HelperCaller caller, HelperMessage message) {
  if (std::holds_alternative<messages::Heartbeat>(message)) {
    const auto known = callers_.find(caller);
    if (known && known->isAdmitted && !isEnding_) co_await its_.fans.heartbeat();
    co_return std::nullopt;
  }
  if (auto refusal = refusalOf(caller, message)) co_return HelperAnswer(std::move(*refusal));
  if (!changesAnything(message)) co_return co_await perform(caller, message);
  co_return co_await change(std::move(caller), std::move(message));
}

void FanHelperService::callerIsGone(const HelperCaller& name) {
  complaints_.forget(name);
  const auto caller = callers_.take(name);
  if (!caller || caller->unanswered == 0) return;
  const std::size_t dropped = caller->order->size();
  its_.log.note(fmt::format("{} is gone: {} of its calls dropped, {} go on without an answer", shown(name),
                            dropped, caller->unanswered - dropped));
  caller->gone.requestStop();
}

/// What is refused whoever asks.
std::optional<Refusal> FanHelperService::refusalOf(const HelperCaller& name, const HelperMessage& message) {
  using Reason = Refusal::Reason;
  if (isEnding_ && changesAnything(message)) return Refusal{Reason::shuttingDown, "the helper is ending"};
  const auto caller = callers_.find(name);
  if (caller && caller->unanswered >= mostUnanswered) {
    return refuse(Reason::tooManyCalls, name, fmt::format("more than {} calls at once", mostUnanswered));
  }
  if (bodyBytes(message) > mostBodyBytes) {
    return refuse(Reason::bodyTooLarge, name, fmt::format("a body of more than {} bytes", mostBodyBytes));
  }
  if (changesAnything(message) && !hasRoomFor(caller.get(), message))
    return refuse(Reason::tooManyCalls, name, "too many calls of all clients at once");
  if (bodyBytes(message) > 0) complaints_.settle(Reason::bodyTooLarge, name);
  return std::nullopt;
}

/// Strangers that fill the house do not keep a caller who is admitted from its commands, such as the one that
/// lets the fans go: its own bound is enough for those.
bool FanHelperService::hasRoomFor(const KnownCaller* caller, const HelperMessage& change) const {
  const Callers::Load& load = callers_.load();
  const bool isAdmitted = caller != nullptr && caller->isAdmitted;
  if (load.calls >= mostUnansweredOfAll && !isAdmitted) return false;
  return bodyBytes(change) <= mostBodyBytesOfAll - load.bytes;
}

Refusal FanHelperService::refuse(Refusal::Reason reason, const HelperCaller& name, std::string text) {
  if (complaints_.isNew(reason, name)) its_.log.warn(fmt::format("{} is refused: {}", shown(name), text));
  return {reason, std::move(text)};
}

Async<HelperAnswer> FanHelperService::change(HelperCaller name, HelperMessage message) {
  const std::size_t bytes = bodyBytes(message);
  const auto caller = callers_.beginCall(name, bytes);
  HelperAnswer answer = co_await changeInOrder(name, std::move(message), caller);
  callers_.endCall(name, *caller, bytes);
  if (caller->unanswered == 0) complaints_.settle(Refusal::Reason::tooManyCalls, name);
  if (caller->gone.stopRequested()) co_return std::nullopt;
  co_return answer;
}

Async<HelperAnswer> FanHelperService::changeInOrder(HelperCaller name, HelperMessage message,
                                                    std::shared_ptr<KnownCaller> caller) {
  const auto order = caller->order;
  const runtime::WaitingRow::Place place = order->enter();
  const bool wasAdmitted = caller->isAdmitted;
  const bool isAllowed = co_await its_.authorizer.mayControlFans(name, caller->gone.token());
  co_await runtime::WaitingRow::turn(order, place);
  caller->isAdmitted = isAllowed;
  // From here up to where the fans hear of it nothing waits: the next change comes after.
  if (caller->gone.stopRequested()) {
    // A client that gives its fans back as it leaves has not waited for permission.
    if (wasAdmitted && letsGo(message) && !isEnding_) co_await perform(name, message);
    co_return std::nullopt;
  }
  if (isEnding_) co_return HelperAnswer(Refusal{Refusal::Reason::shuttingDown, "the helper is ending"});
  if (!isAllowed) co_return answerWithoutPermission(name, message);
  complaints_.settle(Refusal::Reason::notAuthorized, name);
  co_return co_await perform(name, message);
}

HelperAnswer FanHelperService::answerWithoutPermission(const HelperCaller& name,
                                                       const HelperMessage& message) {
  Refusal refusal = refuse(Refusal::Reason::notAuthorized, name, "it may not control the fans");
  const bool hasNoCode = std::holds_alternative<messages::RestoreAuto>(message) ||
                         std::holds_alternative<messages::ShutdownForUpgrade>(message);
  if (hasNoCode) return refusal;
  return codeOf(ControlResult::notPrivileged);
}

/// `name` and `message` belong to the caller, which waits.
Async<HelperAnswer> FanHelperService::perform(const HelperCaller& name, HelperMessage& message) {
  core::FanControlling& fans = its_.fans;
  return std::visit(
      core::Visitor{
          [this](messages::HelperVersion&) { return now(replies::Version{its_.buildIdentifier}); },
          [this](messages::ShutdownForUpgrade&) { return makeRoom(); },
          [&fans](messages::SetManualRPM& its) { return coded(fans.setManual(its.fan, its.rpm)); },
          [&fans](messages::SetPercent& its) { return coded(fans.setPercent(its.fan, its.percent)); },
          [&fans](messages::FullBlast&) { return coded(fans.fullBlast()); },
          [&fans](messages::Automatic&) { return coded(fans.automatic()); },
          [&](messages::ApplyConfig& its) { return performPlan(name, its.plan); },
          [&fans](messages::RestoreAuto&) { return done(fans.restoreAuto()); },
          [&fans](messages::Heartbeat&) { return done(fans.heartbeat()); },
          [this](messages::ReadState&) {
            return now(replies::State{core::encode(its_.fans.currentState())});
          }},
      message);
}

Async<HelperAnswer> FanHelperService::performPlan(const HelperCaller& name, const std::string& text) {
  std::optional<core::FanControlPlan> plan;
  try {
    plan = core::decodeFanControlPlan(text);
  } catch (const core::DecodeError& error) {
    its_.log.warn(fmt::format("{} sent what is no plan: {}", shown(name), error.what()));
  }
  if (!plan) co_return codeOf(ControlResult::failed("no plan"));
  const ControlResult result = co_await its_.fans.applyPlan(std::move(*plan));
  co_return codeOf(result);
}

/// For the build that is to follow. Fans that refuse to go back do not keep this one: the next start gives
/// them back again.
Async<HelperAnswer> FanHelperService::makeRoom() {
  refuseChanges();
  its_.log.note("another build is to follow: the fans go back and this one ends");
  if (const auto error = co_await its_.fans.giveEveryFanBack())
    its_.log.warn("ending though not every fan is back: " + *error);
  its_.madeRoom();
  co_return HelperAnswer(replies::Done());
}

} // namespace ventolith::helper
