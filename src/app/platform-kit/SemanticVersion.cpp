#include "app/platform-kit/SemanticVersion.h"

#include <charconv>

namespace ventolith::app {

namespace {

std::optional<std::int64_t> number(std::string_view digits) {
  if (digits.empty() || digits.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
  std::int64_t value = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return read.ec == std::errc() ? std::optional(value) : std::nullopt;
}

} // namespace

std::optional<SemanticVersion> SemanticVersion::fromText(std::string_view text) {
  std::string_view rest = text.substr(0, text.find_first_of("-+"));
  SemanticVersion version;
  for (bool isLast = false; !isLast;) {
    const auto dot = rest.find('.');
    isLast = dot == std::string_view::npos;
    const auto component = number(rest.substr(0, dot));
    if (!component || version.components.size() == 3) return std::nullopt;
    version.components.push_back(*component);
    if (!isLast) rest.remove_prefix(dot + 1);
  }
  return version.components.size() == 3 ? std::optional(std::move(version)) : std::nullopt;
}

} // namespace ventolith::app
