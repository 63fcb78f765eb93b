#include "platform/macos/service/HelperIntake.h"

#include <fmt/format.h>

#include <optional>
#include <utility>
#include <variant>

namespace ventolith::platform {

using helper::HelperAnswer;
using helper::HelperCaller;
using helper::HelperMessage;
using helper::HelperReply;

namespace {

std::optional<HelperReply> replyIn(HelperAnswer answer) {
  if (!answer) return std::nullopt;
  auto* const reply = std::get_if<HelperReply>(&*answer);
  return reply == nullptr ? std::nullopt : std::optional(std::move(*reply));
}

} // namespace

HelperIntake::Caller::Caller(std::weak_ptr<HelperIntake> intake, std::shared_ptr<Doorway> doorway,
                             HelperCaller name)
    : intake_(std::move(intake)), doorway_(std::move(doorway)), name_(std::move(name)) {}

void HelperIntake::Caller::take(HelperMessage message, PendingAnswer::Answer answer) const {
  auto place = Budget::enter(budget_);
  const bool hasRoom = place != nullptr;
  PendingAnswer pending(std::move(answer), std::move(place));
  if (!hasRoom) return;
  doorway_->post(
      [weak = intake_, name = name_, message = std::move(message), pending = std::move(pending)]() mutable {
        if (const auto intake = weak.lock()) intake->begin(name, std::move(message), std::move(pending));
      });
}

void HelperIntake::Caller::gone() const {
  doorway_->post([weak = intake_, name = name_] {
    if (const auto intake = weak.lock()) intake->go(name);
  });
}

HelperIntake::HelperIntake(runtime::Executor executor, std::shared_ptr<PresentCallers> callers)
    : executor_(std::move(executor)),
      doorway_(std::make_shared<Doorway>(executor_)),
      callers_(std::move(callers)) {}

std::shared_ptr<HelperIntake::Caller> HelperIntake::admit(pid_t process, uid_t user,
                                                          std::function<void()> close) {
  Connection connection{.close = std::move(close), .place = Budget::enter(connectionBudget_)};
  if (connection.place == nullptr) return nullptr;
  HelperCaller name{fmt::format("connection {} of process {}", ++admissions_, process)};
  doorway_->post([weak = weak_from_this(), name, user, connection = std::move(connection)]() mutable {
    if (const auto intake = weak.lock()) intake->come(name, user, std::move(connection));
  });
  return std::make_shared<Caller>(weak_from_this(), doorway_, std::move(name));
}

void HelperIntake::come(const HelperCaller& caller, uid_t user, Connection connection) {
  callers_->add(caller, user);
  connections_.emplace(caller, std::move(connection));
}

void HelperIntake::begin(const HelperCaller& caller, HelperMessage message, PendingAnswer pending) {
  if (service_ == nullptr) return;
  const std::uint64_t number = ++calls_;
  unanswered_.emplace(number, std::move(pending));
  runtime::start(executor_, "a message's answer",
                 answer(weak_from_this(), number, caller, std::move(message), *service_));
}

runtime::Async<void> HelperIntake::answer(std::weak_ptr<HelperIntake> intake, std::uint64_t number,
                                          HelperCaller caller, HelperMessage message,
                                          helper::HelperService& service) {
  HelperAnswer answered = co_await service.answer(std::move(caller), std::move(message));
  if (const auto self = intake.lock()) self->finish(number, std::move(answered));
}

void HelperIntake::finish(std::uint64_t number, HelperAnswer answer) {
  auto pending = unanswered_.extract(number);
  if (!pending.empty()) pending.mapped().give(replyIn(std::move(answer)));
}

void HelperIntake::go(const HelperCaller& caller) {
  callers_->remove(caller);
  connections_.erase(caller);
  if (watched_.erase(caller) > 0 && service_ != nullptr) service_->callerIsGone(caller);
}

void HelperIntake::watch(const HelperCaller& caller) {
  if (connections_.contains(caller)) watched_.insert(caller);
}

std::size_t HelperIntake::stop() {
  doorway_->shut();
  service_ = nullptr;
  watched_.clear();
  unanswered_.clear();
  const auto connections = std::exchange(connections_, {});
  for (const auto& [caller, connection] : connections) {
    callers_->remove(caller);
    connection.close();
  }
  return connections.size();
}

} // namespace ventolith::platform
