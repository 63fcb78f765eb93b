// Which store this computer has for the newest accepted configuration.
#pragma once

#include "app/platform-kit/ConfigurationCacheStoring.h"

#include <filesystem>
#include <memory>
#include <string>

namespace ventolith::platform {

/// The user's keychain. `folder` is for systems where nobody may keep secrets.
[[nodiscard]] std::unique_ptr<app::ConfigurationCacheStoring>
configurationCacheStore(const std::string& bundleIdentifier, const std::filesystem::path& folder);

} // namespace ventolith::platform
