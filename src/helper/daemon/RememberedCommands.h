// Commands that wait for the machine to be awake again.
#pragma once

#include "core/FanControlPlan.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <variant>

namespace ventolith::helper {

struct RememberedPlan {
  core::FanControlPlan plan;
};
struct RememberedRPM {
  core::FanID fan;
  std::int64_t rpm;
};
struct RememberedPercent {
  core::FanID fan;
  double percent;
};
struct RememberedFullBlast {};

using RememberedCommand = std::variant<RememberedPlan, RememberedRPM, RememberedPercent, RememberedFullBlast>;

/// In the order in which they came, without those that a later one makes void: a plan is all there is, and of
/// the commands to one fan the last one counts.
class RememberedCommands {
public:
  static constexpr std::size_t most = 32;

  /// False, and nothing is remembered, when there are too many.
  [[nodiscard]] bool add(RememberedCommand command);
  /// What was in force before all of them.
  void putFirst(core::FanControlPlan plan);
  [[nodiscard]] std::optional<RememberedCommand> takeFirst();

  [[nodiscard]] bool isEmpty() const { return commands_.empty(); }
  void forget() { commands_.clear(); }

private:
  std::deque<RememberedCommand> commands_;
};

} // namespace ventolith::helper
