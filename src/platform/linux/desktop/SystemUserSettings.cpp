#include "platform/linux/desktop/SystemUserSettings.h"

#include "app/FileUserSettings.h"
#include "platform/linux/UserFolders.h"

namespace ventolith::platform {

std::unique_ptr<app::UserSettings> systemUserSettings(runtime::FileLayer& files) {
  return std::make_unique<app::FileUserSettings>(files, userConfigurationFolder);
}

} // namespace ventolith::platform
