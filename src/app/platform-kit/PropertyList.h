// The information dictionary of a build, from the XML property list that it is installed with.
#pragma once

#include "app/platform-kit/BundleInfo.h"
#include "runtime/Files.h"

#include <boost/system/result.hpp>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

namespace ventolith::app {

/// Why there is no dictionary, for people: "line 3: a key stands twice".
struct PropertyListError {
  std::string description;
};

[[noreturn]] inline void throw_exception_from_error(const PropertyListError& error,
                                                    const boost::source_location&) {
  throw std::logic_error("a property list was used that is none: " + error.description);
}

using PropertyListResult = boost::system::result<MapBundleInfo::Values, PropertyListError>;

inline constexpr std::size_t mostPropertyListBytes = std::size_t{64} << 10;
inline constexpr std::size_t deepestPropertyListElement = 16;

/// The strings and booleans of the outermost dictionary; its values of other types are left out. Fails on
/// anything that is no XML property list in UTF-8 with a dictionary in it, on a key that stands twice, and
/// over the bounds above. A document type may be named, as Apple's tools do, but is not fetched, and may
/// declare nothing.
[[nodiscard]] PropertyListResult parsePropertyList(std::string_view text);

/// The same of a file, which may also be unreadable.
[[nodiscard]] PropertyListResult readPropertyList(runtime::FileLayer& files,
                                                  const std::filesystem::path& file);

} // namespace ventolith::app
