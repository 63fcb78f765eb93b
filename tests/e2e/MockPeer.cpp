#include "e2e/MockPeer.h"

#include <unistd.h>

#include <exception>
#include <stdexcept>

namespace ventolith::e2e {

namespace {

bool isOwned(const PrivateBus& bus, const std::string& name) {
  bool is = false;
  const auto connection = connectTo(bus);
  sdbus::createProxy(*connection, "org.freedesktop.DBus", "/org/freedesktop/DBus")
      ->callMethod("NameHasOwner")
      .onInterface("org.freedesktop.DBus")
      .withArguments(name)
      .storeResultsTo(is);
  return is;
}

std::vector<std::string> templated(const std::string& name, const std::vector<std::string>& options) {
  std::vector<std::string> arguments = {"--template", name};
  arguments.insert(arguments.end(), options.begin(), options.end());
  return arguments;
}

} // namespace

NotAsRoot::NotAsRoot() : wasRoot_(::geteuid() == 0) {
  constexpr uid_t nobody = 65534;
  if (wasRoot_ && ::seteuid(nobody) != 0) throw std::runtime_error("another user cannot be played");
}

NotAsRoot::~NotAsRoot() {
  if (wasRoot_ && ::seteuid(0) != 0) std::terminate(); // Every later test would be another.
}

std::unique_ptr<sdbus::IConnection> connectTo(const PrivateBus& bus) {
  return sdbus::createSessionBusConnectionWithAddress(bus.address());
}

void waitUntilOwned(const PrivateBus& bus, const std::string& name, bool owned) {
  waitUntil(name, [&] { return isOwned(bus, name) == owned; });
}

MockPeer::MockPeer(const PrivateBus& bus, const MockedObject& object)
    : MockPeer(bus, object, Arguments{{object.name, object.path, object.interface, "--system"}}) {}

MockPeer::MockPeer(const PrivateBus& bus, const MockedObject& object, const std::string& templateName,
                   const std::vector<std::string>& options)
    : MockPeer(bus, object, Arguments{templated(templateName, options)}) {}

MockPeer::MockPeer(const PrivateBus& bus, const MockedObject& object, Arguments arguments) : object_(object) {
  arguments.all.insert(arguments.all.begin(), {"-m", "dbusmock"});
  program_ = std::make_unique<Program>("/usr/bin/python3", std::move(arguments.all),
                                       Environment{{"DBUS_SYSTEM_BUS_ADDRESS", bus.address()}});
  waitUntil(object.name, [&] {
    if (!program_->isRunning()) {
      throw std::runtime_error(
          "python3-dbusmock, which this test needs, does not run (scripts/install-packages "
          "test installs it): " +
          program_->err());
    }
    return isOwned(bus, object.name);
  });
  connection_ = connectTo(bus);
  proxy_ = sdbus::createProxy(*connection_, object.name, object.path);
}

void MockPeer::answer(const std::string& method, const std::string& in, const std::string& out,
                      const std::string& code) {
  control("AddMethod", object_.interface, method, in, out, code);
}

std::size_t MockPeer::count(const std::string& method) const {
  std::vector<sdbus::Struct<std::uint64_t, std::vector<sdbus::Variant>>> calls;
  proxy_->callMethod("GetMethodCalls")
      .onInterface("org.freedesktop.DBus.Mock")
      .withArguments(method)
      .storeResultsTo(calls);
  return calls.size();
}

std::vector<std::string> MockPeer::calls() const {
  std::vector<std::string> calls;
  for (const std::string& line : program_->outLines())
    calls.push_back(line.substr(line.find(' ') + 1)); // Behind the time.
  return calls;
}

} // namespace ventolith::e2e
