#include "e2e/PrivateBus.h"

#include <fmt/format.h>
#include <sdbus-c++/IConnection.h>
#include <sdbus-c++/IProxy.h>

#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <vector>

namespace ventolith::e2e {

namespace fs = std::filesystem;

namespace {

// The limits are those of a user's own bus, which are wide enough for a thousand calls at once.
constexpr const char* configuration = R"(<busconfig>
  <listen>{0}</listen>
  <servicedir>{1}</servicedir>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_destination="*" eavesdrop="true"/>
    <allow receive_sender="*" eavesdrop="true"/>
  </policy>
  <limit name="max_replies_per_connection">50000</limit>
  <limit name="max_match_rules_per_connection">50000</limit>
</busconfig>
)";

} // namespace

PrivateBus::PrivateBus() {
  fs::permissions(folder_.path(), fs::perms::owner_all | fs::perms::group_exec | fs::perms::others_exec);
  const fs::path services = folder_.path() / "services";
  fs::create_directory(services);
  address_ = "unix:path=" + (folder_.path() / "bus").string();
  folder_.write("bus.conf", fmt::format(configuration, address_, services.string()));
  start();
}

void PrivateBus::start() {
  const fs::path socket = folder_.path() / "bus";
  fs::remove(socket);
  daemon_ = std::make_unique<Program>(
      "/usr/bin/dbus-daemon",
      std::vector<std::string>{"--config-file=" + (folder_.path() / "bus.conf").string(), "--nofork",
                               "--nopidfile", "--print-address"},
      Environment());
  waitUntil("a message bus", [&] {
    if (!daemon_->isRunning()) throw std::runtime_error("dbus-daemon does not run: " + daemon_->err());
    return !daemon_->outLines().empty(); // It tells its address once it listens.
  });
}

void PrivateBus::addService(const std::string& name, const std::string& command) {
  folder_.write("services/" + name + ".service",
                fmt::format("[D-BUS Service]\nName={}\nExec={}\n", name, command));
  sdbus::createProxy(sdbus::createSessionBusConnectionWithAddress(address_), "org.freedesktop.DBus",
                     "/org/freedesktop/DBus")
      ->callMethod("ReloadConfig")
      .onInterface("org.freedesktop.DBus");
}

void PrivateBus::kill() {
  daemon_.reset();
}

void PrivateBus::restart() {
  kill();
  start();
}

} // namespace ventolith::e2e
