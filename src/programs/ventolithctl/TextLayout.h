// Text in columns for people: widths, bars, colours.
#pragma once

#include "programs/ventolithctl/Output.h"

#include <string>
#include <string_view>

namespace ventolith::ctl {

/// How many columns `text` takes, one a character. It has no escape sequences in it.
[[nodiscard]] int columnsOf(std::string_view text);

/// `text` with every control character replaced: names come from the hardware, and would otherwise
/// reach the terminal as commands.
[[nodiscard]] std::string printable(std::string_view text);

/// `text` in exactly `columns` columns: filled with spaces, or cut with "…" at its end.
[[nodiscard]] std::string leftIn(int columns, std::string_view text);
/// The same, pushed to the right.
[[nodiscard]] std::string rightIn(int columns, std::string_view text);

/// `text` up to its last character that is no space.
[[nodiscard]] std::string withoutTrailingSpaces(std::string text);

/// A horizontal bar of `columns` columns, of which `fraction` (0 to 1) is filled, to an eighth.
[[nodiscard]] std::string bar(double fraction, int columns);

/// `text` in the colour of a temperature; as it is where there are no colours.
[[nodiscard]] std::string inColorOf(double celsius, ColorDepth colors, std::string_view text);

/// A temperature as it is shown: one decimal and the unit.
[[nodiscard]] std::string celsiusText(double celsius);

} // namespace ventolith::ctl
