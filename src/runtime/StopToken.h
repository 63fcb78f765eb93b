// Cooperative cancellation: a `StopSource` is held by whoever may end a piece of work, its `StopToken`
// by the work. A `Clock` observes the token while it waits; loops test it at the top of each pass.
//
// All of it belongs to one thread, the one that runs the owners' executors.
#pragma once

#include <functional>
#include <list>
#include <memory>

namespace ventolith::runtime {

namespace detail {
struct StopState {
  bool requested = false;
  std::list<std::function<void()>> observers;
};
} // namespace detail

/// Ends its observation when it goes away.
class StopObservation {
public:
  StopObservation() = default;
  StopObservation(std::shared_ptr<detail::StopState> state, std::list<std::function<void()>>::iterator place);
  StopObservation(StopObservation&& other) noexcept;
  StopObservation& operator=(StopObservation&& other) noexcept;
  ~StopObservation();

private:
  void end() noexcept;

  std::shared_ptr<detail::StopState> state_;
  std::list<std::function<void()>>::iterator place_;
};

class StopToken {
public:
  /// A token that is never stopped.
  StopToken() = default;
  explicit StopToken(std::shared_ptr<detail::StopState> state) : state_(std::move(state)) {}

  [[nodiscard]] bool stopRequested() const { return state_ && state_->requested; }

  /// Calls `observer` once, at the moment of the request, for as long as the result lives. A request
  /// that was made before calls it not at all: test `stopRequested` first.
  [[nodiscard]] StopObservation onStop(std::function<void()> observer) const;

private:
  std::shared_ptr<detail::StopState> state_;
};

class StopSource {
public:
  [[nodiscard]] StopToken token() const { return StopToken(state_); }
  [[nodiscard]] bool stopRequested() const { return state_->requested; }

  /// The first call tells all observers; later ones do nothing.
  void requestStop();

private:
  std::shared_ptr<detail::StopState> state_ = std::make_shared<detail::StopState>();
};

} // namespace ventolith::runtime
