// The SMC driver behind the fake IOKit: a simulated Mac, counted references, and what the test wants to fail.
#pragma once

#include "InForce.h"
#include "Objects.h"
#include "hardware/SMCParamStruct.h"
#include "platform/simulated/SimulatedMac.h"

#include <IOKit/IOKitLib.h>

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace ventolith::fake {

class Driver : public InForce<Driver> {
public:
  explicit Driver(std::shared_ptr<simulated::SimulatedMac> mac) : InForce(this), mac_(std::move(mac)) {}

  /// One call of the user client's method.
  struct Call {
    std::uint32_t selector;
    std::size_t inputSize;
    std::size_t outputSize;
    hardware::SMCParamStruct input;
    bool outputWasZero;
  };

  // What the test sets.
  bool isLoaded = true;
  std::optional<kern_return_t> openResult; // In place of an opening.
  std::optional<kern_return_t> callResult; // In place of a call.

  // What the sources under test did.
  std::vector<std::string> log; // Of looking up, opening and closing.
  std::vector<Call> calls;

  /// How many references to services, and how many connections, have not been given back.
  [[nodiscard]] std::size_t heldServices() const { return services_.size(); }
  [[nodiscard]] std::size_t openConnections() const { return connections_.size(); }

  // IOKit's functions.
  io_service_t find(mach_port_t mainPort, Object& matching);
  kern_return_t open(io_service_t service, task_port_t owner, std::uint32_t type, io_connect_t* connect);
  kern_return_t close(io_connect_t connect);
  kern_return_t release(io_object_t object);
  kern_return_t call(Call call, io_connect_t connect, hardware::SMCParamStruct& output);

private:
  std::shared_ptr<simulated::SimulatedMac> mac_;
  std::set<io_service_t> services_;
  std::set<io_connect_t> connections_;
};

} // namespace ventolith::fake
