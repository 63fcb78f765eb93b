// A file descriptor that closes itself: the same on every POSIX system.
#pragma once

#include "platform/posix/Descriptor.h" // IWYU pragma: export
