// What the system offers around the helper: declared once for all systems.
#pragma once

#include "platform/posix/SystemServices.h" // IWYU pragma: export
