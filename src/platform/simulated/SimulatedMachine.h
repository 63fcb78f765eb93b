// A simulated machine as programs and tests get one: by name, as the seams that they know.
#pragma once

#include "hardware/Machine.h"
#include "platform/simulated/SimulatedMac.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ventolith::simulated {

/// The names of the machines that are built in.
[[nodiscard]] std::vector<std::string> builtInMachines();

/// Makes the machine that is built in under a name, or that a file describes: what holds a slash or ends
/// in ".json" is a file. `clock` outlives it. Fails with std::runtime_error that says what is wrong, and
/// where in the file.
[[nodiscard]] std::shared_ptr<SimulatedMac> makeSimulatedMac(std::string_view nameOrPath,
                                                             runtime::Clock& clock, std::uint64_t seed);

/// One more client of `mac`. It runs on the thread that the machine belongs to.
[[nodiscard]] std::unique_ptr<hardware::SMCUserClient> smcClient(std::shared_ptr<SimulatedMac> mac);
[[nodiscard]] std::unique_ptr<hardware::HIDBridge> hidBridge(std::shared_ptr<SimulatedMac> mac);

/// Who talks to a simulated machine may always control its fans.
[[nodiscard]] std::unique_ptr<hardware::Privileges> simulatedPrivileges();

/// All of it put together.
[[nodiscard]] hardware::Machine simulatedMachine(std::shared_ptr<SimulatedMac> mac);

} // namespace ventolith::simulated
