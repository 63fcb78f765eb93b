#include "programs/ventolith/window/Display.h"

#include "platform/system/CFOwned.h"

#include <CoreGraphics/CoreGraphics.h>

namespace ventolith::programs {

/// The window server tells of a session to those alone who are in one: not to who came over the network.
bool hasDisplay(const Environment& environment) {
  if (!environment("QT_QPA_PLATFORM").value_or("").empty()) return true;
  return platform::CFOwned<CFDictionaryRef>(CGSessionCopyCurrentDictionary()) != nullptr;
}

/// Given to the Dock it would stand in for the bundle's, which the system draws in the manner of its icons.
bool givesOwnIcon() {
  const CFBundleRef bundle = ::CFBundleGetMainBundle();
  return bundle == nullptr || ::CFBundleGetIdentifier(bundle) == nullptr;
}

} // namespace ventolith::programs
