// One tick of the policy, and how its cost grows.
#include "Workload.h"

#include <benchmark/benchmark.h>

namespace ventolith::bench {
namespace {

void tick(benchmark::State& state, std::int64_t fans, std::int64_t sensors, std::int64_t rules) {
  const auto plan = bench::plan(fans, sensors, rules);
  const auto cool = snapshot(fans, sensors, 50);
  const auto warm = snapshot(fans, sensors, 52);
  core::PlanEvaluator evaluator;
  auto now = runtime::Instant(std::chrono::hours(1));
  bool isWarm = false;
  for (auto _ : state) {
    benchmark::DoNotOptimize(evaluator.evaluate(plan, isWarm ? warm : cool, now));
    isWarm = !isWarm;
    now += std::chrono::milliseconds(1500);
  }
}

void EvaluatorTick(benchmark::State& state) {
  tick(state, 2, 40, 20);
}
BENCHMARK(EvaluatorTick)->Name("EvaluatorTick/2fans/40sensors/20rules");

void EvaluatorTickBySensors(benchmark::State& state) {
  tick(state, 2, state.range(0), 0);
  state.SetComplexityN(state.range(0));
}
BENCHMARK(EvaluatorTickBySensors)->RangeMultiplier(2)->Range(16, 1024)->Complexity(benchmark::oN);

void EvaluatorTickByRules(benchmark::State& state) {
  tick(state, 2, 40, state.range(0));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(EvaluatorTickByRules)->RangeMultiplier(2)->Range(16, 1024)->Complexity(benchmark::oN);

void EvaluatorTickByFans(benchmark::State& state) {
  tick(state, state.range(0), 1, 0);
  state.SetComplexityN(state.range(0));
}
BENCHMARK(EvaluatorTickByFans)->RangeMultiplier(2)->Range(16, 1024)->Complexity(benchmark::oN);

void CurvePercent(benchmark::State& state) {
  const auto curve = bench::curve();
  double celsius = 25;
  for (auto _ : state) {
    benchmark::DoNotOptimize(curve.percent(celsius));
    celsius = celsius >= 95 ? 25 : celsius + 0.1;
  }
}
BENCHMARK(CurvePercent);

void Planner(benchmark::State& state) {
  const core::FanDecisions decisions = {{0, core::FanDecision::target(3000)},
                                        {1, core::FanDecision::idleStopped()}};
  for (auto _ : state)
    benchmark::DoNotOptimize(core::FanHoldPlanner::actions(decisions, {0}));
}
BENCHMARK(Planner);

} // namespace
} // namespace ventolith::bench
