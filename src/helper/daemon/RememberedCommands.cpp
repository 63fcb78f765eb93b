#include "helper/daemon/RememberedCommands.h"

#include "core/Visitor.h"

#include <utility>

namespace ventolith::helper {

namespace {

/// The one fan that a command is about.
std::optional<core::FanID> fanOf(const RememberedCommand& command) {
  using Fan = std::optional<core::FanID>;
  return std::visit(core::Visitor{[](const RememberedPlan&) { return Fan(); },
                                  [](const RememberedFullBlast&) { return Fan(); },
                                  [](const auto& ofOneFan) { return Fan(ofOneFan.fan); }},
                    command);
}

bool isMadeVoid(const RememberedCommand& earlier, const RememberedCommand& later) {
  if (std::holds_alternative<RememberedPlan>(later)) return true;
  if (std::holds_alternative<RememberedPlan>(earlier)) return false; // Its rules stay.
  if (std::holds_alternative<RememberedFullBlast>(later)) return true;
  return fanOf(earlier) && fanOf(earlier) == fanOf(later);
}

} // namespace

bool RememberedCommands::add(RememberedCommand command) {
  std::erase_if(commands_, [&command](const auto& earlier) { return isMadeVoid(earlier, command); });
  if (commands_.size() == most) return false;
  commands_.push_back(std::move(command));
  return true;
}

void RememberedCommands::putFirst(core::FanControlPlan plan) {
  commands_.push_front(RememberedPlan{std::move(plan)});
}

std::optional<RememberedCommand> RememberedCommands::takeFirst() {
  if (commands_.empty()) return std::nullopt;
  std::optional<RememberedCommand> first = std::move(commands_.front());
  commands_.pop_front();
  return first;
}

} // namespace ventolith::helper
