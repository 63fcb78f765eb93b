// Any text as an update feed: refused, or items of which the one that is offered is what it must be.
#include "platform/linux/desktop/Appcast.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>

using namespace ventolith::platform;

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

bool isWithin(const std::string& text) {
  return text.size() <= AppcastLimits::characters;
}

void checkItems(const Appcast& appcast) {
  require(appcast.items.size() <= AppcastLimits::items);
  for (const AppcastItem& item : appcast.items) {
    require(isDottedNumber(item.buildNumber) && !item.displayVersion.empty());
    require(isWithin(item.buildNumber) && isWithin(item.displayVersion));
    require(!item.channel || isWithin(*item.channel));
    require(!item.page || isWithin(*item.page));
    require(!isNewerBuild(item.buildNumber, item.buildNumber));
  }
}

/// What is offered is allowed and newer than the running build, and nothing else that is allowed is newer.
void checkChoice(const Appcast& appcast, const std::set<std::string>& channels) {
  const std::string running = "6";
  const auto update = newestUpdate(appcast, channels, running);
  const auto isAllowed = [&](const AppcastItem& item) {
    return !item.channel || channels.contains(*item.channel);
  };
  const auto isBest = [&](const AppcastItem& best) {
    return std::none_of(appcast.items.begin(), appcast.items.end(), [&](const AppcastItem& item) {
      return isAllowed(item) && isNewerBuild(item.buildNumber, best.buildNumber);
    });
  };
  require(std::any_of(appcast.items.begin(), appcast.items.end(), [&](const AppcastItem& item) {
            return isAllowed(item) && isNewerBuild(item.buildNumber, running) &&
                   (!update || (update->displayVersion == item.displayVersion && isBest(item)));
          }) == update.has_value());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const AppcastResult appcast = parseAppcast(text);
  const AppcastResult again = parseAppcast(text);
  require(appcast.has_value() == again.has_value());
  if (!appcast) {
    require(!appcast.error().reason.empty());
    return 0;
  }
  require(*appcast == *again);
  checkItems(*appcast);
  checkChoice(*appcast, {});
  checkChoice(*appcast, {"beta"});
  return 0;
}
