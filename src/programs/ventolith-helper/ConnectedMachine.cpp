#include "programs/ventolith-helper/ConnectedMachine.h"

#include "programs/common/MachineSelection.h"

#include <fmt/format.h>

#include <utility>

namespace ventolith::programs {

ConnectedMachine::ConnectedMachine(const runtime::Executor& executor, hardware::Machine machine,
                                   runtime::Clock& clock, helper::HelperLog& log)
    : machine_(std::move(machine)),
      smc_(executor, *machine_.smc),
      sensors_(executor, smc_, *machine_.hid, clock, [&log](const std::string& line) { log.note(line); }) {}

runtime::Async<std::unique_ptr<ConnectedMachine>>
ConnectedMachine::connect(hardware::Machine machine, runtime::Clock& clock, helper::HelperLog& log) {
  const runtime::Executor executor = co_await boost::asio::this_coro::executor;
  std::unique_ptr<ConnectedMachine> connected(new ConnectedMachine(executor, std::move(machine), clock, log));
  if (const auto error = co_await connected->smc_.open())
    throw MachineError(fmt::format("{}: {}", connected->machine_.name, error->description()));
  co_return connected;
}

} // namespace ventolith::programs
