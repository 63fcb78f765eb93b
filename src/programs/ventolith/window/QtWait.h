// Waiting for a descriptor in Qt's event loop.
#pragma once

#include "platform/system/SystemClock.h"

namespace ventolith::programs {

/// For a clock of the thread that runs Qt's event loop.
[[nodiscard]] platform::ReadableWaitFactory waitInQt();

} // namespace ventolith::programs
