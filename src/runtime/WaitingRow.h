// Those who go on in the order in which they came, whatever order they become ready in.
#pragma once

#include "runtime/Async.h"
#include "runtime/Event.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>

namespace ventolith::runtime {

/// Belongs to one thread.
class WaitingRow {
public:
  using Place = std::uint64_t;

  /// The last place of the row. Whoever enters takes its turn in the end, or holds up all behind it.
  [[nodiscard]] Place enter();
  /// Returns when all that entered before have taken their turns. The next one goes on later, when its
  /// executor comes to it: what the caller does before it waits again comes first.
  static Async<void> turn(std::shared_ptr<WaitingRow> row, Place place);

  [[nodiscard]] std::size_t size() const { return places_.size(); }

private:
  void leave(Place place);

  Place entered_ = 0;
  std::map<Place, Event*> places_; // With what a place waits on, once it does.
};

} // namespace ventolith::runtime
