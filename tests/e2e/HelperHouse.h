// A helper and what is around it: a simulated Mac, a private bus, clients, and strangers.
#pragma once

#include "e2e/Machines.h"
#include "e2e/MockPeer.h"
#include "e2e/PrivateBus.h"
#include "e2e/Program.h"

#include <sdbus-c++/sdbus-c++.h>

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ventolith::e2e {

/// Somebody on the bus who knows of the helper no more than its name and its ten messages. A call fails with
/// sdbus::Error.
class Peer {
public:
  explicit Peer(const std::string& address);

  /// A call with its arguments, answered by a Result.
  template <class Result, class... Arguments>
  Result call(const std::string& method, const Arguments&... arguments) const {
    Result result{};
    helper_->callMethod(method)
        .onInterface(interfaceName)
        .withTimeout(timeout)
        .withArguments(arguments...)
        .storeResultsTo(result);
    return result;
  }
  /// The same for a method without a result.
  void callForNothing(const std::string& method) const;
  /// The name of the error that a call without arguments ends with; empty for none.
  [[nodiscard]] std::string errorOf(const std::string& method) const;

  void heartbeat() const;
  [[nodiscard]] nlohmann::json state() const;

  /// For calls of another kind.
  [[nodiscard]] sdbus::IProxy& proxy() const { return *helper_; }

  static constexpr const char* interfaceName = "com.ventolith.FanHelperProtocol";
  static constexpr std::chrono::seconds timeout{20};

private:
  std::unique_ptr<sdbus::IProxy> helper_;
};

/// A polkit that says no to everybody, until it is told to say yes.
class MockPolkit {
public:
  explicit MockPolkit(const PrivateBus& bus);
  void setAdmitsAll(bool admits) const { peer_.control("AllowUnknown", admits); }

private:
  MockPeer peer_;
};

class HelperHouse {
public:
  /// With a quick MacBook Pro and nobody else on the bus.
  HelperHouse();

  [[nodiscard]] Simulator& mac() { return mac_; }
  [[nodiscard]] const Simulator& mac() const { return mac_; }
  [[nodiscard]] PrivateBus& bus() { return bus_; }
  [[nodiscard]] const std::filesystem::path& folder() const { return folder_.path(); }

  /// Leads a program to this Mac and this bus.
  [[nodiscard]] Environment environment() const;

  /// Starts a helper that admits this user, and waits until it serves.
  std::unique_ptr<Program> startHelper(const std::vector<std::string>& options = {"--allow-same-user"},
                                       const Streams& streams = {});
  /// The process of the helper that serves.
  [[nodiscard]] pid_t helperProcess() const;
  /// Waits until some helper tells its build, and returns that.
  std::string waitForHelper() const;

  /// Has a message to the helper start it, by this line of a shell.
  void activateBy(const std::string& line);

  /// Writes a plan and returns its file.
  std::filesystem::path plan(const std::map<int, int>& rpm) const;
  /// `ventolithctl` to its end.
  [[nodiscard]] Ended ctl(std::vector<std::string> arguments) const;
  /// `ventolithctl apply --hold` of fan 0 at 3000 RPM and fan 1 at 2500 RPM, as soon as both are held.
  std::unique_ptr<Program> startHolding();

  /// Until both fans are held, as `holder` has it, which does not end meanwhile.
  void waitUntilHeldBy(Program& holder) const;
  void waitUntilBack() const;
  /// By the last word that the Mac was given about each fan.
  [[nodiscard]] bool isEveryFanHeld() const { return everyFanHas("01"); }
  [[nodiscard]] bool isEveryFanBack() const { return everyFanHas("00"); }

private:
  [[nodiscard]] bool everyFanHas(const std::string& mode) const;

  TemporaryFolder folder_;
  Simulator mac_;
  PrivateBus bus_;
};

} // namespace ventolith::e2e
