// What the helper does with each message that reaches it.
#pragma once

#include "helper/daemon/Callers.h"
#include "helper/daemon/HelperLog.h"
#include "helper/daemon/ServedFans.h"
#include "helper/link/HelperListener.h"
#include "helper/link/HelperSurroundings.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace ventolith::helper {

/// Version and state are told to anybody, at once. Every change asks for permission first, and the changes of
/// one caller begin in the order in which they came; they may end in any order, so that a release overtakes a
/// claim of ten seconds. Callers do not wait for one another. A heartbeat counts from an admitted caller
/// alone: one that was allowed the last change it asked for, and is still there.
///
/// Belongs to the engine's thread.
class FanHelperService final : public HelperService {
public:
  static constexpr std::size_t mostUnanswered = 32;      // Calls of one caller.
  static constexpr std::size_t mostBodyBytes = 1U << 20; // As core::JSONBounds allows.
  /// Changes of all callers together. Beyond it those of admitted callers alone are taken.
  static constexpr std::size_t mostUnansweredOfAll = 256;
  static constexpr std::size_t mostBodyBytesOfAll = 8U << 20; // Of whomever.

  struct Surroundings {
    ServedFans& fans;
    HelperListener& listener;
    CallerAuthorizer& authorizer;
    HelperLog& log;
    std::string buildIdentifier;
    /// Called once the fans are back after a ShutdownForUpgrade, right before it is answered.
    std::function<void()> madeRoom;
  };

  /// What the surroundings refer to outlives this object, and this object everything that it was asked.
  explicit FanHelperService(Surroundings surroundings);

  runtime::Async<HelperAnswer> answer(HelperCaller caller, HelperMessage message) override;
  /// Changes of the caller that have not begun are dropped, and their permission is no longer waited for; but
  /// an admitted caller gives its fans back even so. Those that have begun run on, without an answer.
  void callerIsGone(const HelperCaller& caller) override;

  /// From here on every change that has not begun is refused.
  void refuseChanges() { isEnding_ = true; }

  [[nodiscard]] std::size_t knownCallers() const { return callers_.size(); }

private:
  std::optional<Refusal> refusalOf(const HelperCaller& name, const HelperMessage& message);
  [[nodiscard]] bool hasRoomFor(const KnownCaller* caller, const HelperMessage& change) const;
  Refusal refuse(Refusal::Reason reason, const HelperCaller& name, std::string text);
  runtime::Async<HelperAnswer> change(HelperCaller name, HelperMessage message);
  runtime::Async<HelperAnswer> changeInOrder(HelperCaller name, HelperMessage message,
                                             std::shared_ptr<KnownCaller> caller);
  HelperAnswer answerWithoutPermission(const HelperCaller& name, const HelperMessage& message);
  runtime::Async<HelperAnswer> perform(const HelperCaller& name, HelperMessage& message);
  runtime::Async<HelperAnswer> performPlan(const HelperCaller& name, const std::string& text);
  runtime::Async<HelperAnswer> makeRoom();

  Surroundings its_;
  Callers callers_;
  Complaints complaints_;
  bool isEnding_ = false;
};

} // namespace ventolith::helper
