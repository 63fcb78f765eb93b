// The duty to answer a message.
#pragma once

#include "helper/link/HelperMessage.h"
#include "platform/macos/service/Budget.h"

#include <functional>
#include <optional>
#include <utility>

namespace ventolith::platform {

/// Answers exactly once: whoever drops it, on whatever way, has refused. Any thread, one at a time.
class PendingAnswer {
public:
  /// Called with none where the message is refused. Empty for a message that nobody answers.
  using Answer = std::function<void(std::optional<helper::HelperReply>)>;

  PendingAnswer(Answer answer, Budget::Place place) : answer_(std::move(answer)), place_(std::move(place)) {}
  PendingAnswer(PendingAnswer&& other) noexcept
      : answer_(std::exchange(other.answer_, nullptr)), place_(std::move(other.place_)) {}
  PendingAnswer& operator=(PendingAnswer&&) = delete;
  ~PendingAnswer() { give(std::nullopt); }

  void give(std::optional<helper::HelperReply> reply) {
    if (const Answer answer = std::exchange(answer_, nullptr)) answer(std::move(reply));
  }

private:
  Answer answer_;
  Budget::Place place_; // None if there was no more room.
};

} // namespace ventolith::platform
