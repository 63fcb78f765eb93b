// Where the helper is reached.
#pragma once

#include <optional>
#include <string>

namespace ventolith::platform {

/// The name under which launchd starts the helper, and the label of its job.
struct MachService {
  enum class Domain {
    system, ///< A daemon of launchd's, which runs as root.
    user,   ///< An agent of the user's, for development.
  };

  std::string name;
  Domain domain;

  bool operator==(const MachService&) const = default;
};

inline constexpr const char* helperServiceName = "com.ventolith.helper";
inline constexpr const char* developmentServiceName = "com.ventolith.helper.development";

/// The system's own helper, unless another name is given, or a helper is started for development.
[[nodiscard]] inline MachService machServiceOf(const std::optional<std::string>& name, bool isDevelopment) {
  if (name) return {*name, MachService::Domain::user};
  if (isDevelopment) return {developmentServiceName, MachService::Domain::user};
  return {helperServiceName, MachService::Domain::system};
}

} // namespace ventolith::platform
