// The update feed, an RSS 2.0 document with the elements that updaters add: what it offers, and which of
// that is an update of a given build. Pure.
#pragma once

#include <boost/system/result.hpp>

#include <cstddef>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace ventolith::platform {

/// One release.
struct AppcastItem {
  std::string buildNumber;            // Numbers joined by dots.
  std::string displayVersion;         // For people.
  std::optional<std::string> channel; // None is the default channel, which every build takes.
  std::optional<std::string> page;    // An http or https URL.

  bool operator==(const AppcastItem&) const = default;
};

struct Appcast {
  std::optional<std::string> page; // For the items that have none of their own.
  std::vector<AppcastItem> items;  // In the feed's order.

  bool operator==(const Appcast&) const = default;
};

/// Why a text is no feed. For who makes the feed, not for users.
struct AppcastError {
  std::string reason;
};

[[noreturn]] inline void throw_exception_from_error(const AppcastError& error,
                                                    const boost::source_location&) {
  throw std::logic_error("a feed was used that is none: " + error.reason);
}

using AppcastResult = boost::system::result<Appcast, AppcastError>;

namespace AppcastLimits {
inline constexpr std::size_t depth = 32;         // Elements inside each other.
inline constexpr std::size_t items = 1000;       // Those that are left out included.
inline constexpr std::size_t characters = 2'048; // Bytes of one text that is kept.
} // namespace AppcastLimits

/// Reads a whole feed. An item without a version, or with one that is not numbers joined by dots, is left
/// out, and a link that leads to no web page counts as none. An item tells its versions in elements, or else
/// in attributes of its enclosure; of an element that stands twice the first counts. What an item says of the
/// system that it needs is about another system, and means nothing here.
///
/// Fails on what is not well-formed or no RSS, beyond the limits, and on any document type declaration: so
/// there are no entities to expand, and nothing else is ever loaded.
[[nodiscard]] AppcastResult parseAppcast(std::string_view text);

/// Numbers joined by dots, of any length.
[[nodiscard]] bool isDottedNumber(std::string_view text);

/// Whether `build` is newer than `other`, both dotted numbers: number by number, where one that is missing
/// counts as zero.
[[nodiscard]] bool isNewerBuild(std::string_view build, std::string_view other);

struct AvailableUpdate {
  std::string displayVersion;
  std::optional<std::string> page;

  bool operator==(const AvailableUpdate&) const = default;
};

/// The newest item of the default channel and the allowed ones; none if it is not newer than `runningBuild`.
/// Of two that are equal the first.
[[nodiscard]] std::optional<AvailableUpdate> newestUpdate(const Appcast& appcast,
                                                          const std::set<std::string>& allowedChannels,
                                                          std::string_view runningBuild);

} // namespace ventolith::platform
