// Where this computer keeps the settings of the user that belong to the application as a program.
#pragma once

#include "app/UserSettings.h"
#include "runtime/Files.h"

#include <memory>

namespace ventolith::platform {

/// A file in the user's configuration folder. `files` outlives the settings.
[[nodiscard]] std::unique_ptr<app::UserSettings> systemUserSettings(runtime::FileLayer& files);

} // namespace ventolith::platform
