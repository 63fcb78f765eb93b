// 128-bit identifiers of points, rules and presets.
#pragma once

#include <boost/uuid/uuid.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace ventolith::core {

using UUID = boost::uuids::uuid;

/// A new random identifier (version 4).
[[nodiscard]] UUID makeUUID();

/// Reads the canonical hyphenated form of 36 characters in either case; anything else gives none.
[[nodiscard]] std::optional<UUID> uuidFromText(std::string_view text);

/// The canonical hyphenated form, in upper case.
[[nodiscard]] std::string uuidText(const UUID& id);

} // namespace ventolith::core
