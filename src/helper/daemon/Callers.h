// The callers that the service knows, and what it has already complained about.
#pragma once

#include "helper/link/HelperListener.h"
#include "runtime/StopToken.h"
#include "runtime/WaitingRow.h"

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <string_view>
#include <utility>

namespace ventolith::helper {

struct KnownCaller {
  std::size_t unanswered = 0; // Changes, with and without permission.
  bool isAdmitted = false;    // Was allowed its last change: its heartbeats count.
  runtime::StopSource gone;   // Requested when it goes: whatever waits on its behalf ends.
  /// Its changes begin in the order in which they came, whatever order their permissions come in.
  std::shared_ptr<runtime::WaitingRow> order = std::make_shared<runtime::WaitingRow>();
};

/// A caller is known, and watched, while it has unanswered changes, and once it is admitted until it is gone.
/// So strangers leave nothing behind.
class Callers {
public:
  explicit Callers(HelperListener& listener) : listener_(listener) {}

  /// Unanswered changes of all callers, those included that are gone.
  struct Load {
    std::size_t calls = 0;
    std::size_t bytes = 0; // Of their bodies.
  };

  /// None if it is not known.
  [[nodiscard]] std::shared_ptr<KnownCaller> find(const HelperCaller& name) const;
  /// Counts one more unanswered change, with a body of so many bytes.
  [[nodiscard]] std::shared_ptr<KnownCaller> beginCall(const HelperCaller& name, std::size_t bytes);
  void endCall(const HelperCaller& name, KnownCaller& caller, std::size_t bytes);
  [[nodiscard]] const Load& load() const { return load_; }

  /// Forgets it; returns what was known of it. Whoever takes it tells it that it is gone.
  std::shared_ptr<KnownCaller> take(const HelperCaller& name);

  [[nodiscard]] std::size_t size() const { return known_.size(); }

private:
  HelperListener& listener_;
  std::map<HelperCaller, std::shared_ptr<KnownCaller>> known_;
  Load load_;
};

/// Which complaints stand in the log already, so that a flood of calls is no flood of lines. Bounded: the
/// oldest is forgotten first, and may then be said again.
class Complaints {
public:
  static constexpr std::size_t most = 64;

  /// Whether it is to be said; from then on it has been.
  [[nodiscard]] bool isNew(Refusal::Reason about, const HelperCaller& caller);
  /// What was complained about is over; the next time is a new one.
  void settle(Refusal::Reason about, const HelperCaller& caller);
  void forget(const HelperCaller& caller);

private:
  std::deque<std::pair<Refusal::Reason, HelperCaller>> said_;
};

} // namespace ventolith::helper
