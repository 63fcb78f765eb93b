// A machine as the programs see it: what lies below the seams, put together by the platform.
#pragma once

#include "hardware/HIDBridge.h"
#include "hardware/SMCUserClient.h"

#include <memory>
#include <string>

namespace ventolith::hardware {

/// Whether this process may write to the fans.
class Privileges {
public:
  virtual ~Privileges() = default;
  [[nodiscard]] virtual bool mayControlFans() const = 0;
};

struct Machine {
  std::string name; // For people: "simulated macbook-pro", "hwmon at /sys/class/hwmon".
  std::unique_ptr<SMCUserClient> smc;
  std::unique_ptr<HIDBridge> hid;
  std::unique_ptr<Privileges> privileges;
};

} // namespace ventolith::hardware
