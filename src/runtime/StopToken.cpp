#include "runtime/StopToken.h"

#include <algorithm>
#include <utility>

namespace ventolith::runtime {

StopObservation::StopObservation(std::shared_ptr<detail::StopState> state,
                                 std::list<std::function<void()>>::iterator place)
    : state_(std::move(state)), place_(place) {}

StopObservation::StopObservation(StopObservation&& other) noexcept
    : state_(std::exchange(other.state_, nullptr)), place_(other.place_) {}

StopObservation& StopObservation::operator=(StopObservation&& other) noexcept {
  if (this == &other) return *this;
  end();
  state_ = std::exchange(other.state_, nullptr);
  place_ = other.place_;
  return *this;
}

StopObservation::~StopObservation() {
  end();
}

void StopObservation::end() noexcept {
  if (state_) state_->observers.erase(place_);
  state_ = nullptr;
}

StopObservation StopToken::onStop(std::function<void()> observer) const {
  if (!state_ || state_->requested) return {};
  return {state_, state_->observers.insert(state_->observers.end(), std::move(observer))};
}

void StopSource::requestStop() {
  if (std::exchange(state_->requested, true)) return;
  // An observer may end any observation, its own included, or this source: nothing but the state, which
  // is kept here, is relied on after a call. A place whose observer was told stays, and is empty.
  const auto state = state_;
  const auto isUntold = [](const std::function<void()>& observer) { return observer != nullptr; };
  for (;;) {
    const auto next = std::find_if(state->observers.begin(), state->observers.end(), isUntold);
    if (next == state->observers.end()) return;
    const auto observer = std::exchange(*next, nullptr);
    observer();
  }
}

} // namespace ventolith::runtime
