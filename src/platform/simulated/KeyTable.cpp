#include "platform/simulated/KeyTable.h"

#include "hardware/FanKeys.h"
#include "hardware/SMCValue.h"

#include <algorithm>

namespace ventolith::simulated {

namespace {

namespace fankeys = hardware::fankeys;
using Kind = KeyMeaning::Kind;

std::optional<KeyMeaning> meaningForFan(const std::string& name, std::size_t fan,
                                        const FanDescription& description) {
  const auto id = static_cast<core::FanID>(fan);
  if (name == fankeys::measured(id)) return KeyMeaning{Kind::fanMeasured, fan};
  if (name == fankeys::minimum(id)) return KeyMeaning{Kind::fanMinimum, fan};
  if (name == fankeys::maximum(id)) return KeyMeaning{Kind::fanMaximum, fan};
  if (name == fankeys::target(id)) return KeyMeaning{Kind::fanTarget, fan};
  if (name == description.modeKey) return KeyMeaning{Kind::fanMode, fan};
  return std::nullopt;
}

KeyMeaning meaningOf(const KeyDescription& key, const std::vector<FanDescription>& fans) {
  if (key.sensor) return {Kind::temperature};
  if (key.name == fankeys::keyCount) return {Kind::keyCount};
  if (key.name == fankeys::fanCount) return {Kind::fanCount};
  if (key.name == fankeys::forceTest) return {Kind::forceTest};
  for (std::size_t fan = 0; fan < fans.size(); ++fan) {
    if (const auto meaning = meaningForFan(key.name, fan, fans[fan])) return *meaning;
  }
  return {};
}

} // namespace

KeyTable::KeyTable(const std::vector<KeyDescription>& keys, const std::vector<FanDescription>& fans) {
  for (const KeyDescription& key : keys) {
    if (!places_.emplace(hardware::packKey(key.name), keys_.size()).second) continue;
    keys_.push_back({.description = key, .meaning = meaningOf(key, fans), .claimedType = std::nullopt});
  }
}

const TableKey* KeyTable::find(std::uint32_t packedName) const {
  const auto place = places_.find(packedName);
  if (place == places_.end() || keys_[place->second].isRemoved) return nullptr;
  return &keys_[place->second];
}

const TableKey* KeyTable::at(std::size_t index) const {
  for (const TableKey& key : keys_) {
    if (key.isRemoved) continue;
    if (index-- == 0) return &key;
  }
  return nullptr;
}

std::size_t KeyTable::count() const {
  return static_cast<std::size_t>(
      std::count_if(keys_.begin(), keys_.end(), [](const TableKey& key) { return !key.isRemoved; }));
}

const TableKey* KeyTable::everKnown(std::string_view name) const {
  if (name.size() != 4) return nullptr;
  const auto place = places_.find(hardware::packKey(name));
  return place == places_.end() ? nullptr : &keys_[place->second];
}

TableKey* KeyTable::everKnown(std::string_view name) {
  return const_cast<TableKey*>(std::as_const(*this).everKnown(name));
}

} // namespace ventolith::simulated
