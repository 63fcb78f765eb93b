#include "programs/ventolithctl/ControlWords.h"

#include "core/Visitor.h"
#include "programs/ventolithctl/Context.h"
#include "programs/ventolithctl/TextLayout.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

namespace ventolith::ctl {

using core::ControlResult;
using core::ControlState;

ExitStatus statusOf(const ControlResult& result) {
  constexpr int firstOfCommands = 10;
  if (result == ControlResult::applied) return ExitStatus::done;
  return static_cast<ExitStatus>(firstOfCommands + static_cast<int>(result.xpcCode()));
}

namespace {

std::string plainReason(ControlResult::Plain plain) {
  switch (plain) {
  case ControlResult::Plain::applied: return "the command took effect";
  case ControlResult::Plain::acquiring: return "accepted, and the fans are still being taken over";
  case ControlResult::Plain::timedOut: return "a fan did not come under control in time";
  case ControlResult::Plain::reclaimed:
    return "the fans went back to the firmware before they were taken over";
  case ControlResult::Plain::notPrivileged: return "not allowed to control the fans";
  case ControlResult::Plain::noHelper:
    return "no helper can be reached; \"ventolithctl helper install\" installs and starts it";
  }
  return "an unknown result";
}

bool isStopped(const ControlState& state, core::FanID fan) {
  return state.stoppedFans &&
         std::find(state.stoppedFans->begin(), state.stoppedFans->end(), fan) != state.stoppedFans->end();
}

std::string fanSentence(const ControlState& state, core::FanID fan, core::ControlMode mode) {
  if (!state.isHolding) return fmt::format("Fan {} should be held, and is not ({}).\n", fan, label(mode));
  if (isStopped(state, fan)) return fmt::format("Fan {} is stopped ({}).\n", fan, label(mode));
  const auto target = state.targets.find(fan);
  if (target == state.targets.end()) return fmt::format("Fan {} has no target yet ({}).\n", fan, label(mode));
  return fmt::format("Fan {} is held at {} RPM ({}).\n", fan, target->second, label(mode));
}

} // namespace

std::string reasonText(const ControlResult& result) {
  // The reason did not travel.
  if (result == ControlResult::fromXPCCode(ControlResult::failed("").xpcCode())) return "the command failed";
  return std::visit(core::Visitor{[](const ControlResult::Rejected& rejected) {
                                    return rejected.code == 0
                                               ? std::string("the hardware refused a write")
                                               : fmt::format("the hardware refused a write (code {})",
                                                             rejected.code);
                                  },
                                  [](const ControlResult::Failed& failed) {
                                    return "the command failed: " + printable(failed.message);
                                  },
                                  [](ControlResult::Plain plain) { return plainReason(plain); }},
                    result.value);
}

std::string stateSentences(const ControlState& state) {
  std::string text;
  for (const auto& [fan, mode] : state.perFanMode)
    text += fanSentence(state, fan, mode);
  for (const core::FanID fan : state.stoppedFans.value_or(std::vector<core::FanID>())) {
    if (!state.perFanMode.contains(fan)) text += fmt::format("Fan {} is stopped.\n", fan);
  }
  if (text.empty()) text = "No fan is held.\n";
  if (state.lastError) text += fmt::format("Its last error: {}\n", printable(*state.lastError));
  return text;
}

} // namespace ventolith::ctl
