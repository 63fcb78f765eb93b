// The calls of one channel that wait for their replies.
#pragma once

#include "helper/link/Completion.h"
#include "helper/link/HelperMessage.h"
#include "runtime/Async.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace ventolith::platform {

/// Each ends once: by its reply, by its failure, or by the channel's end, whichever is told first. Belongs to
/// one thread; what the system calls back knows a call by its number.
class HelperCalls {
public:
  using Reply = std::optional<helper::HelperReply>;

  struct Call {
    std::uint64_t number;
    runtime::Async<Reply> reply;
  };

  explicit HelperCalls(runtime::Executor executor) : executor_(std::move(executor)) {}

  [[nodiscard]] Call begin() {
    const auto waiting = std::make_shared<helper::Completion<Reply>>(executor_);
    const std::uint64_t number = ++calls_;
    waiting_.emplace(number, waiting);
    return {number, helper::Completion<Reply>::valueOf(waiting)};
  }

  /// None: it could not be delivered, or was refused.
  void end(std::uint64_t number, Reply reply) {
    const auto call = waiting_.extract(number);
    if (!call.empty()) call.mapped()->complete(std::move(reply));
  }

  void endAll() {
    for (const auto& [number, call] : std::exchange(waiting_, {}))
      call->complete(std::nullopt);
  }

private:
  runtime::Executor executor_;
  std::uint64_t calls_ = 0;
  std::map<std::uint64_t, std::shared_ptr<helper::Completion<Reply>>> waiting_;
};

} // namespace ventolith::platform
