// A message bus of a test's own: a real dbus-daemon behind a socket in a temporary folder.
#pragma once

#include "e2e/Program.h"

#include <memory>
#include <string>

namespace ventolith::e2e {

/// Runs from the start. Everybody may connect and send, own any name, and start services.
class PrivateBus {
public:
  PrivateBus();

  [[nodiscard]] const std::string& address() const { return address_; }

  /// A message to `name` starts `command` (a program's path and its arguments) when nobody owns the name.
  /// Takes the place of an earlier one for the same name.
  void addService(const std::string& name, const std::string& command);

  /// Ends it as a crash would. Connections to it are gone when this returns.
  void kill();
  /// Starts it again, at the same address.
  void restart();

  /// SIGSTOP and SIGCONT: a bus that stands still, and goes on.
  void signal(int number) const { daemon_->signal(number); }

private:
  void start();

  TemporaryFolder folder_;
  std::string address_;
  std::unique_ptr<Program> daemon_;
};

} // namespace ventolith::e2e
