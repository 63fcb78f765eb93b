// A machine that the helper is connected to: what an engine works with.
#pragma once

#include "hardware/Machine.h"
#include "hardware/SMCConnection.h"
#include "hardware/SensorReader.h"
#include "helper/daemon/HelperLog.h"
#include "runtime/Clock.h"

#include <memory>

namespace ventolith::programs {

class ConnectedMachine {
public:
  /// Fails with MachineError. `clock` and `log` outlive the machine; the connection is closed with the
  /// process.
  [[nodiscard]] static runtime::Async<std::unique_ptr<ConnectedMachine>>
  connect(hardware::Machine machine, runtime::Clock& clock, helper::HelperLog& log);

  [[nodiscard]] hardware::SMCConnection& smc() { return smc_; }
  [[nodiscard]] hardware::SensorReader& sensors() { return sensors_; }
  [[nodiscard]] const hardware::Privileges& privileges() const { return *machine_.privileges; }

private:
  ConnectedMachine(const runtime::Executor& executor, hardware::Machine machine, runtime::Clock& clock,
                   helper::HelperLog& log);

  hardware::Machine machine_;
  hardware::SMCConnection smc_;
  hardware::SensorReader sensors_;
};

} // namespace ventolith::programs
