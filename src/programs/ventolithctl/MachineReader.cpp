#include "programs/ventolithctl/MachineReader.h"

#include <fmt/format.h>

namespace ventolith::ctl {

namespace {

hardware::Machine select(Context& context) {
  try {
    return context.selectMachine();
  } catch (const std::exception& error) {
    throw MachineError(error.what());
  }
}

} // namespace

MachineReader::MachineReader(const runtime::Executor& executor, hardware::Machine machine, Context& context)
    : machine_(std::move(machine)),
      smc_(executor, *machine_.smc),
      // Which way the temperatures came shows in the sensors' ids: a line about it would only be in the way.
      reader_(executor, smc_, *machine_.hid, context.clock, [](const std::string&) {}) {}

runtime::Async<std::unique_ptr<MachineReader>> MachineReader::open(Context& context) {
  const runtime::Executor executor = co_await boost::asio::this_coro::executor;
  std::unique_ptr<MachineReader> reader(new MachineReader(executor, select(context), context));
  if (const auto error = co_await reader->smc_.open()) {
    throw MachineError(fmt::format("{}: {}", reader->machineName(), error->description()));
  }
  co_return reader;
}

} // namespace ventolith::ctl
