// ventolith-simulator: a simulated Mac behind a Unix socket, for the application, the helper and the tests
// of different processes to share.
#include "platform/simulated/MachineServer.h"
#include "platform/simulated/SimulatedMachine.h"
#include "platform/simulated/SocketMachine.h"
#include "platform/system/SystemClock.h"

#include <CLI/CLI.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

using namespace ventolith;

struct Options {
  std::string machine;
  std::string socket;
  std::string journal;
  std::string script;
  std::uint64_t seed = 1;
  std::string line; // To be sent to a simulator that runs.
};

constexpr const char* footer = R"(Examples:
  ventolith-simulator --machine macbook-pro --socket /tmp/mac --journal /tmp/mac.journal
  VENTOLITH_MACHINE=socket:/tmp/mac ventolithctl snapshot
  ventolith-simulator --socket /tmp/mac --send '{"load":0.9}'
  ventolith-simulator --socket /tmp/mac --send '{"temps":{"TCHP":96.7},"refuse":{"F0Md":5}}'

Lines, of a script file (where each needs "at") and of --send:
  {"at":3,"load":0.8}                      processors' load, 0 to 1
  {"at":3,"temps":{"TCHP":96.7}}           pin a sensor, by key or by hub label; null lets it go
  {"at":3,"refuse":{"F0Md":5}}             refuse writes with a result of 1 to 255; null ends it
  {"at":3,"driverFailure":{"F0Md":true}}   fail calls about a key ("write": its writes alone); false ends it
  {"at":3,"reclaim":[0]}                   the firmware takes a fan until its mode is written again
  {"at":3,"reclaim":{"0":4.5}}             the same, and ignores such writes for so many seconds
  {"at":3,"sensors":"gone"}                or "frozen", or "back"
  {"at":3,"removeKeys":["F0Md"]}           or "restoreKeys"
  {"at":3,"keyTypes":{"F0Md":"zzzz"}}      have a key claim another type; null ends it
"at" is in seconds since the simulator started.)";

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error(fmt::format("{}: cannot be opened", path));
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// A journal that cannot be gone on with ends, and the machine goes on.
void keepJournal(simulated::SimulatedMac& mac, const std::string& path) {
  const auto file = std::make_shared<std::ofstream>(path, std::ios::binary | std::ios::trunc);
  if (!*file) throw std::runtime_error(fmt::format("{}: cannot be written", path));
  mac.setJournal([file, path](const simulated::JournalEntry& entry) {
    if (!*file) return;
    *file << simulated::journalLine(entry) << '\n' << std::flush;
    if (!*file)
      std::cerr << fmt::format("ventolith-simulator: {}: cannot be written, the journal ends\n", path);
  });
}

void prepare(simulated::SimulatedMac& mac, const Options& options) {
  if (!options.journal.empty()) keepJournal(mac, options.journal);
  if (options.script.empty()) return;
  try {
    mac.runScript(readFile(options.script));
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(fmt::format("{}: {}", options.script, error.what()));
  }
}

int serve(const Options& options) {
  boost::asio::io_context context(1);
  platform::SystemClock clock(context.get_executor());
  const auto mac = simulated::makeSimulatedMac(options.machine, clock, options.seed);
  prepare(*mac, options);
  simulated::MachineServer server(context.get_executor(), mac, options.socket);
  boost::asio::signal_set signals(context, SIGINT, SIGTERM);
  signals.async_wait([&server](const boost::system::error_code&, int) { server.stop(); });
  std::cout << fmt::format("{}: serving {} ({})\n", options.socket, mac->machine().name, mac->machine().model)
            << std::flush;
  context.run();
  return EXIT_SUCCESS;
}

int send(const Options& options) {
  const auto refusal = simulated::sendScriptLine(options.socket, options.line);
  if (!refusal) return EXIT_SUCCESS;
  std::cerr << "ventolith-simulator: " << *refusal << '\n';
  return EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app("Serves a simulated Mac over a Unix socket, until it is interrupted.", "ventolith-simulator");
  app.footer(footer);
  const std::string machines = fmt::format("{}", fmt::join(simulated::builtInMachines(), ", "));
  auto* const machine =
      app.add_option("--machine", options.machine, fmt::format("one of {}; or a machine's file", machines));
  app.add_option("--socket", options.socket, "where to serve, or where to send to")->required();
  auto* const journal =
      app.add_option("--journal", options.journal, "write every call of the driver to this file");
  auto* const script =
      app.add_option("--script", options.script, "what is to happen to the machine, and when");
  auto* const seed = app.add_option("--seed", options.seed, "of the sensors' noise")->capture_default_str();
  auto* const line =
      app.add_option("--send", options.line, "have the simulator that runs at SOCKET do this line");
  for (auto* const ofServing : {machine, journal, script, seed})
    line->excludes(ofServing);
  CLI11_PARSE(app, argc, argv);
  try {
    if (*line) return send(options);
    if (!*machine) throw std::runtime_error("--machine is required (or --send)");
    return serve(options);
  } catch (const std::exception& error) {
    std::cerr << "ventolith-simulator: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
