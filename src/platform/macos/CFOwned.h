// A Core Foundation object of one's own.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <type_traits>

namespace ventolith::platform {

struct CFReleaser {
  void operator()(CFTypeRef object) const { ::CFRelease(object); }
};

/// Holds what a function with "Create" or "Copy" in its name returned, null included, and releases it. What
/// other functions return is not one's own: it is retained before it is held.
template <class Ref>
using CFOwned = std::unique_ptr<std::remove_pointer_t<Ref>, CFReleaser>;

} // namespace ventolith::platform
