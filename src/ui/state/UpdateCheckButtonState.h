// The button that checks for updates: it shows how a check ended for a while, and then offers the next.
#pragma once

#include "app/platform-kit/UpdateCheckOutcome.h"
#include "runtime/Async.h"
#include "runtime/Clock.h"
#include "runtime/StopToken.h"

#include <QString>

#include <functional>
#include <optional>
#include <string>

namespace ventolith::ui {

/// Lives on the main executor, which outlives it as the clock does. Letting go of it ends its wait.
class UpdateCheckButtonState {
public:
  using Outcome = app::UpdateCheckOutcome;

  /// What the model says.
  struct Model {
    std::optional<Outcome> outcome; // None is idle.
    bool updatesAvailable = false;
    std::string detailMessage; // What is said when idle.

    bool operator==(const Model&) const = default;
  };

  /// `onChange` is called on the main executor after what is shown has changed by itself; not for `take`.
  UpdateCheckButtonState(runtime::Executor mainExecutor, runtime::Clock& clock,
                         std::function<void()> onChange);
  UpdateCheckButtonState(const UpdateCheckButtonState&) = delete;
  UpdateCheckButtonState& operator=(const UpdateCheckButtonState&) = delete;
  ~UpdateCheckButtonState();

  /// An outcome other than the one taken last begins a new display and ends the old one's wait.
  void take(Model model);

  [[nodiscard]] const std::optional<Outcome>& displayedOutcome() const { return displayedOutcome_; }
  [[nodiscard]] QString label() const;
  /// Lies invisible below the label, so that the shorter words of a result do not make the button jump.
  [[nodiscard]] static QString idleLabel();
  [[nodiscard]] bool isEnabled() const;
  /// The tooltip, and what is spoken.
  [[nodiscard]] QString detail() const;

private:
  void sync();
  static runtime::Async<void> returnToIdle(UpdateCheckButtonState* self, runtime::Clock& clock,
                                           runtime::Duration shown, runtime::StopToken stop);

  runtime::Executor mainExecutor_;
  runtime::Clock& clock_;
  std::function<void()> onChange_;
  Model model_;
  std::optional<Outcome> displayedOutcome_;
  runtime::StopSource display_; // Of the wait that is under way.
};

} // namespace ventolith::ui
