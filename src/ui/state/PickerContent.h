// What a drop-down or a menu of choices lists.
#pragma once

#include <QString>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

namespace ventolith::ui {

template <class Value>
struct PickerContent {
  struct Entry {
    Value value;
    QString title;

    bool operator==(const Entry& other) const = default;
  };

  std::vector<Entry> entries;
  std::optional<std::size_t> selected; // None when what is chosen is not among the entries.

  /// Marks the first entry of that value, or none.
  void select(const Value& value) {
    const auto isIt = [&](const Entry& entry) { return entry.value == value; };
    const auto found = std::find_if(entries.begin(), entries.end(), isIt);
    selected.reset();
    if (found != entries.end()) selected = static_cast<std::size_t>(found - entries.begin());
  }

  bool operator==(const PickerContent& other) const = default;
};

} // namespace ventolith::ui
