// The user's defaults of the fake system.
#pragma once

#include "InForce.h"

#include <map>
#include <string>

namespace ventolith::fake {

/// Those of the one application that runs. What is set is on disk after a synchronisation alone.
class Preferences : public InForce<Preferences> {
public:
  Preferences() : InForce(this) {}

  std::map<std::string, bool> set;
  std::map<std::string, bool> onDisk;
};

} // namespace ventolith::fake
