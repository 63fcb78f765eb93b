// One whole round of the hold loop on the simulated MacBook Pro, in virtual time: the snapshot with its
// waits, the evaluation, the writes.
#include "Workload.h"

#include "helper/engine/LocalFanController.h"
#include "platform/simulated/SimulatedMachine.h"
#include "runtime/ManualClock.h"

#include <benchmark/benchmark.h>

namespace ventolith::bench {
namespace {

void HoldPass(benchmark::State& state) {
  boost::asio::io_context context(1);
  runtime::ManualClock clock(context);
  auto machine = simulated::simulatedMachine(simulated::makeSimulatedMac("macbook-pro", clock, 1));
  hardware::SMCConnection connection(context.get_executor(), *machine.smc);
  clock.run(connection.open());
  const auto controller = std::make_shared<helper::LocalFanController>(
      context.get_executor(), clock, connection, *machine.hid, *machine.privileges);
  clock.run(controller->applyPlan(plan(2, 0, 0)));
  for (auto _ : state) {
    clock.run(controller->heartbeat());
    clock.advance(helper::LocalFanController::holdPeriod + std::chrono::milliseconds(80));
    while (controller->stateStream().tryNext())
      continue;
  }
  if (!controller->currentState().isHolding) state.SkipWithError("the fans were not held to the end");
  clock.run(controller->restoreAuto());
}
BENCHMARK(HoldPass);

} // namespace
} // namespace ventolith::bench
