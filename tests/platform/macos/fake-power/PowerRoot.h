// The power management of a Mac, as far as who hears of sleep meets it.
#pragma once

#include <IOKit/pwr_mgt/IOPMLib.h>

#include <cstdint>
#include <string>
#include <vector>

namespace fake {

/// The one in force, from its making to its end. Keeps a log of what it was asked.
class PowerRoot {
public:
  PowerRoot();
  PowerRoot(const PowerRoot&) = delete;
  PowerRoot& operator=(const PowerRoot&) = delete;
  ~PowerRoot();

  /// A notice to whoever is registered and has said on which queue.
  void tell(natural_t message, std::intptr_t change = 0);

  bool takesRegistrations = true;
  std::vector<std::string> log;

  struct Registration {
    void* context = nullptr;
    IOServiceInterestCallback callback = nullptr;
    dispatch_queue_t queue = nullptr;
  };
  Registration registration;
  int queues = 0; // That were made and not released.
};

} // namespace fake
