// What a plan would do on a recorded run: the evaluator and the planner of the fan controller, in the
// time of the recording.
#pragma once

#include "core/FanHoldPlanner.h"
#include "core/PlanEvaluator.h"
#include "programs/ventolithctl/TraceLineParser.h"

#include <fmt/format.h>

#include <set>

namespace ventolith::ctl {

/// The answer to one line of a trace.
struct ReplayTick {
  double seconds = 0;
  core::FanDecisions decisions;
  core::FanHoldActions actions;
};

class Replay {
public:
  explicit Replay(core::FanControlPlan plan) : plan_(std::move(plan)) {}

  /// Every claim and release is taken to succeed at once: what one tick claims is held in the next.
  [[nodiscard]] ReplayTick step(const TraceTick& tick);

private:
  core::FanControlPlan plan_;
  core::PlanEvaluator evaluator_;
  std::set<core::FanID> claimedFans_;
};

/// Appends `tick` as a JSON object and an end of line.
void appendJSONLine(const ReplayTick& tick, fmt::memory_buffer& text);

} // namespace ventolith::ctl
