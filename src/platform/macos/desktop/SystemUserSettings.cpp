#include "platform/macos/desktop/SystemUserSettings.h"

#include "platform/macos/desktop/UserDefaults.h"

namespace ventolith::platform {

std::unique_ptr<app::UserSettings> systemUserSettings(runtime::FileLayer&) {
  return std::make_unique<UserDefaults>();
}

} // namespace ventolith::platform
