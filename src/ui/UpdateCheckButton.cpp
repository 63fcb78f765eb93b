#include "ui/UpdateCheckButton.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace ventolith::ui {

UpdateCheckButton::UpdateCheckButton(const ViewContext& context, ButtonKind kind, QWidget* parent)
    : Button(context.theme, kind, ButtonSize::normal, parent),
      model_(context.model),
      state_(context.mainExecutor, context.clock, [this] { present(); }) {
  connect(this, &Button::clicked, this, [&model = context.model] { model.checkForUpdates(); });
  refresh();
}

void UpdateCheckButton::refresh() {
  state_.take({.outcome = model_.updateOutcome(),
               .updatesAvailable = model_.updatesAvailable(),
               .detailMessage = model_.updateMessage()});
  present();
}

void UpdateCheckButton::present() {
  setTitle(state_.label());
  enable(state_.isEnabled());
  const QString detail = state_.detail();
  if (detail == toolTip()) return;
  setToolTip(detail);
  setAccessibleName(detail);
}

/// Qt passes the keyboard of a disabled control on to the next one, which a second press would then hit. This
/// one lets go of it for as long as a check runs.
void UpdateCheckButton::enable(bool isEnabled) {
  if (!isEnabled && hasFocus()) {
    hadKeyboard_ = true;
    clearFocus();
  }
  setEnabled(isEnabled);
  if (!isEnabled || !std::exchange(hadKeyboard_, false)) return;
  if (window()->focusWidget() == nullptr) setFocus(Qt::OtherFocusReason);
}

QSize UpdateCheckButton::sizeHint() const {
  const QSize shown = Button::sizeHint();
  const double idle = TextLine(UpdateCheckButtonState::idleLabel(), metrics().text).width();
  const int held = metrics().leading + static_cast<int>(std::ceil(idle)) + metrics().trailing;
  return {std::max(held, shown.width()), shown.height()};
}

} // namespace ventolith::ui
