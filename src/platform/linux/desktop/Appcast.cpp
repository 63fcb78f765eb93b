#include "platform/linux/desktop/Appcast.h"

#include <algorithm>

namespace ventolith::platform {

namespace {

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

/// Takes the first number off a dotted number, without its leading zeros. Nothing left is zero.
std::string_view takeNumber(std::string_view& text) {
  std::string_view number = text.substr(0, text.find('.'));
  text.remove_prefix(std::min(number.size() + 1, text.size()));
  number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
  return number;
}

} // namespace

bool isDottedNumber(std::string_view text) {
  bool isAfterDigit = false;
  for (const char character : text) {
    if (!isDigit(character) && !(character == '.' && isAfterDigit)) return false;
    isAfterDigit = isDigit(character);
  }
  return isAfterDigit;
}

bool isNewerBuild(std::string_view build, std::string_view other) {
  while (!build.empty() || !other.empty()) {
    const std::string_view number = takeNumber(build);
    const std::string_view otherNumber = takeNumber(other);
    if (number.size() != otherNumber.size()) return number.size() > otherNumber.size();
    if (number != otherNumber) return number > otherNumber;
  }
  return false;
}

std::optional<AvailableUpdate> newestUpdate(const Appcast& appcast,
                                            const std::set<std::string>& allowedChannels,
                                            std::string_view runningBuild) {
  const AppcastItem* newest = nullptr;
  for (const AppcastItem& item : appcast.items) {
    if (item.channel && !allowedChannels.contains(*item.channel)) continue;
    if (isNewerBuild(item.buildNumber, newest != nullptr ? newest->buildNumber : runningBuild))
      newest = &item;
  }
  if (newest == nullptr) return std::nullopt;
  return AvailableUpdate{newest->displayVersion, newest->page ? newest->page : appcast.page};
}

} // namespace ventolith::platform
