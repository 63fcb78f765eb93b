// Where this computer keeps the settings of the user that belong to the application as a program.
#pragma once

#include "app/UserSettings.h"
#include "runtime/Files.h"

#include <memory>

namespace ventolith::platform {

/// The user's defaults of this application, which need no `files`.
[[nodiscard]] std::unique_ptr<app::UserSettings> systemUserSettings(runtime::FileLayer& files);

} // namespace ventolith::platform
