// Which store this computer has for the newest accepted configuration.
#pragma once

#include "app/platform-kit/ConfigurationCacheStoring.h"

#include <filesystem>
#include <memory>
#include <string>

namespace ventolith::platform {

/// The desktop's keeper of secrets, if there is one or one would be started; otherwise a private file in
/// `folder`, the application's own in that of its user. Looks once and blocks as
/// SecretServiceStore::isOffered does: what was chosen stays until the application ends. A record in the one
/// place is not seen in the other.
[[nodiscard]] std::unique_ptr<app::ConfigurationCacheStoring>
configurationCacheStore(const std::string& bundleIdentifier, const std::filesystem::path& folder);

} // namespace ventolith::platform
