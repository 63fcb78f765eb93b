// A machine that a command reads: opened once, read as often as it likes.
#pragma once

#include "hardware/SMCConnection.h"
#include "hardware/SensorReader.h"
#include "programs/ventolithctl/Context.h"

#include <memory>

namespace ventolith::ctl {

class MachineReader {
public:
  /// Selects the context's machine and connects to it. Fails with MachineError. `context` outlives the
  /// reader. The connection is closed when the process ends.
  [[nodiscard]] static runtime::Async<std::unique_ptr<MachineReader>> open(Context& context);

  [[nodiscard]] runtime::Async<core::SensorSnapshot> snapshot() { return reader_.snapshot(); }
  [[nodiscard]] const std::string& machineName() const { return machine_.name; }

  // What an engine on this machine works with.
  [[nodiscard]] hardware::SMCConnection& smc() { return smc_; }
  [[nodiscard]] hardware::SensorReader& reader() { return reader_; }
  [[nodiscard]] const hardware::Privileges& privileges() const { return *machine_.privileges; }

private:
  MachineReader(const runtime::Executor& executor, hardware::Machine machine, Context& context);

  hardware::Machine machine_;
  hardware::SMCConnection smc_;
  hardware::SensorReader reader_;
};

} // namespace ventolith::ctl
