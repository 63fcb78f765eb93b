// The SMC's keys in the order of their indices, and what each of them stands for.
#pragma once

#include "platform/simulated/MachineDescription.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ventolith::simulated {

/// What a key's value comes from.
struct KeyMeaning {
  enum class Kind {
    constant, ///< The bytes of the machine's file.
    keyCount,
    fanCount,
    forceTest,
    fanMeasured,
    fanMinimum,
    fanMaximum,
    fanTarget,
    fanMode,
    temperature,
  };

  Kind kind = Kind::constant;
  std::size_t fan = 0; // Of the fan's keys.

  [[nodiscard]] bool isWritable() const {
    return kind == Kind::forceTest || kind == Kind::fanTarget || kind == Kind::fanMode;
  }
};

struct TableKey {
  KeyDescription description;
  KeyMeaning meaning;
  std::optional<std::string> claimedType; // What the key says that its type is, if that is not the truth.
  bool isRemoved = false;
};

class KeyTable {
public:
  /// Of two keys of one name the first counts.
  KeyTable(const std::vector<KeyDescription>& keys, const std::vector<FanDescription>& fans);

  /// The key, or null if there is none or it was removed.
  [[nodiscard]] const TableKey* find(std::uint32_t packedName) const;
  [[nodiscard]] const TableKey* at(std::size_t index) const;
  [[nodiscard]] std::size_t count() const;

  /// The key, removed or not; null if the machine never had one.
  [[nodiscard]] TableKey* everKnown(std::string_view name);
  [[nodiscard]] const TableKey* everKnown(std::string_view name) const;

private:
  std::vector<TableKey> keys_;
  std::map<std::uint32_t, std::size_t> places_; // By packed name.
};

} // namespace ventolith::simulated
