#include "programs/common/MachineSelection.h"

#include "platform/simulated/SimulatedMachine.h"
#include "platform/simulated/SocketMachine.h"
#include "platform/system/ThisComputer.h"

#include <fmt/format.h>

#include <cstdlib>
#include <string_view>

namespace ventolith::programs {

namespace {

constexpr const char* variable = "VENTOLITH_MACHINE";
constexpr std::string_view simulatedPrefix = "simulated:";
constexpr std::string_view socketPrefix = "socket:";
constexpr std::uint64_t simulationSeed = 1; // The same noise every time.

hardware::Machine machineOf(std::string_view choice, runtime::Clock& clock) {
  if (choice.starts_with(simulatedPrefix)) {
    choice.remove_prefix(simulatedPrefix.size());
    return simulated::simulatedMachine(simulated::makeSimulatedMac(choice, clock, simulationSeed));
  }
  if (choice.starts_with(socketPrefix)) {
    choice.remove_prefix(socketPrefix.size());
    return simulated::socketMachine(std::string(choice));
  }
  throw MachineError("expected simulated:NAME or socket:PATH");
}

} // namespace

std::optional<std::string> processEnvironment(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

hardware::Machine selectMachine(const Environment& environment, runtime::Clock& clock) {
  const auto choice = environment(variable).value_or("");
  if (choice.empty()) return platform::thisComputer();
  try {
    return machineOf(choice, clock);
  } catch (const std::exception& error) {
    throw MachineError(fmt::format("{}=\"{}\": {}", variable, choice, error.what()));
  }
}

} // namespace ventolith::programs
