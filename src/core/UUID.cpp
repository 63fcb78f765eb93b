#include "core/UUID.h"

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <algorithm>

namespace ventolith::core {

namespace {

// The generator also reads braces and bare digits, which are not the canonical form.
bool isCanonical(std::string_view text) {
  if (text.size() != 36) return false;
  for (std::size_t place = 0; place < text.size(); ++place) {
    const bool isHyphen = place == 8 || place == 13 || place == 18 || place == 23;
    const char character = text[place];
    const bool isDigit = (character >= '0' && character <= '9') || (character >= 'a' && character <= 'f') ||
                         (character >= 'A' && character <= 'F');
    if (isHyphen ? character != '-' : !isDigit) return false;
  }
  return true;
}

} // namespace

UUID makeUUID() {
  thread_local boost::uuids::random_generator generator;
  return generator();
}

std::optional<UUID> uuidFromText(std::string_view text) {
  if (!isCanonical(text)) return std::nullopt;
  return boost::uuids::string_generator()(text.begin(), text.end());
}

std::string uuidText(const UUID& id) {
  std::string text = boost::uuids::to_string(id);
  std::transform(text.begin(), text.end(), text.begin(), [](char digit) {
    return digit >= 'a' && digit <= 'f' ? static_cast<char>(digit - 'a' + 'A') : digit;
  });
  return text;
}

} // namespace ventolith::core
