// Dates in signed documents.
#pragma once

#include "core/JSON.h"
#include "runtime/Time.h"

#include <chrono>
#include <optional>
#include <string_view>

namespace ventolith::app {

/// Reaches from the year 0000 to 9999 and far beyond, which nanoseconds in 64 bits would not.
using DocumentDate = std::chrono::sys_time<std::chrono::microseconds>;

/// The microsecond in which `time` lies.
[[nodiscard]] DocumentDate documentDate(runtime::WallTime time);

/// An internet date-time: 2026-03-01T09:30:00Z, with or without a fraction of a second after a dot, and Z or
/// an offset such as +01:00 at the end. Of the fraction the first six digits count. None for any other form,
/// for a date that the calendar does not have, and for the 61st second of a minute.
[[nodiscard]] std::optional<DocumentDate> dateFromISO8601(std::string_view text);

/// Fails with DecodeError: typeMismatch for what is no string, else dataCorrupted.
[[nodiscard]] DocumentDate readDate(const core::JSONReader& json);

} // namespace ventolith::app
