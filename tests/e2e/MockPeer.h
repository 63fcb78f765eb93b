// A service of the system, played on a private bus by python3-dbusmock.
#pragma once

#include "e2e/PrivateBus.h"
#include "e2e/Program.h"

#include <sdbus-c++/IConnection.h>
#include <sdbus-c++/IProxy.h>
#include <sdbus-c++/sdbus-c++.h>

#include <memory>
#include <string>
#include <vector>

namespace ventolith::e2e {

struct MockedObject {
  std::string name;
  std::string path;
  std::string interface;
};

/// There from the start, and gone with this object. Fails with std::runtime_error where dbusmock cannot be
/// run.
class MockPeer {
public:
  /// An object that has no methods yet.
  MockPeer(const PrivateBus& bus, const MockedObject& object);
  /// The object as one of dbusmock's own templates makes it, with further options of dbusmock's.
  MockPeer(const PrivateBus& bus, const MockedObject& object, const std::string& templateName,
           const std::vector<std::string>& options = {});

  /// Has a method do what `code`, lines of Python, says: it takes `args`, and sets `ret`.
  void answer(const std::string& method, const std::string& in, const std::string& out,
              const std::string& code);

  /// Sends a signal of the object's interface.
  template <class... Values>
  void emit(const std::string& signal, const std::string& signature, const Values&... values) {
    control("EmitSignal", object_.interface, signal, signature,
            std::vector<sdbus::Variant>{sdbus::Variant(values)...});
  }

  /// How often the method, if it is one of `answer`, was called.
  [[nodiscard]] std::size_t count(const std::string& method) const;
  /// All such calls so far, in their order: each the method's name and its arguments, as Python writes them.
  [[nodiscard]] std::vector<std::string> calls() const;

  /// Calls a method by which the mock is controlled.
  template <class... Values>
  void control(const std::string& method, const Values&... values) const {
    proxy_->callMethod(method).onInterface("org.freedesktop.DBus.Mock").withArguments(values...);
  }
  /// The object, as every client sees it.
  [[nodiscard]] sdbus::IProxy& proxy() const { return *proxy_; }

  void kill() { program_.reset(); }

private:
  struct Arguments {
    std::vector<std::string> all;
  };
  MockPeer(const PrivateBus& bus, const MockedObject& object, Arguments arguments);

  MockedObject object_;
  std::unique_ptr<Program> program_;
  std::unique_ptr<sdbus::IConnection>
      connection_; // Without a loop of its own, which a lost bus would end the test by.
  std::unique_ptr<sdbus::IProxy> proxy_;
};

/// Somebody else's connection to the bus.
[[nodiscard]] std::unique_ptr<sdbus::IConnection> connectTo(const PrivateBus& bus);

/// For as long as it lives this process is another user than root, and what it opens belongs to that one.
/// Who is no root stays who he is.
class NotAsRoot {
public:
  NotAsRoot();
  NotAsRoot(const NotAsRoot&) = delete;
  NotAsRoot& operator=(const NotAsRoot&) = delete;
  ~NotAsRoot();

private:
  bool wasRoot_;
};

/// Waits until the name has an owner, or none.
void waitUntilOwned(const PrivateBus& bus, const std::string& name, bool isOwned);

} // namespace ventolith::e2e
