// A plan of any text: refused with an error, or a record that comes back the same, and that the evaluator
// can run on without a target outside the fan's range.
#include "core/FanHoldPlanner.h"

#include <cstdlib>

using namespace ventolith;

namespace {

core::SensorSnapshot snapshotAt(double celsius) {
  core::SensorSnapshot snapshot;
  for (core::FanID fan = 0; fan < 3; ++fan)
    snapshot.fans.push_back({fan, "Fan", 2000, 2000, 8000, 0});
  snapshot.temps.push_back({"TCHP", "CPU", celsius, core::SensorCategory::cpu, core::SensorSource::smc});
  return snapshot;
}

void expectTargetsInRange(const core::FanDecisions& decisions) {
  for (const auto& [fan, decision] : decisions) {
    const auto* target = std::get_if<core::FanDecision::Target>(&decision.value);
    if (target != nullptr && !(target->rpm >= 2000 && target->rpm <= 8000)) std::abort();
  }
}

void evaluate(const core::FanControlPlan& plan) {
  core::PlanEvaluator evaluator;
  auto now = runtime::Instant(std::chrono::hours(1));
  for (const double celsius : {20.0, 96.0, 50.0, 50.0}) {
    const auto decisions = evaluator.evaluate(plan, snapshotAt(celsius), now);
    expectTargetsInRange(decisions);
    if (core::FanHoldPlanner::actions(decisions, {0, 7}).toRelease.empty())
      std::abort(); // Fan 7 always goes.
    now += std::chrono::seconds(6);
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const auto plan = core::decodeFanControlPlan({reinterpret_cast<const char*>(data), size});
    if (core::decodeFanControlPlan(core::encode(plan)) != plan) std::abort();
    evaluate(plan);
  } catch (const core::DecodeError&) {
    return 0; // Refused: as good.
  }
  return 0;
}
