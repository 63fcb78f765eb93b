#include "ui/state/UpdateCheckButtonState.h"

#include "ui/state/Numbers.h"

#include <utility>

namespace ventolith::ui {

UpdateCheckButtonState::UpdateCheckButtonState(runtime::Executor mainExecutor, runtime::Clock& clock,
                                               std::function<void()> onChange)
    : mainExecutor_(std::move(mainExecutor)), clock_(clock), onChange_(std::move(onChange)) {}

UpdateCheckButtonState::~UpdateCheckButtonState() {
  display_.requestStop();
}

void UpdateCheckButtonState::take(Model model) {
  const bool isNew = model.outcome != model_.outcome;
  model_ = std::move(model);
  if (isNew) sync();
}

void UpdateCheckButtonState::sync() {
  display_.requestStop();
  display_ = {};
  displayedOutcome_ = model_.outcome;
  if (!displayedOutcome_ || !displayedOutcome_->isTerminal()) return;
  const double seconds = displayedOutcome_->transientDisplayDuration();
  if (!(seconds > 0)) {
    displayedOutcome_.reset();
    return;
  }
  runtime::start(mainExecutor_, "the display of an update check's outcome",
                 returnToIdle(this, clock_, runtime::fromSeconds(seconds), display_.token()));
}

/// `self` is there for as long as nobody has requested the stop.
runtime::Async<void> UpdateCheckButtonState::returnToIdle(UpdateCheckButtonState* self, runtime::Clock& clock,
                                                          runtime::Duration shown, runtime::StopToken stop) {
  co_await clock.sleep(shown, stop);
  if (stop.stopRequested()) co_return;
  self->displayedOutcome_.reset();
  const auto tell = self->onChange_; // Whoever is told may let the state go.
  tell();
}

QString UpdateCheckButtonState::label() const {
  return utf8Text(Outcome::checkButtonLabel(displayedOutcome_));
}

QString UpdateCheckButtonState::idleLabel() {
  return utf8Text(Outcome::idleButtonLabel);
}

bool UpdateCheckButtonState::isEnabled() const {
  return !Outcome::isCheckButtonDisabled(displayedOutcome_, model_.updatesAvailable);
}

QString UpdateCheckButtonState::detail() const {
  return utf8Text(Outcome::detailMessage(displayedOutcome_, model_.detailMessage));
}

} // namespace ventolith::ui
