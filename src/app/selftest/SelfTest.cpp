#include "app/selftest/SelfTest.h"

#include "app/selftest/ControlSequence.h"
#include "app/selftest/HardwareReport.h"
#include "app/selftest/PolicySelfTests.h"
#include "core/PreviewController.h"

#include <algorithm>

namespace ventolith::app {

bool wantsSelfTest(const std::vector<std::string_view>& arguments) {
  return std::find(arguments.begin(), arguments.end(), "--selftest") != arguments.end();
}

runtime::Async<bool> runSelfTest(runtime::Executor executor, runtime::Clock& clock,
                                 hardware::Machine& machine, SelfTestOutput& output) {
  const auto reading = co_await readHardware(executor, clock, machine, output);
  if (!reading) co_return false;
  output.print("=== Ventolith --selftest ===");
  printHardwareReport(*reading, output);

  core::PreviewController controller(executor, clock,
                                     [&output](const std::string& line) { output.print(line); });
  co_return co_await runChecks(executor, clock, controller, controller.log(), output);
}

runtime::Async<bool> runChecks(runtime::Executor executor, runtime::Clock& clock,
                               core::FanControlling& controller, const std::vector<std::string>& log,
                               SelfTestOutput& output) {
  const bool sequenceOK = co_await runControlSequence(controller, log, output);
  const bool configOK = runControlConfigSelfTest(clock, output);
  const bool plumbingOK = co_await runPlanPlumbingSelfTest(executor, clock, output);

  const bool allOK = sequenceOK && configOK && plumbingOK;
  output.print(allOK ? "=== Ventolith --selftest PASSED ===" : "=== Ventolith --selftest FAILED ===");
  co_return allOK;
}

} // namespace ventolith::app
