// How many calls of one connection may be under way.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>

namespace ventolith::platform {

/// Messages come on threads of the system, faster than the engine's thread may take them: without a bound
/// here a client that floods the helper would fill its memory. Any thread.
class CallBudget {
public:
  /// More than the service takes of one caller, so that it is the service that refuses, and says so.
  static constexpr std::size_t most = 64;

  /// Taken until it goes; null is none.
  using Place = std::shared_ptr<void>;

  /// None when `most` are taken.
  [[nodiscard]] static Place enter(const std::shared_ptr<CallBudget>& budget) {
    if (budget->taken_.fetch_add(1) >= most) {
      budget->taken_.fetch_sub(1);
      return nullptr;
    }
    return {budget.get(), [budget](void*) { budget->taken_.fetch_sub(1); }};
  }

private:
  std::atomic<std::size_t> taken_ = 0;
};

} // namespace ventolith::platform
