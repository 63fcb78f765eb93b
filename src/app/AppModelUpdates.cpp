// AppModel's check for updates: one at a time on the user's word, with a limit of time, and a display that
// returns to idle by itself.
#include "app/AppModel.h"

#include <utility>

namespace ventolith::app {

using runtime::Async;

void AppModel::checkForUpdates() {
  if (!updates_.isAvailable()) return showThatUpdatesAreUnavailable();
  const Generation generation = ++updateCheckGeneration_;
  showOutcome(UpdateCheckOutcome::checking);
  if (updateCheckGeneration_ != generation) return; // An observer began the next one.
  updates_.setOnOutcome([model = weak_from_this(), generation](const UpdateCheckOutcome& outcome) {
    if (const auto self = model.lock()) self->takeOutcome(outcome, generation);
  });
  updates_.checkForUpdates();
  startOnMain("the time limit of an update check",
              timeOutUpdateCheck(weak_from_this(), its_.clock, generation, stop_.token()));
}

void AppModel::showThatUpdatesAreUnavailable() {
  const auto outcome = UpdateCheckOutcome::unavailable(
      updates_.unavailableReason().value_or("Updates are unavailable in this build."));
  showOutcome(outcome);
  scheduleOutcomeClear(outcome, updateCheckGeneration_);
}

void AppModel::takeOutcome(const UpdateCheckOutcome& outcome, Generation generation) {
  if (updateCheckGeneration_ != generation) return;
  updates_.setOnOutcome(nullptr); // First: an observer of the outcome may begin the next check.
  showOutcome(outcome);
  scheduleOutcomeClear(outcome, generation);
}

/// The message is what is compared. The handler of outcomes stays: one that comes late still lands.
Async<void> AppModel::timeOutUpdateCheck(Weak model, runtime::Clock& clock, Generation generation,
                                         runtime::StopToken stop) {
  co_await clock.sleep(runtime::fromSeconds(UpdateCheckOutcome::timeoutSeconds), stop);
  const auto self = model.lock();
  if (!self || self->updateCheckGeneration_ != generation ||
      self->updateMessage_ != UpdateCheckOutcome::checking.message())
    co_return;
  self->showOutcome(UpdateCheckOutcome::timedOut);
  self->scheduleOutcomeClear(UpdateCheckOutcome::timedOut, generation);
}

void AppModel::scheduleOutcomeClear(UpdateCheckOutcome outcome, Generation generation) {
  startOnMain("the clearing of an update check's outcome",
              clearOutcome(weak_from_this(), its_.clock, std::move(outcome), generation, stop_.token()));
}

Async<void> AppModel::clearOutcome(Weak model, runtime::Clock& clock, UpdateCheckOutcome outcome,
                                   Generation generation, runtime::StopToken stop) {
  const double seconds = outcome.transientDisplayDuration();
  if (seconds > 0) co_await clock.sleep(runtime::fromSeconds(seconds), stop);
  const auto self = model.lock();
  if (self && UpdateCheckOutcome::shouldClearOutcome(outcome, generation, self->updateCheckGeneration_,
                                                     self->updateOutcome_))
    self->showUpdate(std::nullopt, self->idleUpdateMessage());
}

/// Shows nothing if an observer begins a check meanwhile: that one is newer.
void AppModel::showUpdate(std::optional<UpdateCheckOutcome> outcome, std::string message) {
  Fields changing;
  if (message != updateMessage_) changing |= {AppModelField::updateMessage};
  if (outcome != updateOutcome_) changing |= {AppModelField::updateOutcome};
  const Generation generation = updateCheckGeneration_;
  willChange(changing);
  if (updateCheckGeneration_ != generation) return;
  updateMessage_ = std::move(message);
  updateOutcome_ = std::move(outcome);
}

std::string AppModel::idleUpdateMessage() const {
  return updates_.unavailableReason().value_or(std::string(UpdateCheckOutcome::idleDetailMessage));
}

} // namespace ventolith::app
