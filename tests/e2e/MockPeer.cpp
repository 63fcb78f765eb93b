#include "e2e/MockPeer.h"

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

} // namespace

std::unique_ptr<sdbus::IConnection> connectTo(const PrivateBus& bus) {
  return sdbus::createSessionBusConnectionWithAddress(bus.address());
}

void waitUntilOwned(const PrivateBus& bus, const std::string& name, bool owned) {
  waitUntil(name, [&] { return isOwned(bus, name) == owned; });
}

MockPeer::MockPeer(const PrivateBus& bus, const MockedObject& object)
    : MockPeer(bus, object,
               std::vector<std::string>{object.name, object.path, object.interface, "--system"}) {}

MockPeer::MockPeer(const PrivateBus& bus, const MockedObject& object, const std::string& templateName)
    : MockPeer(bus, object, std::vector<std::string>{"--template", templateName}) {}

MockPeer::MockPeer(const PrivateBus& bus, const MockedObject& object, std::vector<std::string> arguments)
    : object_(object) {
  arguments.insert(arguments.begin(), {"-m", "dbusmock"});
  program_ = std::make_unique<Program>("/usr/bin/python3", std::move(arguments),
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
