#include "core/Excerpt.h"

#include <algorithm>

namespace ventolith::core {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD"; // U+FFFD
constexpr std::string_view ellipsis = "\xE2\x80\xA6";    // U+2026

std::size_t lengthByLead(char first) {
  const auto lead = static_cast<unsigned char>(first);
  if (lead < 0x80) return 1;
  if (lead < 0xC2) return 0; // Amid a character, or an overlong form.
  if (lead < 0xE0) return 2;
  if (lead < 0xF0) return 3;
  return lead < 0xF5 ? 4 : 0;
}

/// The bytes of the character at the front of `text`; 0 if there is none.
std::size_t lengthOfFirst(std::string_view text) {
  const std::size_t length = lengthByLead(text.front());
  if (length > text.size()) return 0;
  const auto isContinuation = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; };
  const std::string_view rest = text.substr(0, length).substr(std::min<std::size_t>(length, 1));
  return std::all_of(rest.begin(), rest.end(), isContinuation) ? length : 0;
}

// U+0000 to U+001F, and U+007F to U+009F.
bool isControl(std::string_view character) {
  const auto last = static_cast<unsigned char>(character.back());
  if (character.size() == 1) return last < 0x20 || last == 0x7F;
  return character.size() == 2 && character.front() == '\xC2' && last < 0xA0;
}

} // namespace

std::string excerpt(std::string_view text, std::size_t most) {
  std::string shown;
  for (std::size_t count = 0; !text.empty(); ++count) {
    if (count == most) return shown.append(ellipsis);
    const std::size_t length = lengthOfFirst(text);
    const std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
    shown += length == 0 || isControl(character) ? replacement : character;
    text.remove_prefix(character.size());
  }
  return shown;
}

} // namespace ventolith::core
