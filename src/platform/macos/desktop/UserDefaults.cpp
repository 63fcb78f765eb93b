#include "platform/macos/desktop/UserDefaults.h"

#include "platform/macos/AutoreleasePool.h"
#include "platform/macos/CFText.h"

namespace ventolith::platform {

bool UserDefaults::hasOpenedOnFirstLaunch() const {
  const AutoreleasePool pool;
  return ::CFPreferencesGetAppBooleanValue(cfText(openedKey).get(), kCFPreferencesCurrentApplication,
                                           nullptr);
}

void UserDefaults::setHasOpenedOnFirstLaunch(bool hasOpened) {
  const AutoreleasePool pool;
  ::CFPreferencesSetAppValue(cfText(openedKey).get(), hasOpened ? kCFBooleanTrue : kCFBooleanFalse,
                             kCFPreferencesCurrentApplication);
  ::CFPreferencesAppSynchronize(kCFPreferencesCurrentApplication);
}

} // namespace ventolith::platform
