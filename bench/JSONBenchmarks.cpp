// The records' JSON, both ways, and the decoding of SMC values.
#include "Workload.h"

#include "core/ControlContract.h"
#include "hardware/SMCValue.h"

#include <benchmark/benchmark.h>

namespace ventolith::bench {
namespace {

void PlanToJSON(benchmark::State& state) {
  const auto plan = bench::plan(2, 40, 20);
  for (auto _ : state)
    benchmark::DoNotOptimize(core::encode(plan));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(core::encode(plan).size()));
}
BENCHMARK(PlanToJSON);

void PlanFromJSON(benchmark::State& state) {
  const auto text = core::encode(bench::plan(2, 40, 20));
  for (auto _ : state)
    benchmark::DoNotOptimize(core::decodeFanControlPlan(text));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(PlanFromJSON);

core::ControlState heldState() {
  core::ControlState held;
  held.perFanMode = {{0, core::ControlMode::curve}, {1, core::ControlMode::manual}};
  held.targets = {{0, 3800}, {1, 2400}};
  held.isHolding = true;
  return held;
}

void StateToJSON(benchmark::State& state) {
  const auto held = heldState();
  for (auto _ : state)
    benchmark::DoNotOptimize(core::encode(held));
}
BENCHMARK(StateToJSON);

void StateFromJSON(benchmark::State& state) {
  const auto text = core::encode(heldState());
  for (auto _ : state)
    benchmark::DoNotOptimize(core::decodeControlState(text));
}
BENCHMARK(StateFromJSON);

void SMCDecode(benchmark::State& state) {
  const auto bytes = hardware::encodeFloat(1600);
  const auto type = hardware::packKey("flt ");
  for (auto _ : state)
    benchmark::DoNotOptimize(hardware::decodeSMCValue(bytes, 4, type));
}
BENCHMARK(SMCDecode);

} // namespace
} // namespace ventolith::bench
