#include "runtime/WaitingRow.h"

#include <boost/asio/this_coro.hpp>

namespace ventolith::runtime {

WaitingRow::Place WaitingRow::enter() {
  places_.emplace_hint(places_.end(), entered_, nullptr);
  return entered_++;
}

Async<void> WaitingRow::turn(std::shared_ptr<WaitingRow> row, Place place) {
  if (row->places_.begin()->first != place) {
    Event isFirst(co_await boost::asio::this_coro::executor);
    row->places_.at(place) = &isFirst;
    co_await isFirst.wait();
  }
  row->leave(place);
}

void WaitingRow::leave(Place place) {
  places_.erase(place);
  if (!places_.empty() && places_.begin()->second != nullptr) places_.begin()->second->happen();
}

} // namespace ventolith::runtime
