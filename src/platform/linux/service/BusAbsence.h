// Telling a service that is not there from one that refuses.
#pragma once

#include "platform/linux/service/BusConnection.h"

#include <string_view>

namespace ventolith::platform {

/// Whether the failure says that nobody has the name called, and nobody could be started to take it.
[[nodiscard]] inline bool isAbsence(const BusFailure& failure) {
  const std::string_view name = failure.name;
  return name == "org.freedesktop.DBus.Error.ServiceUnknown" ||
         name == "org.freedesktop.DBus.Error.NameHasNoOwner" ||
         name.starts_with("org.freedesktop.DBus.Error.Spawn.");
}

} // namespace ventolith::platform
