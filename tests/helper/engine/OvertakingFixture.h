// The engine, where something overtakes what is under way at a chosen write.
#pragma once

#include "helper/engine/EngineFixture.h"

namespace ventolith::helper {

using Log = std::vector<std::string>;

class OvertakingFixture : public EngineTest {
protected:
  /// Starts `work` at the moment when `write` is about to be answered for the first time.
  void at(const std::string& write, std::function<Async<void>()> work) {
    smc.beforeWrite = [this, write, work = std::move(work),
                       isDone = false](const std::string& asked) mutable {
      if (asked != write || std::exchange(isDone, true)) return;
      logAtStart_ = smc.log.size();
      runtime::start(context.get_executor(), "what overtakes", work());
    };
  }
  Async<void> apply(FanControlPlan plan) { co_await controller->applyPlan(std::move(plan)); }

  /// The writes since the overtaking began.
  [[nodiscard]] Log writesSince() const {
    Log writes;
    for (std::size_t place = logAtStart_; place < smc.log.size(); ++place) {
      if (smc.log[place].back() != '?') writes.push_back(smc.log[place]);
    }
    return writes;
  }
  [[nodiscard]] Log writesTo(const std::string& key) const {
    Log found;
    for (const std::string& write : smc.writes()) {
      if (write.starts_with(key + "=")) found.push_back(write);
    }
    return found;
  }
  [[nodiscard]] std::string lastWriteTo(const std::string& key) const {
    const Log found = writesTo(key);
    return found.empty() ? "none" : found.back();
  }

private:
  std::size_t logAtStart_ = 0;
};

} // namespace ventolith::helper
