#include "programs/ventolithctl/Replay.h"

#include "core/NumberText.h"
#include "core/Visitor.h"
#include "runtime/Time.h"

#include <fmt/ranges.h>

#include <iterator>

namespace ventolith::ctl {

namespace {

void append(fmt::memory_buffer& text, std::string_view what) {
  text.append(what.data(), what.data() + what.size());
}

void appendDecision(const core::FanDecision& decision, fmt::memory_buffer& text) {
  std::visit(core::Visitor{
                 [&](const core::FanDecision::Target& target) {
                   fmt::format_to(std::back_inserter(text), "{{\"target\":{{\"rpm\":{}}}}}", target.rpm);
                 },
                 [&](const core::FanDecision::ReleaseToAuto&) { append(text, "{\"releaseToAuto\":{}}"); },
                 [&](const core::FanDecision::IdleStopped&) { append(text, "{\"idleStopped\":{}}"); },
             },
             decision.value);
}

/// {"0":value,"1":value}, each value appended by `appendValue`.
template <class Map, class AppendValue>
void appendByFan(const Map& map, fmt::memory_buffer& text, AppendValue appendValue) {
  std::string_view separator = "{\"";
  for (const auto& [fan, value] : map) {
    append(text, separator);
    fmt::format_to(std::back_inserter(text), "{}\":", fan);
    appendValue(value);
    separator = ",\"";
  }
  append(text, map.empty() ? "{}" : "}");
}

void appendActions(const core::FanHoldActions& actions, fmt::memory_buffer& text) {
  const auto end = std::back_inserter(text);
  fmt::format_to(end, "{{\"toClaim\":[{}],\"toRelease\":[{}],\"targets\":", fmt::join(actions.toClaim, ","),
                 fmt::join(actions.toRelease, ","));
  appendByFan(actions.targets, text, [&](double rpm) { fmt::format_to(end, "{}", rpm); });
  fmt::format_to(end, ",\"forceTestEnabled\":{},\"stoppedFans\":[{}],\"isGlobalIdle\":{}}}",
                 actions.forceTestEnabled, fmt::join(actions.stoppedFans, ","), actions.isGlobalIdle);
}

} // namespace

ReplayTick Replay::step(const TraceTick& tick) {
  if (tick.reset) evaluator_.reset();
  if (tick.plan) plan_ = *tick.plan;
  const runtime::Instant now(runtime::fromSeconds(tick.seconds));
  ReplayTick result{
      .seconds = tick.seconds, .decisions = evaluator_.evaluate(plan_, tick.snapshot, now), .actions = {}};
  result.actions = core::FanHoldPlanner::actions(result.decisions, claimedFans_);
  claimedFans_.insert(result.actions.toClaim.begin(), result.actions.toClaim.end());
  for (const core::FanID fan : result.actions.toRelease)
    claimedFans_.erase(fan);
  return result;
}

void appendJSONLine(const ReplayTick& tick, fmt::memory_buffer& text) {
  fmt::format_to(std::back_inserter(text), "{{\"t\":{},\"decisions\":", core::fractionText(tick.seconds));
  appendByFan(tick.decisions, text,
              [&](const core::FanDecision& decision) { appendDecision(decision, text); });
  append(text, ",\"actions\":");
  appendActions(tick.actions, text);
  append(text, "}\n");
}

} // namespace ventolith::ctl
