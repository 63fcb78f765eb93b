// Where the system wants an application to keep what belongs to its user.
#pragma once

#include <filesystem>

namespace ventolith::platform {

/// $XDG_CONFIG_HOME, else .config in the home folder, which is $HOME or what the password database says. A
/// variable that holds no absolute path counts as unset. Without any of these, the folder for temporary
/// files. Always absolute; whether the folder is there is not looked at. Reads the environment anew each
/// time.
[[nodiscard]] std::filesystem::path userConfigurationFolder();

} // namespace ventolith::platform
