// Which machine a program talks to.
#pragma once

#include "hardware/Machine.h"
#include "runtime/Clock.h"

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

namespace ventolith::programs {

/// A machine was asked for that cannot be had; says which and why.
class MachineError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

using Environment = std::function<std::optional<std::string>(const std::string& name)>;

/// The process's own environment.
[[nodiscard]] std::optional<std::string> processEnvironment(const std::string& name);

/// By VENTOLITH_MACHINE: unset or empty is this computer, `simulated:NAME` (or a machine file) a machine
/// in this process, `socket:PATH` a running ventolith-simulator. Fails with MachineError.
[[nodiscard]] hardware::Machine selectMachine(const Environment& environment, runtime::Clock& clock);

} // namespace ventolith::programs
