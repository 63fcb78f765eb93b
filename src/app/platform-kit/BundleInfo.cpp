#include "app/platform-kit/BundleInfo.h"

namespace ventolith::app {

template <class Type>
std::optional<Type> MapBundleInfo::value(std::string_view key) const {
  const auto entry = values_.find(key);
  if (entry == values_.end()) return std::nullopt;
  const auto* const value = std::get_if<Type>(&entry->second);
  return value == nullptr ? std::nullopt : std::optional<Type>(*value);
}

std::optional<std::string> MapBundleInfo::string(std::string_view key) const {
  return value<std::string>(key);
}

std::optional<bool> MapBundleInfo::boolean(std::string_view key) const {
  return value<bool>(key);
}

} // namespace ventolith::app
