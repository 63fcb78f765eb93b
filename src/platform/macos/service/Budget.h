// How much of something may be under way.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>

namespace ventolith::platform {

/// Messages come on threads of the system, faster than the engine's thread may take them: without a bound
/// here a client that floods the helper would fill its memory. Any thread.
class Budget {
public:
  explicit Budget(std::size_t most) : most_(most) {}

  /// Taken until it goes; null is none.
  using Place = std::shared_ptr<void>;

  /// None when all are taken.
  [[nodiscard]] static Place enter(const std::shared_ptr<Budget>& budget) {
    if (budget->taken_.fetch_add(1) >= budget->most_) {
      budget->taken_.fetch_sub(1);
      return nullptr;
    }
    return {budget.get(), [budget](void*) { budget->taken_.fetch_sub(1); }};
  }

private:
  const std::size_t most_;
  std::atomic<std::size_t> taken_ = 0;
};

} // namespace ventolith::platform
