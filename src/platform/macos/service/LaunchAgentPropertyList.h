// What launchd is told of a helper that is started for development.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace ventolith::platform {

struct LaunchAgent {
  std::string name;                   // Of the job, and of its one mach service.
  std::vector<std::string> arguments; // The first is the program's path.
  std::map<std::string, std::string> environment;
  std::string output; // The file that both its streams are appended to.
};

/// As launchd reads it. It starts the agent at once, when somebody calls it, and again one second after it
/// failed.
[[nodiscard]] std::string propertyListOf(const LaunchAgent& agent);

} // namespace ventolith::platform
