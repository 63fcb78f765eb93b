#include "programs/ventolith/window/Display.h"

#include "platform/system/CFOwned.h"

#include <CoreGraphics/CoreGraphics.h>

namespace ventolith::programs {

/// The window server tells of a session to those alone who are in one: not to who came over the network.
bool hasDisplay(const Environment& environment) {
  if (!environment("QT_QPA_PLATFORM").value_or("").empty()) return true;
  return platform::CFOwned<CFDictionaryRef>(CGSessionCopyCurrentDictionary()) != nullptr;
}

} // namespace ventolith::programs
