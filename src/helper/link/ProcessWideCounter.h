// How often this process has asked a helper to end for an upgrade.
#pragma once

#include <cstdint>
#include <mutex>

namespace ventolith::helper {

/// Shared by all controllers of a process: the application may replace its controller, and the limit holds
/// across that. The one thing of the link that any thread may touch.
class ProcessWideCounter {
public:
  [[nodiscard]] std::int64_t count() const {
    const std::lock_guard guard(lock_);
    return count_;
  }
  void addOne() {
    const std::lock_guard guard(lock_);
    ++count_;
  }

private:
  mutable std::mutex lock_;
  std::int64_t count_ = 0;
};

[[nodiscard]] inline ProcessWideCounter& processWideUpgradeAttempts() {
  static ProcessWideCounter attempts;
  return attempts;
}

} // namespace ventolith::helper
