#include "app/platform-kit/TrimmedText.h"

#include <array>
#include <cstddef>

namespace ventolith::app {

namespace {

using std::string_view_literals::operator""sv;

// Unicode's separators (categories Zs, Zl and Zp), the tab, and the controls that end a line.
constexpr std::array blanks = {
    " "sv,      "\t"sv,     "\n"sv,     "\v"sv,     "\f"sv,     "\r"sv,     "\u0085"sv,
    "\u00A0"sv, "\u1680"sv, "\u2000"sv, "\u2001"sv, "\u2002"sv, "\u2003"sv, "\u2004"sv,
    "\u2005"sv, "\u2006"sv, "\u2007"sv, "\u2008"sv, "\u2009"sv, "\u200A"sv, "\u2028"sv,
    "\u2029"sv, "\u202F"sv, "\u205F"sv, "\u3000"sv,
};

// Bytes of the blank that `text` starts or ends with; 0 if it is another character.
std::size_t blankAtStart(std::string_view text) {
  for (const auto blank : blanks)
    if (text.starts_with(blank)) return blank.size();
  return 0;
}
std::size_t blankAtEnd(std::string_view text) {
  for (const auto blank : blanks)
    if (text.ends_with(blank)) return blank.size();
  return 0;
}

} // namespace

std::string_view trimmed(std::string_view text) {
  while (const auto bytes = blankAtStart(text))
    text.remove_prefix(bytes);
  while (const auto bytes = blankAtEnd(text))
    text.remove_suffix(bytes);
  return text;
}

} // namespace ventolith::app
