// Where the system wants an application to keep what belongs to its user.
#pragma once

#include <filesystem>

namespace ventolith::platform {

/// The user's Application Support; without one, the folder for temporary files. Always absolute; whether the
/// folder is there is not looked at. Asks the system anew each time.
[[nodiscard]] std::filesystem::path userConfigurationFolder();

} // namespace ventolith::platform
